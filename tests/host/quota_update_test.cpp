#include "tests/host/support/served_session.h"
#include "tests/support/processes/waiting.h"

#include <QTest>

#include <algorithm>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

/// How many downloads are left, and that there is a newer version, as a user sees it from run to run.
class QuotaUpdateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void bannerAppearsAfterTheStart();
    void bannerFollowsTheLanguage();
    void quotaAppearsAfterSignIn();
    void quotaFollowsTheLanguage();
    void narrowDockShowsBothWhole();
    void downloadCountsDown();
    void cachedComponentCountsNothing();
    void directDownloadOfTheSamePackageCountsNothing();
    void signOutHidesTheQuota();
    void exhaustedAccountHasNoneLeft();
    void unlimitedAccountSaysSo();
    void secondStartShowsTheBannerWithoutARequest();
    void bannerIsShownWhileTheServiceIsDown();
    void checkWithoutAServiceIsAWarning();
    void nothingLeaks();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    int versionRequests() { return served_->service().count(u"plugin-version"_s); }
    bool bannerShows(const QString &text);
    bool leave();
    bool restart();
    bool screenshot(const QString &name);

    std::unique_ptr<ServedSession> served_;
    QList<int> leaks_;
};

/// One of the visible texts of the banner, labels and button alike.
bool QuotaUpdateTest::bannerShows(const QString &text)
{
    return panel().robot().waitFor(
        [&text](const WidgetTree &tree) {
            const Widget *widget = updateBanner(tree);
            return widget && tree.findBelow(*widget, [&text](const Widget &child) {
                return child.visible && withoutIsolates(child.text) == text;
            });
        },
        u"“%1” in the update banner"_s.arg(text));
}

bool QuotaUpdateTest::leave()
{
    return panel().clickButton(u"Logout.Button"_s) && panel().waitForStatus(u"Logout.Success"_s);
}

bool QuotaUpdateTest::restart()
{
    const ObsExit exit = served_->session().quit();
    leaks_.append(exit.log.leaks);
    QString problem;
    if (exit.inTime && exit.code == 0 && served_->session().startObs(&problem))
        return true;
    qWarning() << "OBS did not end or start in order: in time" << exit.inTime << "crashed" << exit.crashed
               << "code" << exit.code << "milliseconds" << exit.milliseconds << problem;
    return false;
}

/// For people to look at, when they say where.
bool QuotaUpdateTest::screenshot(const QString &name)
{
    const QString folder = qEnvironmentVariable("QUILLMAR_SCREENSHOTS");
    return folder.isEmpty() || served_->session().takeScreenshot(folder + u'/' + name + u".png"_s);
}

void QuotaUpdateTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start({.frames = {{u"Frame"_s, u"center"_s, 640, 360}}}, &problem);
    QVERIFY2(served_, qPrintable(problem));
}

void QuotaUpdateTest::bannerAppearsAfterTheStart()
{
    QVERIFY2(panel().waitForBanner(), qPrintable(panel().problem()));
    QCOMPARE(versionRequests(), 1);
    const QJsonObject request = served_->service().requests().constFirst();
    QCOMPARE(request["status"_L1].toInt(), 200);
    QVERIFY(request["account"_L1].toString().isEmpty());
}

void QuotaUpdateTest::bannerFollowsTheLanguage()
{
    for (const QString &language : {u"fa-IR"_s, u"en-US"_s}) {
        QVERIFY2(panel().setLanguage(language), qPrintable(panel().problem()));
        const QString versions = panel().text(u"Update.CurrentVersion"_s).arg(u"0.1.3"_s) + u'\n' +
                                 panel().text(u"Update.NewVersion"_s).arg(u"0.2.0"_s);
        for (const QString &text :
             {panel().text(u"Update.Available"_s), versions, panel().text(u"Update.Download"_s)})
            QVERIFY2(bannerShows(text), qPrintable(panel().problem()));
        const WidgetTree tree = panel().robot().tree();
        QCOMPARE(updateBanner(tree)->rightToLeft, language == u"fa-IR"_s);
        QVERIFY(screenshot(u"banner-"_s + language));
    }
}

void QuotaUpdateTest::quotaAppearsAfterSignIn()
{
    QVERIFY2(panel().enter(u"demo"_s, u"demo"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForDailyQuota(25, 25), qPrintable(panel().problem()));
}

void QuotaUpdateTest::quotaFollowsTheLanguage()
{
    for (const QString &language : {u"fa-IR"_s, u"en-US"_s}) {
        QVERIFY2(panel().setLanguage(language), qPrintable(panel().problem()));
        QVERIFY2(panel().waitForDailyQuota(25, 25), qPrintable(panel().problem()));
        const WidgetTree tree = panel().robot().tree();
        QCOMPARE(quotaLabel(tree)->rightToLeft, language == u"fa-IR"_s);
        QVERIFY(screenshot(u"quota-"_s + language));
    }
    QCOMPARE(served_->service().count(u"download-quota"_s), 1);
}

void QuotaUpdateTest::narrowDockShowsBothWhole()
{
    QVERIFY2(panel().robot().showDock(300), qPrintable(panel().problem()));
    for (const QString &language : {u"fa-IR"_s, u"en-US"_s}) {
        QVERIFY2(panel().setLanguage(language), qPrintable(panel().problem()));
        QVERIFY2(panel().waitForDailyQuota(25, 25), qPrintable(panel().problem()));
        const auto isWhole = [](const WidgetTree &tree) {
            const Widget *frame = updateBanner(tree);
            const auto lines = tree.allBelow(*frame, [](const Widget &w) { return w.role == "label"_L1; });
            return !lines.isEmpty() && std::ranges::all_of(lines, [frame](const Widget *line) {
                return frame->rect.contains(line->rect) && line->rect.height() >= line->needed.height();
            });
        };
        QVERIFY2(panel().robot().waitFor(isWhole, u"the whole banner"_s), qPrintable(panel().problem()));
        QVERIFY(screenshot(u"narrow-"_s + language));
    }
    QVERIFY2(panel().robot().showDock(HostSession::DockWidth), qPrintable(panel().problem()));
}

void QuotaUpdateTest::downloadCountsDown()
{
    QVERIFY2(panel().run({u"Host pair"_s, u"First"_s}), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForDailyQuota(24, 25), qPrintable(panel().problem()));
    QVERIFY2(panel().run({u"Host pictures"_s, u"Plain"_s}), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForDailyQuota(23, 25), qPrintable(panel().problem()));
    QCOMPARE(served_->service().count(u"download-quota"_s), 3);
    QVERIFY(screenshot(u"quota-counted-down"_s));
}

void QuotaUpdateTest::cachedComponentCountsNothing()
{
    QVERIFY2(panel().run({u"Host pair"_s, u"Second"_s}), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForDailyQuota(23, 25), qPrintable(panel().problem()));
    QCOMPARE(served_->service().count(u"download-file"_s), 2);
    QCOMPARE(served_->service().count(u"download-quota"_s), 3);
}

void QuotaUpdateTest::directDownloadOfTheSamePackageCountsNothing()
{
    const ComponentButton button{u"Host pair"_s, u"First"_s, u"Product.Download"_s};
    QVERIFY2(panel().press(button), qPrintable(panel().problem()));
    QVERIFY(waitUntil([&] { return !panel().outcomePath(button).isEmpty(); }));
    QVERIFY2(panel().waitForDailyQuota(23, 25), qPrintable(panel().problem()));
    QCOMPARE(served_->service().count(u"download-file"_s), 2);
}

void QuotaUpdateTest::signOutHidesTheQuota()
{
    QVERIFY2(leave(), qPrintable(panel().problem()));
    const WidgetTree tree = panel().robot().tree();
    QVERIFY(!quotaLabel(tree)->visible);
    QVERIFY(updateBanner(tree)->visible);
}

void QuotaUpdateTest::exhaustedAccountHasNoneLeft()
{
    QVERIFY2(panel().enter(u"quota"_s, u"quota"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForDailyQuota(0, 25), qPrintable(panel().problem()));
    const int before = served_->service().count(u"download-quota"_s);
    QVERIFY2(panel().run({u"Host webcam"_s, u"Frame"_s}, u"Download.QuotaReached"_s),
             qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(served_->service().count(u"download-quota"_s), before + 1, 20000);
    QVERIFY2(panel().waitForDailyQuota(0, 25), qPrintable(panel().problem()));
    QVERIFY2(leave(), qPrintable(panel().problem()));
}

void QuotaUpdateTest::unlimitedAccountSaysSo()
{
    QVERIFY2(panel().signIn(u"empty"_s, u"empty"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForQuota(panel().text(u"Quota.Unlimited"_s)), qPrintable(panel().problem()));
    QVERIFY2(leave(), qPrintable(panel().problem()));
}

void QuotaUpdateTest::secondStartShowsTheBannerWithoutARequest()
{
    QVERIFY(restart());
    panel().assumeLanguage(u"en-US"_s);
    QVERIFY2(panel().waitForBanner(), qPrintable(panel().problem()));
    // What comes after the check in the same start has been asked for when this has an answer.
    QVERIFY2(panel().enter(u"demo"_s, u"demo"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForDailyQuota(23, 25), qPrintable(panel().problem()));
    QCOMPARE(versionRequests(), 1);
}

void QuotaUpdateTest::bannerIsShownWhileTheServiceIsDown()
{
    served_->stopService();
    QVERIFY(restart());
    panel().assumeLanguage(u"en-US"_s);
    QVERIFY2(panel().waitForBanner(), qPrintable(panel().problem()));
    QVERIFY2(bannerShows(panel().text(u"Update.Download"_s)), qPrintable(panel().problem()));
    QCOMPARE(versionRequests(), 1);
}

/// As a day later: nothing is kept that would hold the check off.
void QuotaUpdateTest::checkWithoutAServiceIsAWarning()
{
    const ObsExit before = served_->session().quit();
    leaks_.append(before.log.leaks);
    QCOMPARE(before.log.ownLines.filter(u"Update check"_s), QStringList());
    QVERIFY(QFile::remove(served_->session().home().moduleSettings()));
    QString problem;
    QVERIFY2(served_->session().startObs(&problem), qPrintable(problem));
    const auto hasTried = [this] {
        QFile settings(served_->session().home().moduleSettings());
        return settings.open(QIODevice::ReadOnly) && settings.readAll().contains("lastAttempt");
    };
    QVERIFY(waitUntil(hasTried));
    const ObsExit exit = served_->session().quit();
    leaks_.append(exit.log.leaks);
    QCOMPARE(exit.log.ownLines.filter(u"Update check unavailable (HTTP 0, network error 1)"_s).size(), 1);
}

void QuotaUpdateTest::nothingLeaks()
{
    QCOMPARE(leaks_, QList<int>(leaks_.size(), 0));
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::QuotaUpdateTest)
#include "quota_update_test.moc"
