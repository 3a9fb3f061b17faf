#include "tests/host/support/served_session.h"

#include <QFileInfo>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

/// How packages come in, seen from both ends: OBS with its files here, the log of the service there.
class AcquisitionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void twoClicksAtOnceCauseOneTicketAndOneFile();
    void cachedPackageNeedsNoRequest();
    void cacheSurvivesARestart();
    void packageThatIsNotWhatItSaysIsRefused();
    void absentServiceIsReportedAndTheNextTryWorks();
    void exhaustedQuotaIsReported();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    int fileRequests() { return served_->service().count(u"download-file"_s); }
    int ticketRequests() { return served_->service().count(u"download-ticket"_s); }

    std::unique_ptr<ServedSession> served_;
};

void AcquisitionTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start({.frames = {{u"Frame"_s, u"center"_s, 640, 360}}, .account = u"demo"_s},
                                   &problem);
    QVERIFY2(served_, qPrintable(problem));
}

void AcquisitionTest::twoClicksAtOnceCauseOneTicketAndOneFile()
{
    const ComponentButton first{u"Host pair"_s, u"First"_s};
    const ComponentButton second{u"Host pair"_s, u"Second"_s};
    QVERIFY2(panel().pressBoth(second, first), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForOutcome(first, u"Component.Added"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForOutcome(second, u"Component.Added"_s), qPrintable(panel().problem()));
    QCOMPARE(ticketRequests(), 1);
    QCOMPARE(fileRequests(), 1);
    QVERIFY(served_->state().source(u"Quillmar - First"_s));
    QVERIFY(served_->state().source(u"Quillmar - Second"_s));
}

void AcquisitionTest::cachedPackageNeedsNoRequest()
{
    const int tickets = ticketRequests();
    const int files = fileRequests();
    QVERIFY2(panel().press({u"Host pair"_s, u"First"_s}), qPrintable(panel().problem()));
    QTRY_VERIFY_WITH_TIMEOUT(served_->state().source(u"Quillmar - First (2)"_s), 20000);
    QCOMPARE(ticketRequests(), tickets);
    QCOMPARE(fileRequests(), files);
}

void AcquisitionTest::cacheSurvivesARestart()
{
    QCOMPARE(served_->session().quit().code, 0);
    QString problem;
    QVERIFY2(served_->resume(&problem), qPrintable(problem));
    QVERIFY2(panel().press({u"Host pair"_s, u"Second"_s}), qPrintable(panel().problem()));
    QTRY_VERIFY_WITH_TIMEOUT(served_->state().source(u"Quillmar - Second (2)"_s), 20000);
    QCOMPARE(ticketRequests(), 1);
    QCOMPARE(fileRequests(), 1);
}

void AcquisitionTest::packageThatIsNotWhatItSaysIsRefused()
{
    const QStringList before = served_->session().home().packageFiles();
    const QStringList names = served_->state().ownNames();
    QVERIFY2(panel().run({u"Host wrong digest"_s, u"First"_s}, u"Download.Failed"_s),
             qPrintable(panel().problem()));
    QCOMPARE(served_->session().home().packageFiles(), before);
    QCOMPARE(served_->state().ownNames(), names);
}

void AcquisitionTest::absentServiceIsReportedAndTheNextTryWorks()
{
    const ComponentButton button{u"Host pictures"_s, u"Plain"_s};
    served_->stopService();
    QVERIFY2(panel().run(button, u"Download.Failed"_s), qPrintable(panel().problem()));
    QString problem;
    QVERIFY2(served_->startService(&problem), qPrintable(problem));
    // The service began anew and knows no session, so the next try asks for the account and the one after it
    // works.
    QVERIFY2(panel().press(button), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Session.Expired"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().enter(u"demo"_s, u"demo"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().run(button), qPrintable(panel().problem()));
    QVERIFY(served_->state().source(u"Quillmar - Plain"_s));
    QVERIFY2(panel().clickButton(u"Logout.Button"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Logout.Success"_s), qPrintable(panel().problem()));
}

void AcquisitionTest::exhaustedQuotaIsReported()
{
    const int before = fileRequests();
    QVERIFY2(panel().enter(u"quota"_s, u"quota"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().run({u"Host webcam"_s, u"Frame"_s}, u"Download.QuotaReached"_s),
             qPrintable(panel().problem()));
    QCOMPARE(fileRequests(), before);
    QVERIFY(!served_->state().source(u"Quillmar - Frame"_s));
    QCOMPARE(served_->session().quit().code, 0);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::AcquisitionTest)
#include "acquisition_test.moc"
