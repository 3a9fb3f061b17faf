#include "service/routes.h"
#include "service/service_reply.h"
#include "tests/support/tls_service/tls_service.h"

#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QTest>

using namespace quillmar::test;
using quillmar::ServiceReply;

class ServiceReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data();
    void reads();
    void refusedStatuses();
    void textOfOtherTypesIsEmpty();
    void nothingReceived();
    void bodyAtTheLimit_data();
    void bodyAtTheLimit();
    void dropIsSilent();
    void dropOfNothing();
};

void ServiceReplyTest::reads_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("isObject");
    QTest::addColumn<QString>("code");
    QTest::newRow("object") << 200 << QByteArray(R"({"code": "a"})") << true << QStringLiteral("a");
    QTest::newRow("object of an error")
        << 403 << QByteArray(R"({"code": "a"})") << true << QStringLiteral("a");
    QTest::newRow("empty object") << 200 << QByteArray("{}") << true << QString();
    QTest::newRow("HTML") << 200 << QByteArray("<html></html>") << false << QString();
    QTest::newRow("nothing") << 200 << QByteArray() << false << QString();
    QTest::newRow("array") << 200 << QByteArray(R"([{"code": "a"}])") << false << QString();
    QTest::newRow("truncated") << 200 << QByteArray(R"({"code": "a")") << false << QString();
}

void ServiceReplyTest::reads()
{
    QFETCH(const int, status);
    QFETCH(const QByteArray, body);
    QFETCH(const bool, isObject);
    QFETCH(const QString, code);
    TlsService service;
    service.handleRoute("login", TlsService::always(TlsService::response(status, body)));
    QNetworkAccessManager network;
    QNetworkReply *reply = network.post(quillmar::routes::login(), QByteArray("{}"));
    QTRY_VERIFY(reply->isFinished());
    const ServiceReply read = quillmar::readServiceReply(*reply);
    QCOMPARE(read.status, status);
    QCOMPARE(read.hasError(), status != 200);
    QCOMPARE(read.body, body);
    QCOMPARE(read.isObject, isObject);
    QCOMPARE(read.text(QLatin1StringView("code")), code);
}

void ServiceReplyTest::refusedStatuses()
{
    for (int status = 0; status < 1000; ++status) {
        ServiceReply reply;
        reply.status = status;
        QCOMPARE(reply.isRefused(), status == 401 || status == 403);
    }
}

void ServiceReplyTest::textOfOtherTypesIsEmpty()
{
    ServiceReply reply;
    for (const QJsonValue &value :
         {QJsonValue(), QJsonValue(true), QJsonValue(1), QJsonValue(QJsonObject())}) {
        reply.object = {{QStringLiteral("code"), value}};
        QCOMPARE(reply.text(QLatin1StringView("code")), QString());
    }
    QCOMPARE(reply.text(QLatin1StringView("absent")), QString());
}

void ServiceReplyTest::nothingReceived()
{
    TlsService service;
    service.setUnreachable(true);
    QNetworkAccessManager network;
    QNetworkReply *reply = network.get(quillmar::routes::products(QStringLiteral("t")));
    QTRY_VERIFY(reply->isFinished());
    const ServiceReply read = quillmar::readServiceReply(*reply);
    QCOMPARE(read.status, 0);
    QVERIFY(read.hasError());
    QVERIFY(!read.isObject);
}

void ServiceReplyTest::bodyAtTheLimit_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("at the limit") << qsizetype(100'000) << true;
    QTest::newRow("one byte more") << qsizetype(100'001) << false;
}

void ServiceReplyTest::bodyAtTheLimit()
{
    QFETCH(const qsizetype, size);
    QFETCH(const bool, accepted);
    TlsService service;
    service.handleRoute("products", TlsService::always(TlsService::response(200, QByteArray(size, ' '))));
    QNetworkAccessManager network;
    QNetworkReply *reply = network.get(quillmar::routes::products(QStringLiteral("t")));
    quillmar::limitBody(reply, 100'000);
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->error() == QNetworkReply::NoError, accepted);
}

void ServiceReplyTest::dropIsSilent()
{
    TlsService service;
    bool arrived = false;
    service.handleRoute("products", [&arrived](const WireRequest &, WireConnection &) { arrived = true; });
    QNetworkAccessManager network;
    QPointer<QNetworkReply> reply = network.get(quillmar::routes::products(QStringLiteral("t")));
    int endings = 0;
    connect(reply, &QNetworkReply::finished, this, [&endings] { ++endings; });
    QTRY_VERIFY(arrived);
    quillmar::dropReply(reply);
    QVERIFY(reply);
    QTRY_VERIFY(!reply);
    QCOMPARE(endings, 0);
}

void ServiceReplyTest::dropOfNothing()
{
    quillmar::dropReply(nullptr);
    TlsService service;
    QNetworkAccessManager network;
    QPointer<QNetworkReply> finished = network.get(quillmar::routes::products(QStringLiteral("t")));
    QTRY_VERIFY(finished->isFinished());
    quillmar::dropReply(finished);
    QTRY_VERIFY(!finished);
}

QTEST_GUILESS_MAIN(ServiceReplyTest)
#include "service_reply_test.moc"
