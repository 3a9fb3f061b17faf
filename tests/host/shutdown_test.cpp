#include "tests/host/support/served_session.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 GiantBytes = 600LL * 1024 * 1024;

// Whole packages, their records and components; anything else is a file that somebody forgot.
QStringList leftovers(const QStringList &files)
{
    static const QRegularExpression known(
        u"^(\\.quillmar-cache/[0-9a-f]{64}/(product|manifest\\.json)|giant-package/[0-9a-f]{16}/Components/.*\\.webm)$"_s);
    QStringList list;
    for (const QString &file : files) {
        if (!known.match(file).hasMatch())
            list.append(file);
    }
    return list;
}

} // namespace

/// Leaving OBS while the module works: in order, in time, with nothing left behind.
class ShutdownTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void quitsWhileSignedIn();
    void quitsInTheMiddleOfSigningIn();
    void quitsInTheMiddleOfADownload();
    void quitsInTheMiddleOfAnExtraction();
    void startsAgainAfterBeingKilledInADownload();
    void startsAgainAfterBeingKilledInAnExtraction();

private:
    std::unique_ptr<ServedSession> startGiant();
    static bool beginDownload(ServedSession &served);
    static bool beginExtraction(ServedSession &served);
    static void checkExit(const ObsExit &exit);
    void checkThatTheNextRunWorks(ServedSession &served);

    const ComponentButton button_{QStringLiteral("Giant package"), QStringLiteral("Giant clip")};
};

std::unique_ptr<ServedSession> ShutdownTest::startGiant()
{
    QString problem;
    auto served = ServedSession::start({.giantBytes = GiantBytes, .account = u"demo"_s}, &problem);
    if (!served)
        qWarning("%s", qPrintable(problem));
    return served;
}

// The service writes its log line when the body begins to flow.
bool ShutdownTest::beginDownload(ServedSession &served)
{
    return served.panel().press({u"Giant package"_s, u"Giant clip"_s}) &&
           QTest::qWaitFor([&served] { return served.service().count(u"download-file"_s) == 1; }, 30000);
}

bool ShutdownTest::beginExtraction(ServedSession &served)
{
    const ComponentButton button{u"Giant package"_s, u"Giant clip"_s};
    return served.panel().press(button) &&
           QTest::qWaitFor([&] { return served.panel().outcome(button) == "Component.Extracting"_L1; },
                           60000);
}

void ShutdownTest::checkExit(const ObsExit &exit)
{
    QVERIFY(exit.inTime);
    QVERIFY(!exit.crashed);
    QCOMPARE(exit.code, 0);
    QCOMPARE(exit.log.leaks, 0);
    QCOMPARE(exit.log.ownLines.last(), u"[quillmar-obs-plugin] plugin unloaded"_s);
}

void ShutdownTest::checkThatTheNextRunWorks(ServedSession &served)
{
    QString problem;
    QVERIFY2(served.resume(&problem), qPrintable(problem));
    QVERIFY2(served.panel().press(button_), qPrintable(served.panel().problem()));
    QTRY_VERIFY_WITH_TIMEOUT(served.state().source(u"Quillmar - Giant clip"_s), 60000);
    checkExit(served.session().obs().quit());
    QCOMPARE(leftovers(served.session().home().packageFiles()), QStringList());
}

void ShutdownTest::quitsWhileSignedIn()
{
    const auto served = startGiant();
    QVERIFY(served);
    checkExit(served->session().obs().quit());
}

void ShutdownTest::quitsInTheMiddleOfSigningIn()
{
    QString problem;
    const auto served = ServedSession::start({}, &problem);
    QVERIFY2(served, qPrintable(problem));
    QVERIFY2(served->panel().setLanguage(u"en-US"_s), qPrintable(served->panel().problem()));
    QVERIFY2(served->panel().signIn(u"demo"_s, u"demo"_s), qPrintable(served->panel().problem()));
    checkExit(served->session().obs().quit());
}

void ShutdownTest::quitsInTheMiddleOfADownload()
{
    const auto served = startGiant();
    QVERIFY(served);
    QVERIFY2(beginDownload(*served), qPrintable(served->panel().problem()));
    QCOMPARE(served->panel().outcome(button_), u"Download.Progress"_s);
    checkExit(served->session().obs().quit());
    QCOMPARE(served->session().home().packageFiles(), QStringList());
}

void ShutdownTest::quitsInTheMiddleOfAnExtraction()
{
    const auto served = startGiant();
    QVERIFY(served);
    QVERIFY2(beginExtraction(*served), qPrintable(served->panel().problem()));
    checkExit(served->session().obs().quit());
    QCOMPARE(leftovers(served->session().home().packageFiles()), QStringList());
}

void ShutdownTest::startsAgainAfterBeingKilledInADownload()
{
    const auto served = startGiant();
    QVERIFY(served);
    QVERIFY2(beginDownload(*served), qPrintable(served->panel().problem()));
    served->session().obs().kill();
    QCOMPARE(served->session().home().packageFiles(), QStringList());
    checkThatTheNextRunWorks(*served);
}

void ShutdownTest::startsAgainAfterBeingKilledInAnExtraction()
{
    const auto served = startGiant();
    QVERIFY(served);
    QVERIFY2(beginExtraction(*served), qPrintable(served->panel().problem()));
    served->session().obs().kill();
    QCOMPARE(leftovers(served->session().home().packageFiles()), QStringList());
    checkThatTheNextRunWorks(*served);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::ShutdownTest)
#include "shutdown_test.moc"
