#include "tests/host/support/host_session.h"

#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

/// OBS without the module: what the other tests rely on when they compare, and whether the tools themselves
/// work.
class BareHostTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void thereIsNoDock();
    void canvasIsTheOneAskedFor();
    void aNewSceneIsSeen();
    void graphicsTakesNoEventsFromTheWindows();
    void memoryAndStallsAreMeasured();
    void quitsInOrder();

private:
    std::unique_ptr<HostSession> session_;
};

void BareHostTest::initTestCase()
{
    QString problem;
    session_ = HostSession::start({.installModule = false}, &problem);
    QVERIFY2(session_, qPrintable(problem));
}

void BareHostTest::thereIsNoDock()
{
    QCOMPARE(session_->driver().ask(u"dock-count"_s, {{u"id"_s, u"quillmar-dock"_s}}).toInt(-1), 0);
    QVERIFY(session_->panel().robot().tree().isEmpty());
}

void BareHostTest::canvasIsTheOneAskedFor()
{
    QCOMPARE(session_->state().canvas(), QSize(1920, 1080));
}

void BareHostTest::aNewSceneIsSeen()
{
    const ObsState state = session_->state();
    QVERIFY(state.createScene(u"صحنه دوم"_s));
    QTRY_VERIFY_WITH_TIMEOUT(state.scenes().contains(u"صحنه دوم"_s), 20000);
    QVERIFY(state.setCurrentScene(u"صحنه دوم"_s));
    QCOMPARE(state.currentScene(), u"صحنه دوم"_s);
    QVERIFY(state.items(u"صحنه دوم"_s).isEmpty());
}

/// Clicks and keys get lost without the keeper of events; it has nothing to do once OBS leaves them alone.
void BareHostTest::graphicsTakesNoEventsFromTheWindows()
{
    QTRY_VERIFY_WITH_TIMEOUT(session_->driver().ask(u"refused-polls"_s).toInt() > 0, 20000);
}

void BareHostTest::memoryAndStallsAreMeasured()
{
    QVERIFY(session_->driver().ask(u"stall-reset"_s).toBool());
    QTRY_VERIFY_WITH_TIMEOUT(session_->driver().ask(u"stall"_s)["ticks"_L1].toInt() > 10, 20000);
    QVERIFY(session_->driver().ask(u"stall"_s)["longest_ms"_L1].toDouble() > 0);
    QVERIFY(session_->driver().ask(u"memory"_s)["VmRSS"_L1].toInt() > 0);
}

void BareHostTest::quitsInOrder()
{
    const ObsExit exit = session_->quit();
    QVERIFY(exit.inTime);
    QVERIFY(!exit.crashed);
    QCOMPARE(exit.code, 0);
    QCOMPARE(exit.log.leaks, 0);
    QVERIFY(exit.log.ownLines.isEmpty());
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::BareHostTest)
#include "bare_host_test.moc"
