#include "bad_replies.h"
#include "update_fixture.h"

#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

QByteArray padded(qsizetype size)
{
    return updateBody() + QByteArray(size - updateBody().size(), ' ');
}

QByteArray serviceTunnel()
{
    return routes::serviceHost().toLatin1() + ":443";
}

/// What was asked for, each once. Qt may send a request again that was redirected: until its own end has come
/// round, it takes the start of the request that follows for its own. The second answer is dropped.
QSet<QByteArray> targets(const TlsService &service)
{
    QSet<QByteArray> targets;
    for (const WireRequest &request : service.requests())
        targets.insert(request.target);
    return targets;
}

/// The answer with a length of its own, or one that ends with the connection.
QByteArray framed(const QByteArray &body, bool hasLength)
{
    return hasLength ? TlsService::response(200, body) : "HTTP/1.1 200 OK\r\n\r\n" + body;
}

} // namespace

/// What a check says over the wire, and how it bears what comes back.
class UpdateWireTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestSaysNothingAboutTheUser();
    void cookiesAreNotSentBack();
    void challengeIsNotAnswered();
    void sizes_data();
    void sizes();
    void endlessBodyIsCutOff();
    void smallBodyThatInflatesIsCutOff();
    void badReplyIsLogged_data();
    void badReplyIsLogged();
    void invalidVersionIsLogged_data();
    void invalidVersionIsLogged();
    void unreachableServiceIsLogged();
    void badCertificateIsLogged_data();
    void badCertificateIsLogged();
    void redirectWithinTheOriginIsFollowed_data();
    void redirectWithinTheOriginIsFollowed();
    void redirectElsewhereIsNotFollowed_data();
    void redirectElsewhereIsNotFollowed();
    void endlessRedirectsAreGivenUp();
    void checkerDiesDuringTheRequest();
    void parentDiesDuringTheRequest();
    void checkerDiesBeforeItsStart();
    void resultCallbackMayDeleteTheChecker_data();
    void resultCallbackMayDeleteTheChecker();
};

void UpdateWireTest::requestSaysNothingAboutTheUser()
{
    UpdateFixture f;
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    const WireRequest request = f.service.requests().constFirst();
    QCOMPARE(request.method, "GET");
    QCOMPARE(request.target, "/wp-json/quillmar/v1/plugin-version");
    QVERIFY(!request.hasHeader("authorization"));
    QVERIFY(!request.hasHeader("cookie"));
    QVERIFY(!request.hasHeader("x-quillmar-ticket"));
    QVERIFY(request.body.isEmpty());
}

void UpdateWireTest::cookiesAreNotSentBack()
{
    UpdateFixture f;
    f.answer(TlsService::response(200, updateBody(), "application/json",
                                  {{"Set-Cookie", "id=1; Path=/; Secure"}, {"Set-Cookie", "other=2"}}));
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    f.now += Day;
    f.checker->checkNow();
    QTRY_COMPARE(f.service.count("plugin-version"), 2);
    QVERIFY(!f.service.requests().constLast().hasHeader("cookie"));
}

void UpdateWireTest::challengeIsNotAnswered()
{
    UpdateFixture f;
    f.answer(
        TlsService::response(401, "{}", "application/json", {{"WWW-Authenticate", "Basic realm=\"x\""}}));
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.service.requests().size(), 1);
    QCOMPARE(f.log, QStringList{u"Update check unavailable (HTTP 401, network error 204)"_s});
}

void UpdateWireTest::sizes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("hasLength");
    for (const int size : {65535, 65536, 65537, 70000, 1'000'000}) {
        QTest::addRow("%d bytes, length told", size) << size << true;
        QTest::addRow("%d bytes, length unknown", size) << size << false;
    }
}

void UpdateWireTest::sizes()
{
    QFETCH(const int, size);
    QFETCH(const bool, hasLength);
    UpdateFixture f;
    f.answer(framed(padded(size), hasLength), !hasLength);
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    const bool fits = size <= 65536;
    QCOMPARE(f.results.size(), fits ? 1 : 0);
    QCOMPARE(f.log,
             fits ? QStringList() : QStringList{u"Update check unavailable (HTTP 200, network error 5)"_s});
    QCOMPARE(f.kept("response").toByteArray(), fits ? padded(size) : QByteArray());
}

void UpdateWireTest::endlessBodyIsCutOff()
{
    UpdateFixture f;
    QTimer source;
    f.service.handleRoute("plugin-version", [&](const WireRequest &, WireConnection &connection) {
        connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
        connect(&source, &QTimer::timeout, &source, [connection]() mutable {
            if (connection.isOpen() && connection.bytesToWrite() < 100'000)
                connection.send("1000\r\n" + QByteArray(4096, ' ') + "\r\n");
        });
        f.held.append(connection);
        source.start(0);
    });
    f.checker->start();
    QTRY_COMPARE(f.log, QStringList{u"Update check unavailable (HTTP 200, network error 5)"_s});
    QTRY_VERIFY(!f.held.first().isOpen());
    QCOMPARE(f.delay(), Hour);
}

void UpdateWireTest::smallBodyThatInflatesIsCutOff()
{
    UpdateFixture f;
    // What stands before the stream itself is the length, which the wire does not have.
    const QByteArray stream = qCompress(padded(9 * 1024 * 1024)).sliced(4);
    QVERIFY(stream.size() < 65536);
    f.answer(TlsService::response(200, stream, "application/json", {{"Content-Encoding", "deflate"}}));
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.log.size(), 1);
    QVERIFY(f.log.first().startsWith(u"Update check unavailable (HTTP 200, network error "_s));
    QCOMPARE(f.results.size(), 0);
}

void UpdateWireTest::badReplyIsLogged_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("thenClose");
    for (const BadReply &bad : badReplies(updateBody()))
        QTest::newRow(bad.name) << bad.bytes << bad.thenClose;
}

void UpdateWireTest::badReplyIsLogged()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, thenClose);
    UpdateFixture f;
    f.answer(bytes, thenClose);
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.log.size(), 1);
    static const QRegularExpression line(
        u"\\AUpdate check unavailable \\(HTTP [0-9]+, network error [0-9]+\\)\\z"_s);
    QVERIFY2(line.match(f.log.first()).hasMatch(), qPrintable(f.log.first()));
    QCOMPARE(f.results.size(), 0);
    QVERIFY(f.kept("response").toByteArray().isEmpty());
    QCOMPARE(f.delay(), Hour);
}

void UpdateWireTest::invalidVersionIsLogged_data()
{
    QTest::addColumn<QString>("version");
    for (const char *version : {"v0.2.0", "0.2", "0.02.0", "0.2.0-beta"})
        QTest::newRow(version) << QString::fromLatin1(version);
}

void UpdateWireTest::invalidVersionIsLogged()
{
    QFETCH(const QString, version);
    UpdateFixture f;
    f.answer(TlsService::response(200, updateBody(version)));
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.log, QStringList{u"Update check unavailable (HTTP 200, network error 0)"_s});
    QCOMPARE(f.results.size(), 0);
}

void UpdateWireTest::unreachableServiceIsLogged()
{
    UpdateFixture f;
    f.service.setUnreachable(true);
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.log.size(), 1);
    QVERIFY(f.log.first().startsWith(u"Update check unavailable (HTTP 0, network error "_s));
    QVERIFY(!f.log.first().endsWith(u" 0)"_s));
}

void UpdateWireTest::badCertificateIsLogged_data()
{
    QTest::addColumn<TlsService::Certificate>("certificate");
    QTest::newRow("self-signed") << TlsService::Certificate::SelfSigned;
    QTest::newRow("wrong name") << TlsService::Certificate::WrongName;
    QTest::newRow("expired") << TlsService::Certificate::Expired;
}

void UpdateWireTest::badCertificateIsLogged()
{
    QFETCH(const TlsService::Certificate, certificate);
    UpdateFixture f;
    f.service.useCertificate(certificate);
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.log, QStringList{u"Update check unavailable (HTTP 0, network error 6)"_s});
    QCOMPARE(f.service.requests().size(), 0);
}

void UpdateWireTest::redirectWithinTheOriginIsFollowed_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("location");
    const QByteArray host = routes::serviceHost().toLatin1();
    for (const int status : {301, 302, 303, 307, 308}) {
        QTest::addRow("%d relative", status) << status << QByteArray("/elsewhere");
        QTest::addRow("%d absolute", status) << status << QByteArray("https://" + host + "/elsewhere");
    }
}

void UpdateWireTest::redirectWithinTheOriginIsFollowed()
{
    QFETCH(const int, status);
    QFETCH(const QByteArray, location);
    UpdateFixture f;
    f.answer(TlsService::response(status, {}, "text/html", {{"Location", location}, {"Set-Cookie", "id=1"}}));
    f.service.handle("/elsewhere", TlsService::always(TlsService::response(200, updateBody())));
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(targets(f.service), (QSet<QByteArray>{"/wp-json/quillmar/v1/plugin-version", "/elsewhere"}));
    for (const WireRequest &request : f.service.requests()) {
        QVERIFY(!request.hasHeader("cookie"));
        QVERIFY(!request.hasHeader("authorization"));
    }
}

void UpdateWireTest::redirectElsewhereIsNotFollowed_data()
{
    QTest::addColumn<QByteArray>("location");
    const QByteArray host = routes::serviceHost().toLatin1();
    const QByteArrayList locations{"https://evil.example/",
                                   "https://" + host + ".evil.example/",
                                   "https://www." + host + '/',
                                   "http://" + host + "/elsewhere",
                                   "https://" + host + ":444/elsewhere",
                                   "file:///etc/passwd",
                                   "data:application/json,{}",
                                   "ftp://evil.example/",
                                   "//evil.example/"};
    for (const QByteArray &location : locations)
        QTest::newRow(location) << location;
}

void UpdateWireTest::redirectElsewhereIsNotFollowed()
{
    QFETCH(const QByteArray, location);
    UpdateFixture f;
    f.answer(TlsService::response(302, updateBody(), "application/json", {{"Location", location}}));
    f.service.handle("/", TlsService::always(TlsService::response(200, updateBody())));
    f.service.handle("/elsewhere", TlsService::always(TlsService::response(200, updateBody())));
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 0);
    QCOMPARE(f.service.requests().size(), 1);
    QCOMPARE(f.service.connects(), QList<QByteArray>{serviceTunnel()});
    QVERIFY(f.log.first().startsWith(u"Update check unavailable (HTTP 302, network error "_s));
}

void UpdateWireTest::endlessRedirectsAreGivenUp()
{
    UpdateFixture f;
    f.service.handleRoute("plugin-version", [](const WireRequest &request, WireConnection &connection) {
        const int round = request.target.sliced(request.target.indexOf('=') + 1).toInt();
        const QByteArray next = "plugin-version?round=" + QByteArray::number(round + 1);
        connection.send(TlsService::response(302, {}, "text/html", {{"Location", next}}));
    });
    f.checker->start();
    QTRY_VERIFY_WITH_TIMEOUT(!f.isAsking(), 20'000);
    QCOMPARE(f.results.size(), 0);
    QCOMPARE(targets(f.service).size(), 51);
    QCOMPARE(f.log.size(), 1);
}

void UpdateWireTest::checkerDiesDuringTheRequest()
{
    UpdateFixture f;
    f.hold();
    f.checker->start();
    QTRY_COMPARE(f.held.size(), 1);
    f.checker.reset();
    f.held.first().send(TlsService::response(200, updateBody()));
    QTRY_VERIFY(!f.held.first().isOpen());
    QCOMPARE(f.results.size(), 0);
    QCOMPARE(f.log, QStringList());
}

void UpdateWireTest::parentDiesDuringTheRequest()
{
    UpdateFixture f;
    f.hold();
    auto parent = std::make_unique<QObject>();
    const QPointer<UpdateChecker> checker = f.checker.release();
    checker->setParent(parent.get());
    checker->start();
    QTRY_COMPARE(f.held.size(), 1);
    parent.reset();
    QVERIFY(!checker);
    QTRY_VERIFY(!f.held.first().isOpen());
    QCOMPARE(f.results.size(), 0);
    QCOMPARE(f.log, QStringList());
}

void UpdateWireTest::checkerDiesBeforeItsStart()
{
    UpdateFixture f;
    f.keep(updateBody(), f.now - 5, f.now - 5);
    f.checker->scheduleStart();
    f.checker.reset();
    QCoreApplication::processEvents();
    QCOMPARE(f.results.size(), 0);
    QCOMPARE(f.service.connects().size(), 0);
}

void UpdateWireTest::resultCallbackMayDeleteTheChecker_data()
{
    QTest::addColumn<bool>("fromTheCache");
    QTest::newRow("at the start") << true;
    QTest::newRow("when an answer comes") << false;
}

void UpdateWireTest::resultCallbackMayDeleteTheChecker()
{
    QFETCH(const bool, fromTheCache);
    UpdateFixture f;
    if (fromTheCache)
        f.keep(updateBody(), f.now - Day, f.now - Day);
    f.checker->setResultCallback([&f, captured = u"captured"_s](const UpdateInfo &info, bool available) {
        f.checker.reset();
        f.results.append({info, available});
        f.log.append(captured);
    });
    f.checker->start();
    QTRY_VERIFY(!f.checker);
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(f.results.first().info.latestVersion, u"0.2.0"_s);
    QCOMPARE(f.log, QStringList{u"captured"_s});
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::UpdateWireTest)
#include "update_wire_test.moc"
