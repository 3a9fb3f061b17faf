#include "obs/stinger_insertion.h"

#include "obs/source_insertion.h"
#include "tests/unit/obs/front_end.h"
#include "tests/unit/obs/insertion_fixture.h"

using namespace Qt::StringLiterals;
using namespace quillmar;
using namespace quillmar::test;

namespace
{

const QString StingerId = u"obs_stinger_transition"_s;

/// An OBS that can take a stinger, with a fade as its current transition.
struct StingerFixture : InsertionFixture {
    FrontEnd window{obs};
    obs_source_t *fade = obs.addTransition(u"محو"_s);
    QString path = file(u"دانلود.webm"_s);

    StingerFixture()
    {
        obs.setCurrentTransition(fade);
        window.show();
    }

    /// Nothing was made, nothing was changed, nothing is held.
    bool isUntouched() const
    {
        return obs.transitionNames() == QStringList(fade->name) && obs.currentTransition() == fade &&
               obs.calls().isEmpty() && isBalanced();
    }
};

ProductComponent stinger(const QString &name = u"X"_s)
{
    ProductComponent component = insertable(u"stinger_transition"_s, u"media"_s, name);
    component.transition_point_ms = 1234;
    return component;
}

} // namespace

class StingerInsertionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void obsVersion_data();
    void obsVersion();
    void mainWindowMissing();
    void mainWindowWithoutTheSlot();
    void mainWindowWithAnotherSlotOfThatName();
    void stingerSourceTypeMissing();

    void becomesATransition();
    void isReachedThroughTheCommonInsertion();
    void commonInsertionLooksAtTheFileFirst();
    void previousTransitionStaysCurrent();
    void noPreviousTransition();
    void propertiesDialogIsClosed();
    void sameNameTwiceGetsANumber();
    void nameTakenBySource();
    void nameTakenByTransition();
    void nameThatEndsWithBlanks_data();
    void nameThatEndsWithBlanks();
    void hostileName_data();
    void hostileName();
    void lastMatchWins();

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

void StingerInsertionTest::obsVersion_data()
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

void StingerInsertionTest::obsVersion()
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

void StingerInsertionTest::mainWindowMissing()
{
    StingerFixture fixture;
    fixture.obs.setMainWindow(nullptr);

    QVERIFY(!canAddStinger());
    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
    QVERIFY(fixture.isUntouched());
}

void StingerInsertionTest::mainWindowWithoutTheSlot()
{
    StingerFixture fixture;
    QMainWindow window;
    fixture.obs.setMainWindow(&window);

    QVERIFY(!canAddStinger());
    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
    QVERIFY(fixture.isUntouched());
}

void StingerInsertionTest::mainWindowWithAnotherSlotOfThatName()
{
    StingerFixture fixture;
    OtherFrontEnd window;
    fixture.obs.setMainWindow(&window);

    QVERIFY(!canAddStinger());
    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
}

void StingerInsertionTest::stingerSourceTypeMissing()
{
    StingerFixture fixture;
    fixture.obs.setConfigurable(StingerId, false);

    QVERIFY(!canAddStinger());
    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
    QVERIFY(fixture.isUntouched());
}

void StingerInsertionTest::becomesATransition()
{
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QCOMPARE(fixture.window.requestedIds, QStringList(StingerId));
    QCOMPARE(fixture.window.dialogResults, QList<int>{QDialog::Accepted});
    const obs_source_t *transition = fixture.obs.transition(u"Quillmar - X"_s);
    QVERIFY(transition != nullptr);
    QCOMPARE(transition->settings,
             (QVariantHash{{u"path"_s, fixture.path}, {u"tp_type"_s, 0LL}, {u"transition_point"_s, 1234LL}}));
    QCOMPARE(fixture.obs.calls(), QStringList({u"obs_frontend_set_current_transition محو"_s,
                                               u"obs_source_update Quillmar - X"_s, u"obs_frontend_save"_s}));
    QVERIFY(fixture.isBalanced());
}

void StingerInsertionTest::isReachedThroughTheCommonInsertion()
{
    StingerFixture fixture;
    fixture.obs.setCanvas(std::nullopt); // of no matter to a transition

    QCOMPARE(insertComponent(stinger(), fixture.path), QString());
    QVERIFY(fixture.obs.transition(u"Quillmar - X"_s) != nullptr);
}

void StingerInsertionTest::commonInsertionLooksAtTheFileFirst()
{
    StingerFixture fixture;

    QCOMPARE(insertComponent(stinger(), fixture.folder.filePath(u"no.webm"_s)), u"Component.FileMissing"_s);
    QCOMPARE(insertComponent(stinger(), fixture.file(u"a.png"_s)), u"Component.Unsupported"_s);
    QVERIFY(fixture.window.requestedIds.isEmpty());
}

void StingerInsertionTest::previousTransitionStaysCurrent()
{
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QCOMPARE(fixture.obs.currentTransition(), fixture.fade);
}

void StingerInsertionTest::noPreviousTransition()
{
    StingerFixture fixture;
    fixture.obs.setCurrentTransition(nullptr);

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QCOMPARE(fixture.obs.count(u"obs_frontend_set_current_transition"_s), 0);
    QCOMPARE(fixture.obs.currentTransition(), fixture.obs.transition(u"Quillmar - X"_s));
    QVERIFY(fixture.isBalanced());
}

void StingerInsertionTest::propertiesDialogIsClosed()
{
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QVERIFY(!fixture.window.properties || !fixture.window.properties->isVisible());
    QTRY_VERIFY(!fixture.window.properties);
}

void StingerInsertionTest::sameNameTwiceGetsANumber()
{
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QCOMPARE(fixture.obs.transitionNames(),
             QStringList({u"محو"_s, u"Quillmar - X"_s, u"Quillmar - X (2)"_s}));
    QVERIFY(fixture.isBalanced());
}

void StingerInsertionTest::nameTakenBySource()
{
    StingerFixture fixture;
    fixture.obs.addSource(u"scene"_s, u"Quillmar - X"_s);

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QVERIFY(fixture.obs.transition(u"Quillmar - X (2)"_s) != nullptr);
}

void StingerInsertionTest::nameTakenByTransition()
{
    StingerFixture fixture;
    fixture.obs.addTransition(u"Quillmar - X"_s);

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    const obs_source_t *transition = fixture.obs.transition(u"Quillmar - X (2)"_s);
    QVERIFY(transition != nullptr);
    QCOMPARE(transition->settings.value(u"path"_s).toString(), fixture.path);
    QVERIFY(fixture.obs.transition(u"Quillmar - X"_s)->settings.isEmpty());
}

void StingerInsertionTest::nameThatEndsWithBlanks_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("transition");
    QTest::newRow("a blank") << u"X "_s << u"Quillmar - X"_s;
    QTest::newRow("blanks and tabs") << u" X\t \t"_s << u"Quillmar -  X"_s;
    QTest::newRow("blank before the cut")
        << QString(119, u'a') + u" b"_s << u"Quillmar - "_s + QString(119, u'a');
    QTest::newRow("blank before NUL") << u"X "_s + QChar(0) + u'Y' << u"Quillmar - X"_s;
    QTest::newRow("only blanks") << u"  "_s << u"Quillmar - Component"_s;
    QTest::newRow("line break") << u"X\n"_s << u"Quillmar - X\n"_s;
}

void StingerInsertionTest::nameThatEndsWithBlanks()
{
    // OBS drops them, so that the name would not be found again, and could meet one that exists.
    QFETCH(const QString, name);
    QFETCH(const QString, transition);
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(name), fixture.path), QString());
    QVERIFY(fixture.obs.transition(transition) != nullptr);
    QCOMPARE(insertStinger(stinger(name), fixture.path), QString());
    QVERIFY(fixture.obs.transition(transition + u" (2)"_s) != nullptr);
}

void StingerInsertionTest::hostileName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("entered");
    QTest::newRow("300 characters") << QString(300, u'a') << u"Quillmar - "_s + QString(120, u'a');
    QTest::newRow("pair at the cut") << QString(119, u'a') + u"\U0001D11E"_s
                                     << u"Quillmar - "_s + QString(119, u'a');
    QTest::newRow("quotes") << u"\"a\"'b'"_s << u"Quillmar - \"a\"'b'"_s;
    QTest::newRow("line break inside") << u"a\nb"_s << u"Quillmar - a\nb"_s;
    QTest::newRow("placeholder") << u"%1"_s << u"Quillmar - %1"_s;
}

void StingerInsertionTest::hostileName()
{
    QFETCH(const QString, name);
    QFETCH(const QString, entered);
    StingerFixture fixture;

    QCOMPARE(insertStinger(stinger(name), fixture.path), QString());
    QCOMPARE(fixture.window.enteredTexts, QStringList(entered));
    QVERIFY(fixture.obs.transition(entered) != nullptr);
}

void StingerInsertionTest::lastMatchWins()
{
    StingerFixture fixture;
    obs_source_t *earlier = nullptr;
    fixture.window.afterNaming = [&] { earlier = fixture.obs.addTransition(u"Quillmar - X"_s, StingerId); };

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QVERIFY(earlier->settings.isEmpty());
    QCOMPARE(fixture.obs.transitions().last()->settings.value(u"path"_s).toString(), fixture.path);
    QVERIFY(fixture.isBalanced());
}

void StingerInsertionTest::noCurrentScene()
{
    StingerFixture fixture;
    fixture.obs.setCurrentScene(nullptr);

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.NoScene"_s);
    QVERIFY(fixture.window.requestedIds.isEmpty());
    QVERIFY(fixture.isUntouched());
}

void StingerInsertionTest::modalDialogOpen()
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

void StingerInsertionTest::propertiesDialogOpen()
{
    StingerFixture fixture;
    QPointer<OBSBasicProperties> dialog = new OBSBasicProperties(&fixture.window);
    dialog->show();

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.CloseDialogs"_s);
    QVERIFY(dialog && dialog->isVisible());
    QVERIFY(fixture.isUntouched());
}

void StingerInsertionTest::propertiesDialogDeepInsideTheWindow()
{
    StingerFixture fixture;
    auto *panel = new QWidget(&fixture.window);
    auto *dialog = new OBSBasicProperties(new QWidget(panel));
    dialog->show();

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.CloseDialogs"_s);
}

void StingerInsertionTest::hiddenPropertiesDialogDoesNotMatter()
{
    StingerFixture fixture;
    const QPointer<OBSBasicProperties> dialog = new OBSBasicProperties(&fixture.window);

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QVERIFY(dialog);
}

void StingerInsertionTest::otherDialogOpenDoesNotMatter()
{
    StingerFixture fixture;
    QDialog dialog{&fixture.window};
    dialog.show();

    QCOMPARE(insertStinger(stinger(), fixture.path), QString());
    QVERIFY(dialog.isVisible());
}

void StingerInsertionTest::transitionTime_data()
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

void StingerInsertionTest::transitionTime()
{
    QFETCH(const float, time);
    QFETCH(const bool, busy);
    StingerFixture fixture;
    fixture.fade->transitionTime = time;

    QCOMPARE(insertStinger(stinger(), fixture.path), busy ? u"Component.TransitionBusy"_s : QString());
    QCOMPARE(fixture.isUntouched(), busy);
    QVERIFY(fixture.isBalanced());
}

void StingerInsertionTest::otherDialogThanExpected_data()
{
    QTest::addColumn<FrontEnd::Asks>("asks");
    QTest::newRow("two line edits") << FrontEnd::Asks::WithTwoLineEdits;
    QTest::newRow("no line edit") << FrontEnd::Asks::WithoutLineEdit;
    QTest::newRow("another class") << FrontEnd::Asks::WithOtherClass;
    QTest::newRow("another parent") << FrontEnd::Asks::WithOtherParent;
    QTest::newRow("no dialog at all") << FrontEnd::Asks::NotAtAll;
}

void StingerInsertionTest::otherDialogThanExpected()
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

void StingerInsertionTest::notFoundAfterwards()
{
    StingerFixture fixture;
    fixture.window.makesTransition = false;

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.InsertFailed"_s);
    QCOMPARE(fixture.obs.calls(), QStringList(u"obs_frontend_set_current_transition محو"_s));
    QVERIFY(fixture.isBalanced());
}

void StingerInsertionTest::foundUnderAnotherIdOnly()
{
    StingerFixture fixture;
    fixture.window.madeId = u"fade_transition"_s;

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.InsertFailed"_s);
    QCOMPARE(fixture.obs.currentTransition(), fixture.fade);
    QCOMPARE(fixture.obs.count(u"obs_source_update"_s), 0);
    QCOMPARE(fixture.obs.count(u"obs_frontend_save"_s), 0);
    QVERIFY(fixture.isBalanced());
}

void StingerInsertionTest::windowGoneInside()
{
    StingerFixture fixture;
    auto *window = new FrontEnd(fixture.obs);
    window->diesInSlot = true;

    QCOMPARE(insertStinger(stinger(), fixture.path), u"Component.StingerUnavailable"_s);
    QVERIFY(fixture.isBalanced());
}

QTEST_MAIN(StingerInsertionTest)
#include "stinger_insertion_test.moc"
