#include "update_fixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

/// When the checker asks, what it reports and what it plans next.
class UpdateCheckerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void invalidInstalledVersionIsNeverChecked_data();
    void invalidInstalledVersionIsNeverChecked();
    void firstStartAsksAtOnce();
    void answerIsReportedAndKept();
    void comparison_data();
    void comparison();
    void startIsScheduledOnce();
    void scheduledStartRunsAtTheNextTurn();
    void throttling_data();
    void throttling();
    void cachedAnswerIsReportedBeforeAnyRequest();
    void cachedAnswerOfAnOlderVersionIsNotAvailable();
    void oneRequestAtATime();
    void timerChecksAgain();
    void afterASuccessTheNextCheckIsADayLater();
    void afterAFailureTheNextCheckIsAnHourLater();
    void failureLeavesTheCachedAnswerAlone();
    void clockSetBackWhileRunning();
    void clockSetForwardWhileRunning();
    void clockBeforeTheEpoch();
    void restartsAcrossDays();
    void withoutCallbacksNothingBreaks();
};

void UpdateCheckerTest::invalidInstalledVersionIsNeverChecked_data()
{
    QTest::addColumn<QString>("installed");
    for (const char *version : {"", "0.1", "v0.1.3", "0.01.3", "0.1.3-beta", "0.1.3\n"})
        QTest::addRow("'%s'", version) << QString::fromLatin1(version);
}

void UpdateCheckerTest::invalidInstalledVersionIsNeverChecked()
{
    QFETCH(const QString, installed);
    UpdateFixture f;
    f.keep(updateBody(), f.now - 5, f.now - 5);
    f.restart(installed);
    f.checker->start();
    QCOMPARE(f.log, QStringList{u"Update check skipped: invalid installed version"_s});
    QVERIFY(!f.isAsking());
    QCOMPARE(f.delay(), -1);
    QCOMPARE(f.results.size(), 0);
}

void UpdateCheckerTest::firstStartAsksAtOnce()
{
    UpdateFixture f;
    f.checker->start();
    QVERIFY(f.isAsking());
    QCOMPARE(f.results.size(), 0);
    QCOMPARE(f.kept("lastAttempt").toLongLong(), f.now);
    QTRY_COMPARE(f.service.count("plugin-version"), 1);
}

void UpdateCheckerTest::answerIsReportedAndKept()
{
    UpdateFixture f;
    f.hold();
    f.checker->start();
    QTRY_COMPARE(f.held.size(), 1);
    f.now += 3;
    f.held.first().send(TlsService::response(200, updateBody()));
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 1);
    QVERIFY(f.results.first().available);
    QCOMPARE(f.results.first().info, *parseUpdateReply(updateBody()));
    QCOMPARE(f.kept("response").toByteArray(), updateBody());
    QCOMPARE(f.kept("lastSuccess").toLongLong(), f.now);
    QCOMPARE(f.kept("lastAttempt").toLongLong(), f.now - 3);
    QCOMPARE(f.log, QStringList());
    QCOMPARE(f.delay(), Day);
}

void UpdateCheckerTest::comparison_data()
{
    QTest::addColumn<QString>("installed");
    QTest::addColumn<QString>("latest");
    QTest::addColumn<bool>("available");
    const auto add = [](const char *installed, const char *latest, bool available) {
        QTest::addRow("%s, then %s", installed, latest)
            << QString::fromLatin1(installed) << QString::fromLatin1(latest) << available;
    };
    add("0.1.3", "0.1.10", true);
    add("0.1.3", "0.1.4", true);
    add("0.1.3", "0.2.0", true);
    add("0.1.3", "1.0.0", true);
    add("0.1.3", "18446744073709551615.0.0", true);
    add("0.1.3", "0.1.3", false);
    add("0.1.3", "0.1.2", false);
    add("0.1.3", "0.0.9", false);
    add("0.1.10", "0.1.9", false);
    add("1.0.0", "0.99.99", false);
    add("18446744073709551615.0.1", "18446744073709551615.0.0", false);
}

void UpdateCheckerTest::comparison()
{
    QFETCH(const QString, installed);
    QFETCH(const QString, latest);
    QFETCH(const bool, available);
    UpdateFixture f;
    f.keep(updateBody(latest), f.now - 5, f.now - 5);
    f.restart(installed);
    f.checker->start();
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(f.results.first().info.latestVersion, latest);
    QCOMPARE(f.results.first().available, available);
}

void UpdateCheckerTest::startIsScheduledOnce()
{
    UpdateFixture f;
    f.keep(updateBody(), f.now - 5, f.now - 5);
    f.checker->scheduleStart();
    f.checker->scheduleStart();
    QTRY_COMPARE(f.results.size(), 1);
    f.checker->scheduleStart();
    QCoreApplication::processEvents();
    QCOMPARE(f.results.size(), 1);
}

void UpdateCheckerTest::scheduledStartRunsAtTheNextTurn()
{
    UpdateFixture f;
    f.checker->scheduleStart();
    QVERIFY(!f.isAsking());
    QTRY_COMPARE(f.results.size(), 1);
}

/// Ages in seconds; negative ones are in the future. `kept` is whether there is a good answer from before.
void UpdateCheckerTest::throttling_data()
{
    QTest::addColumn<qint64>("success");
    QTest::addColumn<qint64>("attempt");
    QTest::addColumn<bool>("kept");
    QTest::addColumn<bool>("asks");
    QTest::addColumn<qint64>("delay");
    const auto add = [](const char *name, qint64 success, qint64 attempt, bool kept, qint64 delay) {
        QTest::newRow(name) << success << attempt << kept << (delay < 0) << delay;
    };
    constexpr qint64 asks = -1;
    constexpr qint64 never = 1'800'000'000; // as old as the epoch, so the time kept is 0
    add("success a moment ago", 0, 0, true, Day);
    add("success 86399 s ago", Day - 1, Day - 1, true, 1);
    add("success 86400 s ago", Day, Day, true, asks);
    add("attempt a moment ago", never, 0, false, Hour);
    add("attempt 3599 s ago", never, Hour - 1, false, 1);
    add("attempt 3600 s ago", never, Hour, false, asks);
    add("old success, attempt 3599 s ago", 2 * Day, Hour - 1, true, 1);
    add("old success, attempt 3600 s ago", 2 * Day, Hour, true, asks);
    add("success 82801 s ago, attempt a moment ago", Day - Hour + 1, 0, true, Hour);
    add("success without an answer kept", 5, never, false, asks);
    add("success in the future", -1, never, true, asks);
    add("success far in the future", -100 * Day, never, true, asks);
    add("attempt in the future", never, -1, false, asks);
    add("attempt a year in the future", never, -365 * Day, true, asks);
    add("both in the future", -Day, -Day, true, asks);
    add("success before the epoch", never + 1, never, true, asks);
    add("attempt before the epoch", never, never + 1, true, asks);
    add("future attempt does not undo a success", 100, -Day, true, Day - 100);
}

void UpdateCheckerTest::throttling()
{
    QFETCH(const qint64, success);
    QFETCH(const qint64, attempt);
    QFETCH(const bool, kept);
    QFETCH(const bool, asks);
    QFETCH(const qint64, delay);
    UpdateFixture f;
    f.keep(kept ? updateBody() : QByteArray(), f.now - success, f.now - attempt);
    f.checker->start();
    QCOMPARE(f.results.size(), kept ? 1 : 0);
    QCOMPARE(f.isAsking(), asks);
    QCOMPARE(f.delay(), delay);
    QCOMPARE(f.kept("lastAttempt").toLongLong(), asks ? f.now : f.now - attempt);
}

void UpdateCheckerTest::cachedAnswerIsReportedBeforeAnyRequest()
{
    UpdateFixture f;
    f.keep(updateBody(u"0.3.0"_s), f.now - Day, f.now - Day);
    bool wasAsking = true;
    f.checker->setResultCallback([&](const UpdateInfo &info, bool available) {
        wasAsking = f.isAsking();
        f.results.append({info, available});
        f.checker->setResultCallback({});
    });
    f.checker->start();
    QVERIFY(!wasAsking);
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(f.results.first().info.latestVersion, u"0.3.0"_s);
    QVERIFY(f.results.first().available);
    QVERIFY(f.isAsking());
}

void UpdateCheckerTest::cachedAnswerOfAnOlderVersionIsNotAvailable()
{
    UpdateFixture f;
    f.keep(updateBody(u"0.1.2"_s), f.now - 5, f.now - 5);
    f.checker->start();
    QCOMPARE(f.results.size(), 1);
    QVERIFY(!f.results.first().available);
}

void UpdateCheckerTest::oneRequestAtATime()
{
    UpdateFixture f;
    f.hold();
    f.checker->start();
    QTRY_COMPARE(f.held.size(), 1);
    f.now += 2 * Day;
    f.checker->checkNow();
    QCOMPARE(f.checker->findChildren<QNetworkReply *>().size(), 1);
    f.held.first().send(TlsService::response(200, updateBody()));
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.service.count("plugin-version"), 1);
}

void UpdateCheckerTest::timerChecksAgain()
{
    UpdateFixture f;
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QVERIFY(f.timer()->isSingleShot());
    f.now += Day;
    f.timer()->start(0);
    QTRY_COMPARE(f.results.size(), 2);
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.service.count("plugin-version"), 2);
    QCOMPARE(f.delay(), Day);
}

void UpdateCheckerTest::afterASuccessTheNextCheckIsADayLater()
{
    UpdateFixture f;
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    f.now += Day - 1;
    f.checker->checkNow();
    QVERIFY(!f.isAsking());
    QCOMPARE(f.delay(), 1);
    f.now += 1;
    f.checker->checkNow();
    QVERIFY(f.isAsking());
}

void UpdateCheckerTest::afterAFailureTheNextCheckIsAnHourLater()
{
    UpdateFixture f;
    f.answer(TlsService::response(500, {}));
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.delay(), Hour);
    f.now += Hour - 1;
    f.checker->checkNow();
    QVERIFY(!f.isAsking());
    QCOMPARE(f.delay(), 1);
    f.now += 1;
    f.checker->checkNow();
    QVERIFY(f.isAsking());
}

void UpdateCheckerTest::failureLeavesTheCachedAnswerAlone()
{
    UpdateFixture f;
    f.keep(updateBody(u"0.3.0"_s), f.now - Day, f.now - Day);
    f.answer(TlsService::response(503, updateBody(u"0.9.0"_s)));
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 1);
    f.checker->evaluate();
    QCOMPARE(f.results.last().info.latestVersion, u"0.3.0"_s);
    QCOMPARE(f.kept("response").toByteArray(), updateBody(u"0.3.0"_s));
    QCOMPARE(f.kept("lastSuccess").toLongLong(), f.now - Day);
}

void UpdateCheckerTest::clockSetBackWhileRunning()
{
    UpdateFixture f;
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    f.now -= 365 * Day;
    f.checker->checkNow();
    QVERIFY(!f.isAsking());
    QCOMPARE(f.delay(), Day);
    f.restart();
    f.checker->start();
    QVERIFY(f.isAsking());
}

void UpdateCheckerTest::clockSetForwardWhileRunning()
{
    UpdateFixture f;
    f.hold();
    f.checker->start();
    QTRY_COMPARE(f.held.size(), 1);
    f.now += 100 * 365 * Day;
    f.held.first().send(TlsService::response(500, {}));
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.delay(), 1);
}

void UpdateCheckerTest::clockBeforeTheEpoch()
{
    UpdateFixture f;
    f.now = -10;
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(f.delay(), Day);
    f.now = -5;
    f.restart();
    f.checker->start();
    QVERIFY(f.isAsking());
}

void UpdateCheckerTest::restartsAcrossDays()
{
    UpdateFixture f;
    const qint64 first = f.now;
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    for (const qint64 age : {qint64(1), Hour, 12 * Hour, Day - 1}) {
        f.now = first + age;
        f.restart();
        f.checker->start();
        QVERIFY(!f.isAsking());
        QCOMPARE(f.delay(), Day - age);
    }
    QCOMPARE(f.results.size(), 5);
    f.now = first + Day;
    f.restart();
    f.checker->start();
    QVERIFY(f.isAsking());
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.service.count("plugin-version"), 2);
}

void UpdateCheckerTest::withoutCallbacksNothingBreaks()
{
    UpdateFixture f;
    f.checker->setResultCallback({});
    f.checker->setLogCallback({});
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.kept("response").toByteArray(), updateBody());
    f.answer(TlsService::response(500, {}));
    f.now += Day;
    f.checker->checkNow();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.delay(), Hour);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::UpdateCheckerTest)
#include "update_checker_test.moc"
