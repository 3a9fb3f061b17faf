#include "service/update_info.h"
#include "tests/unit/demo/service_fixture.h"

#include <QJsonArray>
#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

/// Every route, used as it should be.
class RoutesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QCOMPARE(service_.error(), QString()); }
    void loginGivesAToken();
    void productsComeInOrder();
    void productsOfAnEmptyAccount();
    void quotaIsComplete();
    void unlimitedQuotaHasNoLimit();
    void ticketOpensThePackage_data();
    void ticketOpensThePackage();
    void pluginVersionIsNewer();
    void pluginPageExists();
    void previewIsServed();
    void unsteadyPreviewFailsOnce();
    void crowdOfTheManyAccount();
    void logoutSucceeds();
    void connectionsAreVerified();

private:
    ServiceFixture service_;
};

void RoutesTest::loginGivesAToken()
{
    const Answered answered = service_.signIn(u"demo"_s);
    QCOMPARE(answered.status, 200);
    QCOMPARE(answered.headers.value("Content-Type"), "application/json");
    QVERIFY(answered.json.value("token"_L1).toString().size() >= 40);
    QCOMPARE(answered.json.size(), 1);
}

void RoutesTest::productsComeInOrder()
{
    const Answered answered = service_.get(u"products"_s, service_.token());
    QCOMPARE(answered.status, 200);
    const QJsonArray products = answered.json.value("products"_L1).toArray();
    QCOMPARE(products.size(), 2);
    QCOMPARE(products.at(0)["product_key"_L1].toString(), u"alpha"_s);
    QCOMPARE(products.at(1)["product_key"_L1].toString(), u"beta"_s);
}

void RoutesTest::productsOfAnEmptyAccount()
{
    const Answered answered = service_.get(u"products"_s, service_.token(u"empty"_s));
    QCOMPARE(answered.status, 200);
    QCOMPARE(answered.json.value("products"_L1), QJsonValue(QJsonArray()));
}

void RoutesTest::quotaIsComplete()
{
    const QJsonObject quota = service_.get(u"download-quota"_s, service_.token()).json;
    QCOMPARE(quota.value("success"_L1), QJsonValue(true));
    QCOMPARE(quota.value("enabled"_L1), QJsonValue(true));
    QCOMPARE(quota.value("unlimited"_L1), QJsonValue(false));
    QCOMPARE(quota.value("allow_redownload"_L1), QJsonValue(false));
    QCOMPARE(quota.value("period"_L1).toString(), u"daily"_s);
    QCOMPARE(quota.value("limit"_L1).toInt(), 25);
    QCOMPARE(quota.value("used"_L1).toInt() + quota.value("remaining"_L1).toInt(), 25);
    const auto reset = QDateTime::fromString(quota.value("reset_at"_L1).toString(), Qt::ISODateWithMs);
    QVERIFY(reset > QDateTime::currentDateTimeUtc());
    QVERIFY(reset <= QDateTime::currentDateTimeUtc().addDays(1));
}

void RoutesTest::unlimitedQuotaHasNoLimit()
{
    const QJsonObject quota = service_.get(u"download-quota"_s, service_.token(u"empty"_s)).json;
    QCOMPARE(quota.value("unlimited"_L1), QJsonValue(true));
    QVERIFY(!quota.contains("limit"_L1));
    QVERIFY(quota.value("reset_at"_L1).isNull());
}

void RoutesTest::ticketOpensThePackage_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("larger than one block") << u"alpha"_s;
    QTest::newRow("small") << u"beta"_s;
}

void RoutesTest::ticketOpensThePackage()
{
    QFETCH(const QString, key);
    const Answered answered = service_.fetch(service_.ticket(service_.token(), key));
    QCOMPARE(answered.status, 200);
    QCOMPARE(answered.body, service_.package(key));
    QCOMPARE(answered.headers.value("Content-Length"), QByteArray::number(answered.body.size()));
    QCOMPARE(answered.headers.value("Content-Type"), "application/zip");
    QCOMPARE(answered.headers.value("Content-Disposition"),
             QString(u"attachment; filename=\"%1 pack.zip\""_s.arg(key)).toLatin1());
}

void RoutesTest::pluginVersionIsNewer()
{
    const Answered answered = service_.send("GET", ServiceFixture::route(u"plugin-version"_s));
    QCOMPARE(answered.status, 200);
    QCOMPARE(answered.json.value("latest_version"_L1).toString(), u"0.2.0"_s);
    QCOMPARE(answered.json.value("required"_L1), QJsonValue(false));
    const auto info = parseUpdateReply(answered.body);
    QVERIFY(info && parseVersion(info->latestVersion) > parseVersion(u"0.1.3"_s));
    QVERIFY(!info->releaseNotes.isEmpty());
    const QUrl url(answered.json.value("download_url"_L1).toString(), QUrl::StrictMode);
    QCOMPARE(url.scheme(), u"https"_s);
    QCOMPARE(url.host(), u"localhost"_s);
    QCOMPARE(url.port(), -1);
}

void RoutesTest::pluginPageExists()
{
    const Answered version = service_.send("GET", ServiceFixture::route(u"plugin-version"_s));
    const QUrl url(version.json.value("download_url"_L1).toString());
    const Answered page = service_.send("GET", url.path());
    QCOMPARE(page.status, 200);
    QCOMPARE(page.headers.value("Content-Type"), "text/html; charset=utf-8");
    QVERIFY(page.body.contains("0.2.0"));
}

void RoutesTest::unsteadyPreviewFailsOnce()
{
    const QString target = u"/previews/unsteady-two.png"_s;
    const Answered first = service_.send("GET", target);
    QCOMPARE(first.status, 503);
    QCOMPARE(first.code(), u"busy"_s);
    const Answered second = service_.send("GET", target);
    QCOMPARE(second.status, 200);
    QCOMPARE(second.headers.value("Content-Type"), "image/png");
}

void RoutesTest::crowdOfTheManyAccount()
{
    const QByteArray token = service_.token(u"many"_s);
    const QJsonArray products = service_.get(u"products"_s, token).json.value("products"_L1).toArray();
    QCOMPARE(products.size(), 300);
    QSet<QString> keys;
    for (const QJsonValue &product : products)
        keys.insert(product["product_key"_L1].toString());
    QCOMPARE(keys.size(), 300);
    const Answered file = service_.fetch(service_.ticket(token, u"alpha-299"_s));
    QCOMPARE(file.status, 200);
    QCOMPARE(file.body, service_.package(u"alpha"_s));
}

void RoutesTest::previewIsServed()
{
    const Answered answered = service_.send("GET", u"/previews/one.png"_s);
    QCOMPARE(answered.status, 200);
    QCOMPARE(answered.body, "a picture");
    QCOMPARE(answered.headers.value("Content-Type"), "image/png");
}

void RoutesTest::logoutSucceeds()
{
    const QByteArray token = service_.token();
    const Answered answered =
        service_.send("POST", ServiceFixture::route(u"logout"_s), {{"Authorization", "Bearer " + token}});
    QCOMPARE(answered.status, 200);
    QCOMPARE(answered.json.value("success"_L1), QJsonValue(true));
}

void RoutesTest::connectionsAreVerified()
{
    QNetworkAccessManager stranger;
    QNetworkRequest request(QUrl(u"https://localhost:%1/previews/one.png"_s.arg(service_.port())));
    request.setTransferTimeout(20'000);
    const std::unique_ptr<QNetworkReply> reply(stranger.get(request));
    QTRY_VERIFY_WITH_TIMEOUT(reply->isFinished(), 20'000);
    QCOMPARE(reply->error(), QNetworkReply::SslHandshakeFailedError);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::RoutesTest)
#include "routes_test.moc"
