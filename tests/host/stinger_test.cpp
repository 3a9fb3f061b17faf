#include "tests/host/support/obs_stage.h"
#include "tests/host/support/served_session.h"

#include <QFileInfo>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

const QString Product = QStringLiteral("Host stage");
const QString Fade = QStringLiteral("Fade");
const QString Long(300, u'n');
const QString LongKept = Long.first(120);
const QString Quotes = QStringLiteral("\"double\" 'single' `back`");
const QString Lines = QStringLiteral("first\nsecond");
const QString Emoji = QStringLiteral("🎬 صحنه 👩‍👩‍👧");
const QString Blanks = QStringLiteral("   ");
const QString Trailing = QStringLiteral("Trailing \t ");

QList<StageComponent> stingers()
{
    QList<StageComponent> list;
    for (const QString &name : {u"X"_s, Long, Quotes, Lines, Emoji, Blanks, Trailing, u"Source"_s, u"Scene"_s,
                                u"Transition"_s, u"Twice"_s})
        list.append({.name = name, .asset = stage::Curtain, .mode = stage::Stinger, .transitionPoint = 1234});
    return list;
}

} // namespace

/// What a click on "Add to OBS" of a stinger does in the real front end, whatever else the user is doing.
class StingerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void becomesATransition();
    void savedSceneCollectionHoldsIt();
    void oddName_data();
    void oddName();
    void nameTakenBySource();
    void nameTakenByScene();
    void nameTakenByTransition();
    void twoOfOneName();
    void whileOneIsUnderWayInTheMiddle();
    void inStudioMode();
    void whilePropertiesAreOpen();
    void whileAModalDialogIsOpen();
    void notWithAVanishedFile();
    void dockGoneWhileTheNameDialogIsUp();
    void restartedObsStillHasThem();
    void obsClosedInTheMomentOfSuccess();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    ObsState state() { return served_->state(); }
    ObsStage stage() { return ObsStage(served_->session().driver()); }
    QStringList transitionNames();
    void checkAdded(const QString &name, const QString &path = {});
    void checkRefused(const QString &key);
    static void checkExit(const ObsExit &exit);

    const ComponentButton x_{Product, QStringLiteral("X")};
    std::unique_ptr<ServedSession> served_;
    QString file_;
    QStringList added_;
};

void StingerTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start(
        {.host = {.canvas = {1280, 720}}, .stage = stingers(), .account = u"demo"_s}, &problem);
    QVERIFY2(served_, qPrintable(problem));
    QVERIFY2(panel().search(Product), qPrintable(panel().problem()));
    QCOMPARE(state().currentTransition(), Fade);
}

QStringList StingerTest::transitionNames()
{
    QStringList names;
    const QList<ObsSource> transitions = state().transitions();
    for (const ObsSource &transition : transitions)
        names.append(transition.name);
    return names;
}

/// It is there with its settings, nothing else has become current, and OBS's dialogs are gone.
void StingerTest::checkAdded(const QString &name, const QString &path)
{
    const std::optional<ObsSource> transition = state().transition(name);
    QVERIFY2(transition, qPrintable(transitionNames().join(", "_L1)));
    QCOMPARE(transition->id, u"obs_stinger_transition"_s);
    QCOMPARE(transition->settings["path"_L1].toString(), path.isEmpty() ? file_ : path);
    QCOMPARE(transition->settings["tp_type"_L1].toInt(-1), 0);
    QCOMPARE(transition->settings["transition_point"_L1].toInt(), 1234);
    QCOMPARE(state().currentTransition(), Fade);
    QVERIFY(!stage().showsAnyDialog());
    added_.append(name);
}

void StingerTest::checkRefused(const QString &key)
{
    const QStringList before = transitionNames();
    QVERIFY2(panel().run(x_, key), qPrintable(panel().problem()));
    QCOMPARE(transitionNames(), before);
    QCOMPARE(state().currentTransition(), Fade);
}

void StingerTest::checkExit(const ObsExit &exit)
{
    QVERIFY(exit.inTime);
    QCOMPARE(exit.code, 0);
    QCOMPARE(exit.log.leaks, 0);
}

void StingerTest::becomesATransition()
{
    QVERIFY2(panel().run(x_), qPrintable(panel().problem()));
    file_ = panel().outcomePath(x_);
    QVERIFY(QFileInfo(file_).isFile());
    QVERIFY(file_.startsWith(served_->session().home().packageRoot() + u'/'));
    checkAdded(u"Quillmar - X"_s);
}

void StingerTest::savedSceneCollectionHoldsIt()
{
    QJsonObject saved;
    const auto readSaved = [&] {
        const QJsonObject collection = served_->session().home().savedSceneCollection();
        const QJsonArray transitions = collection["transitions"_L1].toArray();
        for (const QJsonValue &transition : transitions) {
            if (transition["name"_L1].toString() == "Quillmar - X"_L1)
                saved = transition.toObject();
        }
        return !saved.isEmpty() && collection["current_transition"_L1].toString() == Fade;
    };
    QTRY_VERIFY_WITH_TIMEOUT(readSaved(), 20000);
    QCOMPARE(saved["id"_L1].toString(), u"obs_stinger_transition"_s);
    QCOMPARE(saved["settings"_L1]["path"_L1].toString(), file_);
    QCOMPARE(saved["settings"_L1]["transition_point"_L1].toInt(), 1234);
}

void StingerTest::oddName_data()
{
    QTest::addColumn<QString>("component");
    QTest::addColumn<QString>("transition");
    QTest::newRow("300 characters") << Long << QString(u"Quillmar - "_s + LongKept);
    QTest::newRow("only blanks") << Blanks << u"Quillmar - Component"_s;
    QTest::newRow("blanks at the end") << Trailing << u"Quillmar - Trailing"_s;
    QTest::newRow("quotes") << Quotes << QString(u"Quillmar - "_s + Quotes);
    QTest::newRow("line break") << Lines << QString(u"Quillmar - "_s + Lines);
    QTest::newRow("emoji") << Emoji << QString(u"Quillmar - "_s + Emoji);
}

void StingerTest::oddName()
{
    QFETCH(const QString, component);
    QFETCH(const QString, transition);
    QVERIFY2(panel().run({Product, component}), qPrintable(panel().problem()));
    checkAdded(transition);
}

void StingerTest::nameTakenBySource()
{
    QVERIFY(stage().addColour(state().currentScene(), u"Quillmar - Source"_s));
    QVERIFY2(panel().run({Product, u"Source"_s}), qPrintable(panel().problem()));
    checkAdded(u"Quillmar - Source (2)"_s);
    QCOMPARE(state().source(u"Quillmar - Source"_s)->kind, u"input"_s);
}

void StingerTest::nameTakenByScene()
{
    QVERIFY(state().createScene(u"Quillmar - Scene"_s));
    QVERIFY2(panel().run({Product, u"Scene"_s}), qPrintable(panel().problem()));
    checkAdded(u"Quillmar - Scene (2)"_s);
    QVERIFY(state().scenes().contains(u"Quillmar - Scene"_s));
}

void StingerTest::nameTakenByTransition()
{
    QVERIFY(stage().addTransition(u"fade_to_color_transition"_s, u"Quillmar - Transition"_s));
    QVERIFY(stage().setTransition(Fade, 300));
    QVERIFY2(panel().run({Product, u"Transition"_s}), qPrintable(panel().problem()));
    checkAdded(u"Quillmar - Transition (2)"_s);
    QCOMPARE(state().transition(u"Quillmar - Transition"_s)->id, u"fade_to_color_transition"_s);
}

void StingerTest::twoOfOneName()
{
    const ComponentButton twice{Product, u"Twice"_s};
    QVERIFY2(panel().run(twice), qPrintable(panel().problem()));
    checkAdded(u"Quillmar - Twice"_s);
    const auto isThere = [this] { return state().transition(u"Quillmar - Twice (2)"_s).has_value(); };
    QVERIFY2(panel().pressUntil(twice, isThere), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForOutcome(twice, u"Component.Added"_s), qPrintable(panel().problem()));
    checkAdded(u"Quillmar - Twice (2)"_s);
}

void StingerTest::whileOneIsUnderWayInTheMiddle()
{
    const QString home = state().currentScene();
    QVERIFY(stage().setTransition(Fade, 20000));
    QVERIFY(state().setCurrentScene(u"Quillmar - Scene"_s));
    QTRY_VERIFY_WITH_TIMEOUT(stage().isInTransition(), 20000);
    checkRefused(u"Component.TransitionBusy"_s);
    QVERIFY(stage().isInTransition());

    QVERIFY(stage().setTransition(Fade, 50));
    QVERIFY(state().setCurrentScene(home));
    // A busy OBS lets the long one run to its end first.
    QTRY_VERIFY_WITH_TIMEOUT(!stage().isInTransition(), 40000);
    QVERIFY2(panel().run(x_), qPrintable(panel().problem()));
    checkAdded(u"Quillmar - X (2)"_s);
}

void StingerTest::inStudioMode()
{
    QVERIFY(stage().setStudioMode(true));
    const auto isThere = [this] { return state().transition(u"Quillmar - X (3)"_s).has_value(); };
    QVERIFY2(panel().pressUntil(x_, isThere), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForOutcome(x_, u"Component.Added"_s), qPrintable(panel().problem()));
    checkAdded(u"Quillmar - X (3)"_s);
    QVERIFY(stage().setStudioMode(false));
}

void StingerTest::whilePropertiesAreOpen()
{
    QVERIFY(stage().openProperties(u"Quillmar - Source"_s));
    checkRefused(u"Component.CloseDialogs"_s);
    QVERIFY(stage().showsDialog(u"OBSBasicProperties"_s));
    QVERIFY(stage().closeDialogs());
    QVERIFY2(panel().run(x_), qPrintable(panel().problem()));
    checkAdded(u"Quillmar - X (4)"_s);
}

/// The very dialog that the module answers otherwise, but opened by the user, who is about to type a name.
void StingerTest::whileAModalDialogIsOpen()
{
    QVERIFY(stage().atStatus(u"Component.Extracting"_s,
                             {{u"then"_s, u"trigger"_s}, {u"entry"_s, u"actionNewSceneCollection"_s}}));
    checkRefused(u"Component.CloseDialogs"_s);
    QVERIFY(stage().isSprung());
    QVERIFY(stage().showsDialog(u"NameDialog"_s));
    QVERIFY(stage().closeDialogs());
    QVERIFY2(panel().run(x_), qPrintable(panel().problem()));
    checkAdded(u"Quillmar - X (5)"_s);
}

void StingerTest::notWithAVanishedFile()
{
    const QJsonObject removal{
        {u"then"_s, u"remove-files"_s},
        {u"folder"_s, QString(served_->session().home().packageRoot() + u"/host-stage"_s)}};
    QVERIFY(stage().atStatus(u"Component.Adding"_s, removal));
    checkRefused(u"Component.FileMissing"_s);
    QVERIFY(stage().isSprung());
    QVERIFY2(panel().run(x_), qPrintable(panel().problem()));
    checkAdded(u"Quillmar - X (6)"_s);
}

void StingerTest::dockGoneWhileTheNameDialogIsUp()
{
    QVERIFY(stage().atDialog(u"NameDialog"_s, {{u"then"_s, u"remove-dock"_s}}));
    QVERIFY2(panel().pressUntil(x_, [this] { return stage().isSprung(); }), qPrintable(panel().problem()));
    QTRY_VERIFY_WITH_TIMEOUT(panel().robot().tree().isEmpty(), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(state().transition(u"Quillmar - X (7)"_s), 20000);
    checkAdded(u"Quillmar - X (7)"_s);

    checkExit(served_->session().quit());
}

void StingerTest::restartedObsStillHasThem()
{
    QString problem;
    QVERIFY2(served_->resume(&problem), qPrintable(problem));
    QCOMPARE(added_.size(), 18);
    const QStringList names = std::exchange(added_, {});
    for (const QString &name : names)
        checkAdded(name);
}

void StingerTest::obsClosedInTheMomentOfSuccess()
{
    QVERIFY2(panel().search(Product), qPrintable(panel().problem()));
    QVERIFY(stage().atStatus(u"Component.Added"_s, {{u"then"_s, u"close-window"_s}}));
    QVERIFY2(panel().press(x_), qPrintable(panel().problem()));
    checkExit(served_->session().obs().waitForExit());

    QString problem;
    QVERIFY2(served_->session().startObs(&problem), qPrintable(problem));
    checkAdded(u"Quillmar - X (8)"_s);
    checkExit(served_->session().quit());
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::StingerTest)
#include "stinger_test.moc"
