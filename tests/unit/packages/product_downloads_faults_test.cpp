#include "tests/support/tls_service/hasty_network.h"
#include "tests/unit/packages/download_fixture.h"
#include "tests/unit/packages/file_tree.h"

#include <QJsonObject>
#include <QTest>

#include <optional>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

namespace
{

/// How a hostile connection ends after its bytes.
enum class Then { Nothing, Close, Reset };

TlsService::Handler sending(const QByteArray &bytes, Then then = Then::Nothing)
{
    return [bytes, then](const WireRequest &, WireConnection &connection) {
        connection.send(bytes);
        if (then == Then::Close)
            connection.close();
        else if (then == Then::Reset)
            connection.reset();
    };
}

QByteArray withCode(int status, const QString &code)
{
    return TlsService::json(status, {{u"code"_s, code}});
}

QByteArray redirect(int status, const QByteArray &location)
{
    return TlsService::response(status, "{}", "application/json", {{"Location", location}});
}

} // namespace

/// What acquire() does with a service that does not behave: the right key, nothing left behind,
/// and the next try works.
class ProductDownloadsFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void badTicket_data();
    void badTicket();
    void badFile_data();
    void badFile();
    void redirectIsNotFollowed_data();
    void redirectIsNotFollowed();
    void challengeIsNotAnswered_data();
    void challengeIsNotAnswered();
    void silenceEndsAtTheTimeOut_data();
    void silenceEndsAtTheTimeOut();
    void unreachableService();
    void untrustedService();
    void completionComesBeforeTheHandler_data();
    void completionComesBeforeTheHandler();

private:
    void addFailureRows();

    std::optional<DownloadFixture> f_;
};

/// Rows that mean the same for both routes.
void ProductDownloadsFaultsTest::addFailureRows()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<Then>("then");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QStringList>("events");
    const auto failed = [](const char *name, const QByteArray &answer, Then then = Then::Nothing) {
        QTest::newRow(name) << answer << then << u"Download.Failed"_s << QStringList{u"done"_s};
    };
    const QStringList expired{u"done"_s, u"expired"_s};
    for (const int status : {401, 403}) {
        QTest::addRow("%d", status) << TlsService::json(status, {}) << Then::Nothing
                                    << u"Status.LoginRequired"_s << expired;
        QTest::addRow("%d without JSON", status)
            << TlsService::response(status, "<html>no</html>", "text/html") << Then::Nothing
            << u"Status.LoginRequired"_s << expired;
    }
    QTest::newRow("429 quota") << withCode(429, u"download_quota_reached"_s) << Then::Nothing
                               << u"Download.QuotaReached"_s << QStringList({u"done"_s, u"quota"_s});
    failed("429 rate_limited", withCode(429, u"rate_limited"_s));
    failed("429 quota in another case", withCode(429, u"Download_Quota_Reached"_s));
    failed("429 without code", TlsService::json(429, {}));
    failed("429 without JSON", TlsService::response(429, "slow down", "text/plain"));
    failed("429 cut off in the code",
           "HTTP/1.1 429 No\r\nContent-Length: 99\r\n\r\n{\"code\":\"download_quota_re", Then::Close);
    failed("quota code with 400", withCode(400, u"download_quota_reached"_s));
    failed("quota code with 500", withCode(500, u"download_quota_reached"_s));
    for (const int status : {204, 206, 400, 404, 500, 502, 503, 999})
        failed(qPrintable(QString::number(status)), TlsService::json(status, {{u"ticket"_s, u"t"_s}}));
    failed("304", "HTTP/1.1 304 Not Modified\r\n\r\n");
    failed("empty 200", TlsService::response(200, {}));
    failed("no response, closed", {}, Then::Close);
    failed("no response, reset", {}, Then::Reset);
    failed("no HTTP", "this is no HTTP\r\n\r\n", Then::Close);
    failed("head only, closed", DownloadFixture::head(100), Then::Close);
    failed("half a head", "HTTP/1.1 200 OK\r\nContent-Le", Then::Close);
    failed("longer Content-Length", DownloadFixture::head(100) + "{\"ticket\":\"t\"}", Then::Close);
    failed("longer Content-Length, reset", DownloadFixture::head(100) + "{\"ticket\":\"t\"}", Then::Reset);
    failed("shorter Content-Length", DownloadFixture::head(5) + "{\"ticket\":\"t\"}", Then::Close);
    failed("broken chunk size", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nZZ\r\nabc\r\n0\r\n\r\n",
           Then::Close);
    failed("huge chunk size",
           "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFF\r\nabc\r\n0\r\n\r\n",
           Then::Close);
    failed("cut off in a chunk", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n40\r\nabc",
           Then::Close);
    failed("HTML", TlsService::response(200, "<!doctype html><p>Hello", "text/html"));
}

void ProductDownloadsFaultsTest::badTicket_data()
{
    addFailureRows();
    const auto failed = [](const char *name, const QByteArray &answer) {
        QTest::newRow(name) << answer << Then::Nothing << u"Download.Failed"_s << QStringList{u"done"_s};
    };
    const auto json = [](const QByteArray &text) { return TlsService::response(200, text); };
    failed("no ticket", json("{}"));
    failed("empty ticket", json(R"({"ticket": ""})"));
    failed("ticket as number", json(R"({"ticket": 5})"));
    failed("ticket null", json(R"({"ticket": null})"));
    failed("ticket as list", json(R"({"ticket": ["t"]})"));
    failed("truncated JSON", json(R"({"ticket": "t)"));
    failed("JSON list", json(R"([{"ticket": "t"}])"));
    failed("text after the JSON", json(R"({"ticket": "t"} more)"));
    failed("ticket with a line break", json(R"({"ticket": "t\r\nX-Evil: 1"})"));
    failed("ticket with NUL", json(R"({"ticket": "t\u0000"})"));
    failed("more than a MiB", json(QByteArray(1'100'000, ' ') + R"({"ticket": "t"})"));
}

void ProductDownloadsFaultsTest::badTicket()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const Then, then);
    QFETCH(const QString, error);
    QFETCH(const QStringList, events);
    f_->serveTicket(sending(answer, then));
    QCOMPARE(f_->acquired().error, error);
    QCOMPARE(f_->files(), 0);
    QCOMPARE(f_->events, events);
    f_->expectFailureThenSuccess(error);
}

void ProductDownloadsFaultsTest::badFile_data()
{
    addFailureRows();
    const auto failed = [](const char *name, const QByteArray &answer, Then then = Then::Nothing) {
        QTest::newRow(name) << answer << then << u"Download.Failed"_s << QStringList{u"done"_s};
    };
    const QByteArray bytes = QByteArray("the package ").repeated(10'000);
    failed("last byte missing", DownloadFixture::head(bytes.size()) + bytes.chopped(1), Then::Close);
    failed("reset in the middle", DownloadFixture::head(bytes.size()) + bytes.first(5000), Then::Reset);
    QByteArray changed = bytes;
    changed[7000] = '!';
    failed("one byte changed", TlsService::response(200, changed));
    failed("one byte short", TlsService::response(200, bytes.chopped(1)));
    failed("one byte more", TlsService::response(200, bytes + '!'));
}

void ProductDownloadsFaultsTest::badFile()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const Then, then);
    QFETCH(const QString, error);
    QFETCH(QStringList, events);
    f_->serveFile(sending(answer, then));
    QCOMPARE(f_->acquired().error, error);
    // A complete file, even a wrong one, has spent the quota.
    if (f_->events.first() == u"quota"_s)
        events.prepend(u"quota"_s);
    QCOMPARE(f_->events, events);
    f_->expectFailureThenSuccess(error);
}

void ProductDownloadsFaultsTest::redirectIsNotFollowed_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("location");
    const QByteArray own = "https://quillmar.example/wp-json/quillmar/v1/elsewhere";
    for (const QByteArray &route : {QByteArray("download-ticket"), QByteArray("download-file")}) {
        for (const int status : {301, 302, 303, 307, 308}) {
            QTest::addRow("%s %d other host", route.constData(), status)
                << route << status << QByteArray("https://evil.example/x");
            QTest::addRow("%s %d same host", route.constData(), status) << route << status << own;
        }
        for (const QByteArray &location :
             {QByteArray("http://quillmar.example/"), QByteArray("file:///etc/passwd"), QByteArray("data:,x"),
              QByteArray("/elsewhere"), QByteArray("")})
            QTest::addRow("%s to '%s'", route.constData(), location.constData()) << route << 302 << location;
    }
}

void ProductDownloadsFaultsTest::redirectIsNotFollowed()
{
    QFETCH(const QByteArray, route);
    QFETCH(const int, status);
    QFETCH(const QByteArray, location);
    f_->service.handleRoute(route, TlsService::always(redirect(status, location)));
    QCOMPARE(f_->acquired().error, u"Download.Failed"_s);
    QCOMPARE(f_->service.requests().size(), route == "download-ticket" ? 1 : 2);
    for (const QByteArray &host : f_->service.connects())
        QCOMPARE(host, "quillmar.example:443");
    f_->expectFailureThenSuccess(u"Download.Failed"_s);
}

void ProductDownloadsFaultsTest::challengeIsNotAnswered_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<QByteArray>("challenge");
    for (const QByteArray &route : {QByteArray("download-ticket"), QByteArray("download-file")}) {
        for (const QByteArray &challenge :
             {QByteArray("Basic realm=\"x\""), QByteArray("Negotiate"), QByteArray("NTLM"),
              QByteArray("Digest realm=\"x\", nonce=\"n\"")})
            QTest::addRow("%s %s", route.constData(), challenge.constData()) << route << challenge;
    }
}

void ProductDownloadsFaultsTest::challengeIsNotAnswered()
{
    QFETCH(const QByteArray, route);
    QFETCH(const QByteArray, challenge);
    f_->service.handleRoute(route, TlsService::always(TlsService::response(
                                       401, "{}", "application/json", {{"WWW-Authenticate", challenge}})));
    QCOMPARE(f_->acquired().error, u"Status.LoginRequired"_s);
    QCOMPARE(f_->service.count(route), 1);
    QCOMPARE(f_->events, QStringList({u"done"_s, u"expired"_s}));
}

void ProductDownloadsFaultsTest::silenceEndsAtTheTimeOut_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<QByteArray>("begin");
    for (const QByteArray &route : {QByteArray("download-ticket"), QByteArray("download-file")}) {
        QTest::addRow("%s without a header", route.constData()) << route << QByteArray();
        QTest::addRow("%s in the header", route.constData()) << route << QByteArray("HTTP/1.1 200 OK\r\n");
        QTest::addRow("%s in the body", route.constData()) << route << DownloadFixture::head(120'000) + "the";
    }
}

void ProductDownloadsFaultsTest::silenceEndsAtTheTimeOut()
{
    QFETCH(const QByteArray, route);
    QFETCH(const QByteArray, begin);
    f_->network = std::make_unique<HastyNetwork>();
    f_->makeDownloads();
    f_->service.handleRoute(route, sending(begin));
    QCOMPARE(f_->acquired().error, u"Download.Failed"_s);
    QTRY_VERIFY2(f_->isFolderEmpty(), "something was left behind");
    f_->network = std::make_unique<QNetworkAccessManager>();
    f_->makeDownloads();
    f_->serveGood();
    QCOMPARE(f_->acquired().error, QString());
}

void ProductDownloadsFaultsTest::unreachableService()
{
    f_->service.setUnreachable(true);
    QCOMPARE(f_->acquired().error, u"Download.Failed"_s);
    f_->service.setUnreachable(false);
    f_->network->clearConnectionCache();
    QCOMPARE(f_->acquired().error, QString());
}

void ProductDownloadsFaultsTest::untrustedService()
{
    f_->service.useCertificate(TlsService::Certificate::SelfSigned);
    QCOMPARE(f_->acquired().error, u"Download.Failed"_s);
    QCOMPARE(f_->service.requests().size(), 0);
}

void ProductDownloadsFaultsTest::completionComesBeforeTheHandler_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QStringList>("events");
    for (const QByteArray &route : {QByteArray("download-ticket"), QByteArray("download-file")}) {
        QTest::addRow("%s refused", route.constData())
            << route << TlsService::json(401, {}) << QStringList({u"done"_s, u"done"_s, u"expired"_s});
        QTest::addRow("%s quota", route.constData()) << route << withCode(429, u"download_quota_reached"_s)
                                                     << QStringList({u"done"_s, u"done"_s, u"quota"_s});
    }
}

void ProductDownloadsFaultsTest::completionComesBeforeTheHandler()
{
    QFETCH(const QByteArray, route);
    QFETCH(const QByteArray, answer);
    f_->service.handleRoute(route, TlsService::always(answer));
    const auto one = f_->acquire();
    const auto other = f_->acquire();
    QTRY_COMPARE(f_->events.size(), 3);
    QTEST(f_->events, "events");
    QCOMPARE(one->result.error, other->result.error);
}

QTEST_GUILESS_MAIN(ProductDownloadsFaultsTest)
#include "product_downloads_faults_test.moc"
