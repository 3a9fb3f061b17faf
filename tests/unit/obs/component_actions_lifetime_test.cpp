#include "tests/unit/obs/cached_fixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillmar;
using namespace quillmar::test;
using Fixture = ActionsFixture;

class ComponentActionsLifetimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void widgetDestroyedOnTheWay_data();
    void widgetDestroyedOnTheWay();
    void widgetDestroyedInsideTheNameDialog();
    void downloadsGoneBeforeTheClick();
    void downloadsGoneOnTheWay_data();
    void downloadsGoneOnTheWay();
    void downloadsGoneInsideTheNameDialog();
    void downloadsGoneLeavesIdleEntriesAlone();
    void secondStingerWhileTheNameDialogIsUp();
};

void ComponentActionsLifetimeTest::widgetDestroyedOnTheWay_data()
{
    QTest::addColumn<QString>("stage");
    QTest::newRow("while the package is acquired") << u"Download.Progress"_s;
    QTest::newRow("while the component is extracted") << u"Component.Extracting"_s;
}

void ComponentActionsLifetimeTest::widgetDestroyedOnTheWay()
{
    QFETCH(const QString, stage);
    CachedFixture fixture;
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    auto *recorder = new StatusRecorder(fixture.status(button));
    recorder->at(stage, [&] { fixture.actions.reset(); });
    button->click();

    QTRY_VERIFY(!fixture.actions);
    fixture.drain();
    QVERIFY(fixture.isObsUntouched());
}

void ComponentActionsLifetimeTest::widgetDestroyedInsideTheNameDialog()
{
    CachedFixture fixture{true};
    fixture.product = {}; // the widget has the last copy
    fixture.window->afterNaming = [&] { fixture.actions.reset(); };
    fixture.addButton(Fixture::Stinger)->click();

    // The insertion itself is carried to its end: OBS has been asked already.
    QTRY_COMPARE(fixture.obs.count(u"obs_frontend_save"_s), 1);
    QVERIFY(!fixture.actions);
    const obs_source_t *transition = fixture.obs.transition(u"Quillmar - Sting"_s);
    QVERIFY(transition != nullptr);
    QVERIFY(transition->settings.value(u"path"_s).toString().endsWith(u"/sting.webm"_s));
    QCOMPARE(transition->settings.value(u"transition_point"_s).toInt(), 300);
    QCOMPARE(fixture.obs.outstanding(), LibobsFake::Outstanding());
}

void ComponentActionsLifetimeTest::downloadsGoneBeforeTheClick()
{
    CachedFixture fixture;
    fixture.downloads.reset();
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    button->click();

    QCOMPARE(fixture.statusKey(button), u"Download.Failed"_s);
    QVERIFY(button->isEnabled());
    QVERIFY(fixture.isObsUntouched());
}

void ComponentActionsLifetimeTest::downloadsGoneOnTheWay_data()
{
    widgetDestroyedOnTheWay_data();
}

void ComponentActionsLifetimeTest::downloadsGoneOnTheWay()
{
    QFETCH(const QString, stage);
    CachedFixture fixture;
    QPushButton *button = fixture.addButton(Fixture::Overlay);
    auto *recorder = new StatusRecorder(fixture.status(button));
    recorder->at(stage, [&] { fixture.downloads.reset(); });
    button->click();

    QTRY_VERIFY(!fixture.downloads);
    fixture.drain();
    QCOMPARE(fixture.statusKey(button), u"Download.Failed"_s);
    QVERIFY(button->isEnabled());
    QVERIFY(fixture.isObsUntouched());
}

void ComponentActionsLifetimeTest::downloadsGoneInsideTheNameDialog()
{
    CachedFixture fixture{true};
    fixture.window->afterNaming = [&] { fixture.downloads.reset(); };
    QPushButton *button = fixture.addButton(Fixture::Stinger);
    button->click();

    QTRY_COMPARE(fixture.statusKey(button), u"Component.Added"_s);
    QVERIFY(button->isEnabled());
}

void ComponentActionsLifetimeTest::downloadsGoneLeavesIdleEntriesAlone()
{
    CachedFixture fixture;
    QPushButton *button = fixture.packageButton();
    button->click();
    QTRY_COMPARE(fixture.statusKey(button), u"Download.Success"_s);
    fixture.drain();

    QCOMPARE(fixture.statusKey(button), u"Download.Success"_s);
    QVERIFY(fixture.status(fixture.addButton(Fixture::Overlay))->isHidden());
}

void ComponentActionsLifetimeTest::secondStingerWhileTheNameDialogIsUp()
{
    CachedFixture fixture{true};
    fixture.product.components[Fixture::Missing] = fixture.product.components.at(Fixture::Stinger);
    fixture.makeActions();
    QPushButton *first = fixture.addButton(Fixture::Stinger);
    QPushButton *second = fixture.addButton(Fixture::Missing);
    fixture.window->afterNaming = [&] {
        fixture.window->afterNaming = {};
        QDialog dialog{fixture.window.get()};
        dialog.open(); // stands for the dialog that is still up
        second->click();
        QTRY_COMPARE(fixture.statusKey(second), u"Component.CloseDialogs"_s);
    };
    first->click();

    QTRY_COMPARE(fixture.statusKey(first), u"Component.Added"_s);
    QCOMPARE(fixture.window->requestedIds.size(), 1);
    QVERIFY(second->isEnabled());
}

QTEST_MAIN(ComponentActionsLifetimeTest)
#include "component_actions_lifetime_test.moc"
