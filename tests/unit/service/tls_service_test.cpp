#include "service/routes.h"
#include "service/service_reply.h"
#include "tests/support/tls_service/tls_service.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QSslConfiguration>
#include <QTest>

#include <optional>

using quillmar::readServiceReply;
using quillmar::ServiceReply;
using quillmar::test::TlsService;
using quillmar::test::WireConnection;
using quillmar::test::WireRequest;

namespace
{

/// Sends one request and waits for its end.
ServiceReply post(QNetworkAccessManager &network, const QByteArray &body = "{}")
{
    QNetworkReply *reply = network.post(quillmar::routes::login(), body);
    if (!QTest::qWaitFor([reply] { return reply->isFinished(); }, 10'000)) {
        qWarning("the request did not end");
    }
    const ServiceReply read = readServiceReply(*reply);
    reply->deleteLater();
    return read;
}

} // namespace

/// The service that other tests rely on.
class TlsServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersUnderTheNameOfTheService();
    void keepsRequestsAsTheyCame();
    void answersUnknownPathsWith404();
    void servesSeveralRequestsOverOneConnection();
    void refusedCertificates_data();
    void refusedCertificates();
    void unreachable();
    void plainTextInsteadOfTls();
    void reset();
    void answersLater();
    void sendingAfterTheClientHasGoneIsIgnored();
    void restoresProxyAndTrust();
};

void TlsServiceTest::answersUnderTheNameOfTheService()
{
    TlsService service;
    service.handleRoute("login", TlsService::always(TlsService::json(
                                     200, {{QStringLiteral("token"), QStringLiteral("abc")}})));
    QNetworkAccessManager network;
    const ServiceReply reply = post(network);
    QCOMPARE(reply.error, QNetworkReply::NoError);
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.text(QLatin1StringView("token")), QStringLiteral("abc"));
    QCOMPARE(service.connects(), QList<QByteArray>{quillmar::routes::serviceHost().toLatin1() + ":443"});
}

void TlsServiceTest::keepsRequestsAsTheyCame()
{
    TlsService service;
    QNetworkAccessManager network;
    post(network, R"({"a": 1})");
    QCOMPARE(service.requests().size(), 1);
    const WireRequest request = service.requests().first();
    QCOMPARE(request.method, QByteArray("POST"));
    QCOMPARE(request.host, quillmar::routes::serviceHost().toLatin1());
    QCOMPARE(request.target, QByteArray("/wp-json/quillmar/v1/login"));
    QCOMPARE(request.header("content-type"), QByteArray("application/json"));
    QCOMPARE(request.body, QByteArray(R"({"a": 1})"));
    QVERIFY(!request.hasHeader("authorization"));
    QVERIFY(request.header("authorization").isNull());
    QCOMPARE(service.count("login"), 1);
    QCOMPARE(service.count("logout"), 0);
}

void TlsServiceTest::answersUnknownPathsWith404()
{
    TlsService service;
    QNetworkAccessManager network;
    QCOMPARE(post(network).status, 404);
}

void TlsServiceTest::servesSeveralRequestsOverOneConnection()
{
    TlsService service;
    service.handleRoute("login", TlsService::always(TlsService::json(200, {})));
    QNetworkAccessManager network;
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(post(network).status, 200);
    }
    QCOMPARE(service.requests().size(), 3);
    QCOMPARE(service.connects().size(), 1);
}

void TlsServiceTest::refusedCertificates_data()
{
    QTest::addColumn<TlsService::Certificate>("certificate");
    QTest::newRow("self-signed") << TlsService::Certificate::SelfSigned;
    QTest::newRow("wrong name") << TlsService::Certificate::WrongName;
    QTest::newRow("expired") << TlsService::Certificate::Expired;
}

void TlsServiceTest::refusedCertificates()
{
    QFETCH(const TlsService::Certificate, certificate);
    TlsService service;
    service.handleRoute("login", TlsService::always(TlsService::json(200, {})));
    QNetworkAccessManager network;
    QCOMPARE(post(network).status, 200);

    service.useCertificate(certificate);
    network.clearConnectionCache();
    const ServiceReply refused = post(network);
    QCOMPARE(refused.error, QNetworkReply::SslHandshakeFailedError);
    QCOMPARE(refused.status, 0);
    QCOMPARE(service.count("login"), 1);

    service.useCertificate(TlsService::Certificate::Good);
    QCOMPARE(post(network).status, 200);
}

void TlsServiceTest::unreachable()
{
    TlsService service;
    service.handleRoute("login", TlsService::always(TlsService::json(200, {})));
    QNetworkAccessManager network;
    service.setUnreachable(true);
    const ServiceReply reply = post(network);
    QVERIFY(reply.hasError());
    QCOMPARE(reply.status, 0);
    QCOMPARE(service.requests().size(), 0);
    service.setUnreachable(false);
    QCOMPARE(post(network).status, 200);
}

void TlsServiceTest::plainTextInsteadOfTls()
{
    TlsService service;
    service.setPlainText("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}");
    QNetworkAccessManager network;
    const ServiceReply reply = post(network);
    QVERIFY(reply.hasError());
    QCOMPARE(reply.status, 0);
    QCOMPARE(service.requests().size(), 0);
}

void TlsServiceTest::reset()
{
    TlsService service;
    service.handleRoute("login", [](const WireRequest &, WireConnection &connection) { connection.reset(); });
    QNetworkAccessManager network;
    const ServiceReply reply = post(network);
    QVERIFY(reply.hasError());
    QCOMPARE(reply.status, 0);
}

void TlsServiceTest::answersLater()
{
    TlsService service;
    std::optional<WireConnection> later;
    service.handleRoute("login",
                        [&later](const WireRequest &, WireConnection &connection) { later = connection; });
    QNetworkAccessManager network;
    QNetworkReply *reply = network.post(quillmar::routes::login(), QByteArray("{}"));
    QTRY_VERIFY(later);
    QVERIFY(!reply->isFinished());
    later->send(TlsService::json(200, {}));
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(quillmar::httpStatus(*reply), 200);
}

void TlsServiceTest::sendingAfterTheClientHasGoneIsIgnored()
{
    TlsService service;
    std::optional<WireConnection> later;
    service.handleRoute("login",
                        [&later](const WireRequest &, WireConnection &connection) { later = connection; });
    {
        QNetworkAccessManager network;
        network.post(quillmar::routes::login(), QByteArray("{}"));
        QTRY_VERIFY(later);
    }
    QTRY_VERIFY(!later->isOpen());
    later->send("late");
    later->close();
    later->reset();
    QCOMPARE(later->bytesToWrite(), 0);
}

void TlsServiceTest::restoresProxyAndTrust()
{
    const auto trusted = QSslConfiguration::defaultConfiguration().caCertificates();
    {
        const TlsService service;
        QCOMPARE(QNetworkProxy::applicationProxy().type(), QNetworkProxy::HttpProxy);
        QCOMPARE(QSslConfiguration::defaultConfiguration().caCertificates().size(), 1);
    }
    QVERIFY(QNetworkProxy::applicationProxy().type() != QNetworkProxy::HttpProxy);
    QCOMPARE(QSslConfiguration::defaultConfiguration().caCertificates(), trusted);
}

QTEST_GUILESS_MAIN(TlsServiceTest)
#include "tls_service_test.moc"
