#include "obs/stinger_insertion.h"

#include "obs/source_insertion.h"
#include "tests/unit/obs/stinger_fixture.h"

#include <limits>

using namespace Qt::StringLiterals;
using namespace quillmar;
using namespace quillmar::test;

class StingerRefusalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void obsVersion_data();
    void obsVersion();
    void isReportedByTheCommonInsertion();
    void mainWindowMissing();
    void mainWindowWithoutTheSlot();
    void mainWindowWithAnotherSlotOfThatName();
    void stingerSourceTypeMissing();
    void noCurrentScene();
    void modalDialogOpen();
    void propertiesDialogOpen();
    void propertiesDialogDeepInsideTheWindow();
    void hiddenPropertiesDialogDoesNotMatter();
    void otherDialogOpenDoesNotMatter();
    void transitionTime_data();
    void transitionTime();
    void otherDialogThanExpected_data();
    void otherDialogThanExpected();
    void notFoundAfterwards();
    void foundUnderAnotherIdOnly();
    void windowGoneInside();
};

void StingerRefusalTest::obsVersion_data()
{
    QTest::addColumn<quint32>("major");
    QTest::addColumn<quint32>("minor");
    QTest::addColumn<bool>("available");
    QTest::newRow("0") << 0U << 0U << false;
    QTest::newRow("30") << 30U << 255U << false;
    QTest::newRow("31") << 31U << 0U << true;
    QTest::newRow("31.1") << 31U << 1U << true;
    QTest::newRow("32") << 32U << 0U << true;
    QTest::newRow("32.255") << 32U << 255U << true;
    QTest::newRow("33") << 33U << 0U << false;
    QTest::newRow("132") << 132U << 0U << false;
}

void StingerRefusalTest::obsVersion()
{
    QFETCH(const quint32, major);
    QFETCH(const quint32, minor);
    QFETCH(const bool, available);
    StingerFixture fixture;
    fixture.obs.setVersion(major, minor, 1);

    QCOMPARE(canAddStinger(), available);
    QCOMPARE(canAdd(stinger()), available);
    QCOMPARE(insertStinger(stinger(), fixture.path),
             available ? QString() : u"Component.StingerUnavailable"_s);
    QCOMPARE(fixture.window.requestedIds.size(), available ? 1 : 0);
}

void StingerRefusalTest::isReportedByTheCommonInsertion()
{
    StingerFixture fixture;
    fixture.obs.setCurrentScene(nullptr);

    QCOMPARE(insertComponent(stinger(), fixture.path), insertStinger(stinger(), fixture.path));
    QVERIFY(!insertComponent(stinger(), fixture.path).isEmpty());
}

void StingerRefusalTest::mainWindowMissing()
{
    StingerFixture fixture;
    fixture.obs.setMainWindow(nullptr);

    QVERIFY(!canAddStinger());
    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
    QVERIFY(fixture.isUntouched());
}

void StingerRefusalTest::mainWindowWithoutTheSlot()
{
    StingerFixture fixture;
    QMainWindow window;
    fixture.obs.setMainWindow(&window);

    QVERIFY(!canAddStinger());
    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
    QVERIFY(fixture.isUntouched());
}

void StingerRefusalTest::mainWindowWithAnotherSlotOfThatName()
{
    StingerFixture fixture;
    OtherFrontEnd window;
    fixture.obs.setMainWindow(&window);

    QVERIFY(!canAddStinger());
    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
}

void StingerRefusalTest::stingerSourceTypeMissing()
{
    StingerFixture fixture;
    fixture.obs.setConfigurable(StingerId, false);

    QVERIFY(!canAddStinger());
    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
    QVERIFY(fixture.isUntouched());
}

void StingerRefusalTest::noCurrentScene()
{
    StingerFixture fixture;
    fixture.obs.setCurrentScene(nullptr);

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.NoScene"_s);
    QVERIFY(fixture.window.requestedIds.isEmpty());
    QVERIFY(fixture.isUntouched());
}

void StingerRefusalTest::modalDialogOpen()
{
    StingerFixture fixture;
    QDialog dialog{&fixture.window};
    dialog.open();
    QVERIFY(QApplication::activeModalWidget() != nullptr);

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.CloseDialogs"_s);
    QVERIFY(fixture.isUntouched());
    dialog.close();
    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
}

void StingerRefusalTest::propertiesDialogOpen()
{
    StingerFixture fixture;
    QPointer<OBSBasicProperties> dialog = new OBSBasicProperties(&fixture.window);
    dialog->show();

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.CloseDialogs"_s);
    QVERIFY(dialog && dialog->isVisible());
    QVERIFY(fixture.isUntouched());
}

void StingerRefusalTest::propertiesDialogDeepInsideTheWindow()
{
    StingerFixture fixture;
    auto *panel = new QWidget(&fixture.window);
    auto *dialog = new OBSBasicProperties(new QWidget(panel));
    dialog->show();

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.CloseDialogs"_s);
}

void StingerRefusalTest::hiddenPropertiesDialogDoesNotMatter()
{
    StingerFixture fixture;
    const QPointer<OBSBasicProperties> dialog = new OBSBasicProperties(&fixture.window);

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QVERIFY(dialog);
}

void StingerRefusalTest::otherDialogOpenDoesNotMatter()
{
    StingerFixture fixture;
    QDialog dialog{&fixture.window};
    dialog.show();

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QVERIFY(dialog.isVisible());
}

void StingerRefusalTest::transitionTime_data()
{
    QTest::addColumn<float>("time");
    QTest::addColumn<bool>("busy");
    QTest::newRow("not started") << 0.0F << false;
    QTest::newRow("just started") << 0.0001F << true;
    QTest::newRow("half way") << 0.5F << true;
    QTest::newRow("nearly over") << 0.9999F << true;
    QTest::newRow("over") << 1.0F << false;
    QTest::newRow("no number") << std::numeric_limits<float>::quiet_NaN() << false;
}

void StingerRefusalTest::transitionTime()
{
    QFETCH(const float, time);
    QFETCH(const bool, busy);
    StingerFixture fixture;
    fixture.fade->transitionTime = time;

    QCOMPARE(insertStinger(stinger(), fixture.path), busy ? u"Component.TransitionBusy"_s : QString());
    QCOMPARE(fixture.isUntouched(), busy);
    QVERIFY(fixture.isBalanced());
}

void StingerRefusalTest::otherDialogThanExpected_data()
{
    QTest::addColumn<FrontEnd::Asks>("asks");
    QTest::newRow("two line edits") << FrontEnd::Asks::WithTwoLineEdits;
    QTest::newRow("no line edit") << FrontEnd::Asks::WithoutLineEdit;
    QTest::newRow("another class") << FrontEnd::Asks::WithOtherClass;
    QTest::newRow("another parent") << FrontEnd::Asks::WithOtherParent;
    QTest::newRow("no dialog at all") << FrontEnd::Asks::NotAtAll;
}

void StingerRefusalTest::otherDialogThanExpected()
{
    QFETCH(const FrontEnd::Asks, asks);
    StingerFixture fixture;
    fixture.window.asks = asks;

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
    QCOMPARE(fixture.window.requestedIds, QStringList(StingerId));
    QCOMPARE(fixture.window.dialogResults,
             asks == FrontEnd::Asks::NotAtAll ? QList<int>() : QList<int>{QDialog::Rejected});
    QVERIFY(fixture.isUntouched());
    QTest::qWait(0); // a timer that was left behind would fire into a dead stack
    QVERIFY(fixture.isUntouched());
}

void StingerRefusalTest::notFoundAfterwards()
{
    StingerFixture fixture;
    fixture.window.makesTransition = false;

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.InsertFailed"_s);
    QCOMPARE(fixture.obs.calls(), QStringList(u"obs_frontend_set_current_transition محو"_s));
    QVERIFY(fixture.isBalanced());
}

void StingerRefusalTest::foundUnderAnotherIdOnly()
{
    StingerFixture fixture;
    fixture.window.madeId = u"fade_transition"_s;

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.InsertFailed"_s);
    QCOMPARE(fixture.obs.currentTransition(), fixture.fade);
    QCOMPARE(fixture.obs.count(u"obs_source_update"_s), 0);
    QCOMPARE(fixture.obs.count(u"obs_frontend_save"_s), 0);
    QVERIFY(fixture.isBalanced());
}

void StingerRefusalTest::windowGoneInside()
{
    StingerFixture fixture;
    auto *window = new FrontEnd(fixture.obs);
    window->diesInSlot = true;

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
    QVERIFY(fixture.isBalanced());
}

QTEST_MAIN(StingerRefusalTest)
#include "stinger_refusal_test.moc"
