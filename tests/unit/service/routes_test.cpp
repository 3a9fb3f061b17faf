#include "service/routes.h"

#include <QTest>
#include <QUrl>

namespace routes = quillmar::routes;

namespace
{

QUrl address(const char *route)
{
    return QUrl(QStringLiteral("https://%1/wp-json/quillmar/v1/%2")
                    .arg(routes::serviceHost(), QLatin1StringView(route)));
}

} // namespace

class RoutesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requests_data();
    void requests();
    void policies_data() { requests_data(); }
    void policies();
    void fileAsksForTheBytesAsTheyAre();
    void tokenIsUtf8();
};

void RoutesTest::requests_data()
{
    QTest::addColumn<QNetworkRequest>("request");
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<int>("timeout");
    QTest::addColumn<QByteArray>("authorization");
    QTest::addColumn<QByteArray>("contentType");
    QTest::addColumn<QByteArray>("ticket");
    const QString token = QStringLiteral("abc");
    const QByteArray bearer = "Bearer abc";
    const QByteArray json = "application/json";
    const QByteArray none;
    QTest::newRow("login") << routes::login() << address("login") << 0 << none << json << none;
    QTest::newRow("logout") << routes::logout(token) << address("logout") << 30000 << bearer << none << none;
    QTest::newRow("products") << routes::products(token) << address("products") << 30000 << bearer << none
                              << none;
    QTest::newRow("download-quota") << routes::downloadQuota(token) << address("download-quota") << 30000
                                    << bearer << none << none;
    QTest::newRow("download-ticket") << routes::downloadTicket(token) << address("download-ticket") << 30000
                                     << bearer << json << none;
    QTest::newRow("download-file") << routes::downloadFile(token) << address("download-file") << 120000
                                   << none << none << QByteArray("abc");
    QTest::newRow("plugin-version") << routes::pluginVersion() << address("plugin-version") << 15000 << none
                                    << none << none;
}

void RoutesTest::requests()
{
    QFETCH(const QNetworkRequest, request);
    QFETCH(const QUrl, url);
    QFETCH(const int, timeout);
    QFETCH(const QByteArray, authorization);
    QFETCH(const QByteArray, contentType);
    QFETCH(const QByteArray, ticket);
    QCOMPARE(request.url(), url);
    QVERIFY(!request.url().hasQuery());
    QCOMPARE(request.transferTimeout(), timeout);
    QCOMPARE(request.rawHeader("Authorization"), authorization);
    QCOMPARE(request.rawHeader("Content-Type"), contentType);
    QCOMPARE(request.rawHeader("X-Quillmar-Ticket"), ticket);
}

void RoutesTest::policies()
{
    QFETCH(const QNetworkRequest, request);
    const auto attribute = [&request](QNetworkRequest::Attribute name) {
        return request.attribute(name).toInt();
    };
    const bool isAnonymous = request.url() == address("plugin-version");
    QCOMPARE(
        attribute(QNetworkRequest::RedirectPolicyAttribute),
        int(isAnonymous ? QNetworkRequest::SameOriginRedirectPolicy : QNetworkRequest::ManualRedirectPolicy));
    QCOMPARE(attribute(QNetworkRequest::CookieLoadControlAttribute), int(QNetworkRequest::Manual));
    QCOMPARE(attribute(QNetworkRequest::CookieSaveControlAttribute), int(QNetworkRequest::Manual));
    QCOMPARE(attribute(QNetworkRequest::AuthenticationReuseAttribute), int(QNetworkRequest::Manual));
    QCOMPARE(request.attribute(QNetworkRequest::Http2AllowedAttribute), QVariant(false));
}

void RoutesTest::fileAsksForTheBytesAsTheyAre()
{
    QCOMPARE(routes::downloadFile(QStringLiteral("t")).rawHeader("Accept-Encoding"), QByteArray("identity"));
    QVERIFY(!routes::products(QStringLiteral("t")).hasRawHeader("Accept-Encoding"));
}

void RoutesTest::tokenIsUtf8()
{
    QCOMPARE(routes::products(QStringLiteral("é")).rawHeader("Authorization"), QByteArray("Bearer \xC3\xA9"));
    QCOMPARE(routes::downloadFile(QStringLiteral("é")).rawHeader("X-Quillmar-Ticket"),
             QByteArray("\xC3\xA9"));
}

QTEST_GUILESS_MAIN(RoutesTest)
#include "routes_test.moc"
