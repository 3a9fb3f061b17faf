#include "tests/unit/catalogue/direct_download_fixture.h"
#include "tests/unit/packages/disk_limit.h"
#include "tests/unit/packages/file_tree.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QTest>
#include <QTimer>

#include <optional>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// How a hostile connection ends after its bytes.
enum class Then { Nothing, Close, Reset };

constexpr QLatin1StringView TicketFailed{"Quillmar ticket request failed. HTTP "};
constexpr QLatin1StringView FileFailed{"Quillmar file download failed. HTTP "};

QByteArray withCode(int status, const QString &code)
{
    return TlsService::json(status, {{u"code"_s, code}});
}

QByteArray headOf(qint64 length)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(length) +
           "\r\nContent-Disposition: filename=x.zip\r\n\r\n";
}

} // namespace

/// What a download shows and leaves when the service is not as it should be. The next one works.
class DirectDownloadFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void badTicket_data();
    void badTicket();
    void badFile_data();
    void badFile();
    void resetInTheMiddle();
    void quotaExhausted();
    void redirectIsNotFollowed_data();
    void redirectIsNotFollowed();
    void challengeIsNotAnswered();
    void unreachableService();
    void untrustedService();

    void bodyBeyondItsSizeStopsEarly();
    void endlessTicketStopsEarly();

private:
    static TlsService::Handler sending(const QByteArray &bytes, Then then = Then::Nothing);
    void expectFailure(const QStringList &warnings);
    void expectSuccessNow();

    std::optional<DirectDownloadFixture> f_;
};

TlsService::Handler DirectDownloadFaultsTest::sending(const QByteArray &bytes, Then then)
{
    return [bytes, then](const WireRequest &, WireConnection &connection) {
        connection.send(bytes);
        if (then == Then::Close)
            connection.close();
        else if (then == Then::Reset)
            connection.reset();
    };
}

void DirectDownloadFaultsTest::expectFailure(const QStringList &warnings)
{
    QCOMPARE(f_->outcome(), u"Download.Failed"_s);
    QCOMPARE(f_->row->status->styleSheet(), u"color: #ff5555;"_s);
    QCOMPARE(f_->row->suffix(), QString());
    QCOMPARE(f_->events, warnings);
    QCOMPARE(f_->warnings, warnings);
    QTRY_VERIFY2(treeBelow(f_->around()).isEmpty(), "something was left behind");
    expectSuccessNow();
}

void DirectDownloadFaultsTest::expectSuccessNow()
{
    f_->serveGood();
    DownloadRow next;
    f_->start(next);
    QCOMPARE(f_->outcomeOf(next), u"Download.Success"_s);
    QCOMPARE(f_->saved(u"Pack 1.zip"_s), f_->bytes);
}

void DirectDownloadFaultsTest::badTicket_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<Then>("then");
    QTest::addColumn<int>("logged"); ///< HTTP status in the log; -1: no line
    const auto row = [](const char *name, const QByteArray &answer, int logged, Then then = Then::Nothing) {
        QTest::newRow(name) << answer << then << logged;
    };
    for (const int status : {401, 403, 400, 404, 429, 500, 503, 999})
        row(qPrintable(QString::number(status)), TlsService::json(status, {{u"ticket"_s, u"t"_s}}), status);
    row("204", "HTTP/1.1 204 No Content\r\n\r\n", 204);
    row("206", TlsService::json(206, {{u"ticket"_s, u"t"_s}}), 206);
    row("429 rate_limited", withCode(429, u"rate_limited"_s), 429);
    row("429 quota in another case", withCode(429, u"Download_Quota_Reached"_s), 429);
    row("429 without JSON", TlsService::response(429, "slow down", "text/plain"), 429);
    row("quota code with 500", withCode(500, u"download_quota_reached"_s), 500);
    row("quota code with 200", withCode(200, u"download_quota_reached"_s), -1);
    row("no ticket", TlsService::json(200, {}), -1);
    row("empty ticket", TlsService::json(200, {{u"ticket"_s, QString()}}), -1);
    row("ticket is a number", TlsService::response(200, R"({"ticket": 7})"), -1);
    row("ticket with a line break", TlsService::json(200, {{u"ticket"_s, u"a\r\nX-Evil: 1"_s}}), -1);
    row("HTML", TlsService::response(200, "<p>Hello", "text/html"), -1);
    row("empty 200", TlsService::response(200, {}), -1);
    row("no response, closed", {}, 0, Then::Close);
    row("no response, reset", {}, 0, Then::Reset);
    row("cut off", headOf(100) + "{\"ticket\":\"t\"}", 200, Then::Close);
}

void DirectDownloadFaultsTest::badTicket()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const Then, then);
    QFETCH(const int, logged);
    f_->serveTicket(sending(answer, then));
    expectFailure(logged < 0 ? QStringList() : QStringList{TicketFailed + QString::number(logged)});
    QCOMPARE(f_->files(), 1); // the one of the success
}

void DirectDownloadFaultsTest::badFile_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<Then>("then");
    QTest::addColumn<int>("logged");
    const auto row = [](const char *name, const QByteArray &answer, int logged, Then then = Then::Nothing) {
        QTest::newRow(name) << answer << then << logged;
    };
    for (const int status : {401, 403, 400, 404, 410, 500, 503, 999})
        row(qPrintable(QString::number(status)), TlsService::response(status, "bytes"), status);
    row("204", "HTTP/1.1 204 No Content\r\n\r\n", 204);
    row("206", TlsService::response(206, "bytes"), 206);
    row("429 quota", withCode(429, u"download_quota_reached"_s), 429);
    row("empty 200", TlsService::response(200, {}), 200);
    row("empty 200 without length", "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n", 200, Then::Close);
    row("no response, closed", {}, 0, Then::Close);
    row("cut off at once", headOf(100), 200, Then::Close);
    row("cut off in the middle", headOf(400'000) + QByteArray(200'000, 'b'), 200, Then::Close);
    row("cut off in a chunk",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nContent-Disposition: filename=x.zip\r\n\r\n"
        "40\r\nabc",
        200, Then::Close);
}

void DirectDownloadFaultsTest::badFile()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const Then, then);
    QFETCH(const int, logged);
    f_->serveFile(sending(answer, then));
    expectFailure({FileFailed + QString::number(logged)});
}

/// Whether the head of the reply survives the reset is up to the system.
void DirectDownloadFaultsTest::resetInTheMiddle()
{
    f_->serveFile(sending(headOf(400'000) + QByteArray(200'000, 'b'), Then::Reset));
    QCOMPARE(f_->outcome(), u"Download.Failed"_s);
    QCOMPARE(f_->warnings.size(), 1);
    QVERIFY(f_->warnings.first().startsWith(FileFailed));
    QTRY_VERIFY2(treeBelow(f_->around()).isEmpty(), "something was left behind");
    expectSuccessNow();
}

void DirectDownloadFaultsTest::quotaExhausted()
{
    f_->serveTicket(TlsService::always(withCode(429, u"download_quota_reached"_s)));
    QCOMPARE(f_->outcome(), u"Download.QuotaReached"_s);
    QCOMPARE(f_->row->status->styleSheet(), u"color: #ff5555;"_s);
    QCOMPARE(f_->events, QStringList{u"quota"_s});
    QCOMPARE(f_->files(), 0);
    QVERIFY(f_->row->isBusy());
    expectSuccessNow();
}

void DirectDownloadFaultsTest::redirectIsNotFollowed_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("location");
    const QByteArray same = "https://quillmar.example/wp-json/quillmar/v1/elsewhere";
    for (const QByteArray &route : {QByteArray("download-ticket"), QByteArray("download-file")}) {
        for (const int status : {301, 302, 303, 307, 308})
            QTest::addRow("%s %d", route.constData(), status) << route << status << same;
        for (const QByteArray &location : {QByteArray("https://evil.example/x"), QByteArray("http://x/"),
                                           QByteArray("file:///etc/passwd"), QByteArray("data:,x")})
            QTest::addRow("%s to %s", route.constData(), location.constData()) << route << 302 << location;
    }
}

void DirectDownloadFaultsTest::redirectIsNotFollowed()
{
    QFETCH(const QByteArray, route);
    QFETCH(const int, status);
    QFETCH(const QByteArray, location);
    f_->service.handleRoute(route, TlsService::always(TlsService::response(status, "{}", "application/json",
                                                                           {{"Location", location}})));
    const bool isTicket = route == "download-ticket";
    QCOMPARE(f_->outcome(), u"Download.Failed"_s);
    QCOMPARE(f_->service.requests().size(), isTicket ? 1 : 2);
    for (const QByteArray &host : f_->service.connects())
        QCOMPARE(host, "quillmar.example:443");
    QCOMPARE(f_->warnings, QStringList{(isTicket ? TicketFailed : FileFailed) + QString::number(status)});
}

void DirectDownloadFaultsTest::challengeIsNotAnswered()
{
    f_->serveTicket(TlsService::always(
        TlsService::response(401, "{}", "application/json", {{"WWW-Authenticate", "Basic realm=\"x\""}})));
    QCOMPARE(f_->outcome(), u"Download.Failed"_s);
    QCOMPARE(f_->tickets(), 1);
}

void DirectDownloadFaultsTest::unreachableService()
{
    f_->service.setUnreachable(true);
    QCOMPARE(f_->outcome(), u"Download.Failed"_s);
    QCOMPARE(f_->warnings, QStringList{TicketFailed + u"0"_s});
}

void DirectDownloadFaultsTest::untrustedService()
{
    f_->service.useCertificate(TlsService::Certificate::SelfSigned);
    QCOMPARE(f_->outcome(), u"Download.Failed"_s);
    QCOMPARE(f_->service.requests().size(), 0);
}

void DirectDownloadFaultsTest::bodyBeyondItsSizeStopsEarly()
{
    qint64 sent = 0;
    bool wasDropped = false;
    QTimer feeder;
    f_->serveFile([&](const WireRequest &, WireConnection &connection) {
        connection.send("HTTP/1.1 200 OK\r\nContent-Disposition: filename=x.zip\r\n\r\n");
        connect(&feeder, &QTimer::timeout, &feeder, [&, wire = connection]() mutable {
            static const QByteArray piece(128 * 1024, 'e');
            wasDropped = !wire.isOpen();
            if (!wasDropped && wire.bytesToWrite() < piece.size()) {
                wire.send(piece);
                sent += piece.size();
            }
        });
        feeder.start(0);
    });
    QCOMPARE(f_->outcome(u"abc"_s, 1'000'000), u"Download.Failed"_s);
    QTRY_VERIFY(wasDropped);
    feeder.stop();
    QVERIFY2(sent < 32 * 1024 * 1024, qPrintable(QString::number(sent)));
    QCOMPARE(f_->warnings, QStringList{FileFailed + u"200"_s});
    QTRY_VERIFY2(treeBelow(f_->around()).isEmpty(), "something was left behind");
}

void DirectDownloadFaultsTest::endlessTicketStopsEarly()
{
    f_->serveTicket(sending("HTTP/1.1 200 OK\r\n\r\n" + QByteArray(1100 * 1024, ' ')));
    QCOMPARE(f_->outcome(), u"Download.Failed"_s);
    QCOMPARE(f_->files(), 0);
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::DirectDownloadFaultsTest)
#include "direct_download_faults_test.moc"
