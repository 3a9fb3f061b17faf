#include "tests/host/support/served_session.h"
#include "tests/support/processes/waiting.h"

#include <QFile>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

/// A request gives up after 30 s without an answer.
constexpr std::chrono::milliseconds OfflineDeadline = 60s;

} // namespace

/// A session that lasts from one run of OBS to the next, with a real keyring.
class SessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fileIsForItsOwnerAlone();
    void startsInTheHomeViewWithoutTyping();
    void withoutAKeyringTheFileWaits();
    void lockedKeyringAsksNothing();
    void offlineStartCanBeRetried();
    void anotherInstanceSignsOut();
    void signingInWithoutAKeyringLastsForThisRun();
    void refusedTokenIsForgotten();
    void signingOutRemovesTheFile();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    bool hasFile() const { return QFile::exists(served_->session().home().sessionFile()); }
    QByteArray file() const;
    bool quits();
    bool starts();
    int count(const QString &route) const { return served_->service().count(route); }

    std::unique_ptr<ServedSession> served_;
    QString problem_;
};

QByteArray SessionTest::file() const
{
    QFile file(served_->session().home().sessionFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool SessionTest::quits()
{
    const ObsExit exit = served_->session().quit();
    return exit.inTime && exit.code == 0 && exit.log.leaks == 0;
}

bool SessionTest::starts()
{
    const bool isStarted = served_->session().startObs(&problem_);
    if (isStarted)
        panel().assumeLanguage(u"en-US"_s);
    return isStarted;
}

void SessionTest::initTestCase()
{
    served_ = ServedSession::start({.account = u"demo"_s}, &problem_);
    QVERIFY2(served_, qPrintable(problem_));
    QVERIFY(hasFile());
}

void SessionTest::fileIsForItsOwnerAlone()
{
    QCOMPARE(QFile::permissions(served_->session().home().sessionFile()),
             QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
    QCOMPARE(served_->session().keyring().keyCount(), 1);
}

void SessionTest::startsInTheHomeViewWithoutTyping()
{
    QVERIFY(quits());
    QVERIFY2(served_->resume(&problem_), qPrintable(problem_));
    QCOMPARE(panel().visibleProducts().size(), HostCatalogue::Products);
    QCOMPARE(count(u"login"_s), 1);
}

void SessionTest::withoutAKeyringTheFileWaits()
{
    const QByteArray before = file();
    QVERIFY(quits());
    served_->session().keyring().stop();
    const int requests = count(u"products"_s);
    QVERIFY2(starts(), qPrintable(problem_));
    QVERIFY(panel().showsSignInView());
    QCOMPARE(count(u"products"_s), requests);
    QCOMPARE(file(), before);
    QVERIFY(quits());
    QVERIFY(served_->session().keyring().start());
    QVERIFY2(served_->resume(&problem_), qPrintable(problem_));
    QCOMPARE(count(u"login"_s), 1);
}

void SessionTest::lockedKeyringAsksNothing()
{
    const QByteArray before = file();
    QVERIFY(quits());
    QVERIFY(served_->session().keyring().lock());
    QVERIFY2(starts(), qPrintable(problem_));
    QVERIFY(panel().showsSignInView());
    QCOMPARE(file(), before);
    QVERIFY(quits());
    served_->session().keyring().stop();
    QVERIFY(served_->session().keyring().start());
    QVERIFY2(served_->resume(&problem_), qPrintable(problem_));
}

void SessionTest::offlineStartCanBeRetried()
{
    QVERIFY(quits());
    served_->service().freeze();
    QVERIFY2(starts(), qPrintable(problem_));
    QVERIFY(waitUntil([this] { return panel().statusKey() == "Session.Offline"_L1; }, OfflineDeadline));
    QVERIFY(!panel().showsSignInView());
    QVERIFY(hasFile());
    served_->service().thaw();
    QVERIFY2(panel().clickButton(u"Session.Retry"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForHome(), qPrintable(panel().problem()));
    QCOMPARE(count(u"login"_s), 1);
}

/// The second OBS covers the first one until it is closed.
void SessionTest::anotherInstanceSignsOut()
{
    const QProcessEnvironment desktop = served_->session().desktop();
    const auto other = ObsProcess::start(served_->session().home(), desktop, &problem_);
    QVERIFY2(other, qPrintable(problem_));
    RobotHand hand(desktop);
    DockRobot robot(other->driver(), hand);
    QVERIFY2(robot.showDock(HostSession::DockWidth), qPrintable(robot.problem()));
    QuillmarPanel second(robot);
    second.assumeLanguage(u"en-US"_s);
    QVERIFY2(second.waitForHome(), qPrintable(second.problem()));
    QVERIFY2(second.clickButton(u"Logout.Button"_s), qPrintable(second.problem()));
    QVERIFY2(second.waitForStatus(u"Logout.Success"_s), qPrintable(second.problem()));
    QVERIFY(!hasFile());
    QCOMPARE(other->quit().code, 0);

    const int before = count(u"products"_s);
    QVERIFY2(panel().clickButton(u"Gallery.Refresh"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Session.Expired"_s), qPrintable(panel().problem()));
    QVERIFY(panel().showsSignInView());
    QVERIFY(!hasFile());
    QCOMPARE(count(u"products"_s), before + 1);
}

void SessionTest::signingInWithoutAKeyringLastsForThisRun()
{
    served_->session().keyring().stop();
    QVERIFY2(panel().signIn(u"demo"_s, u"demo"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Session.SaveFailed"_s), qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(panel().visibleProducts().size(), HostCatalogue::Products, 20000);
    QVERIFY(!hasFile());
    QVERIFY(quits());
    QVERIFY(served_->session().keyring().start());
    QVERIFY2(starts(), qPrintable(problem_));
    QVERIFY(panel().showsSignInView());
    QVERIFY2(panel().enter(u"demo"_s, u"demo"_s), qPrintable(panel().problem()));
    QVERIFY(hasFile());
}

/// A service that was started anew knows none of the old tokens.
void SessionTest::refusedTokenIsForgotten()
{
    QVERIFY(quits());
    QVERIFY2(served_->startService(&problem_), qPrintable(problem_));
    QVERIFY2(starts(), qPrintable(problem_));
    QVERIFY2(panel().waitForStatus(u"Session.Expired"_s), qPrintable(panel().problem()));
    QVERIFY(panel().showsSignInView());
    QVERIFY(!hasFile());
    QCOMPARE(count(u"products"_s), 1);
}

void SessionTest::signingOutRemovesTheFile()
{
    QVERIFY2(panel().enter(u"demo"_s, u"demo"_s), qPrintable(panel().problem()));
    QVERIFY(hasFile());
    QVERIFY2(panel().clickButton(u"Logout.Button"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Logout.Success"_s), qPrintable(panel().problem()));
    QVERIFY(!hasFile());
    QVERIFY(quits());
    QVERIFY2(starts(), qPrintable(problem_));
    QVERIFY(panel().showsSignInView());
    QVERIFY(quits());
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::SessionTest)
#include "session_test.moc"
