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

struct Addition {
    QString component;
    QRectF area;
};

} // namespace

/// Sources and new scenes next to whatever a user has in OBS already: nothing of theirs is touched.
class SceneLayoutsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void canvas_data();
    void canvas();
    void studioModeUsesTheProgramScene();
    void lockedItems();
    void groups();
    void nestedScenes();
    void sceneInsideAnotherScene();
    void vanishedFile_data();
    void vanishedFile();
    void allCanBeLeftInOrder();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    ObsState state() { return served_->state(); }
    ObsStage stage() { return ObsStage(served_->session().driver()); }
    bool enterScene(const QString &name);
    QStringList sourcesOf(const QString &scene);
    void addOneOfEachKind(const QString &scene, QSize canvas);

    std::unique_ptr<ServedSession> served_;
    QSize canvas_{1280, 720};
};

void SceneLayoutsTest::initTestCase()
{
    const QList<StageComponent> components{
        {.name = u"Picture"_s, .asset = stage::Red, .mode = stage::Overlay},
        {.name = u"Clip"_s, .asset = stage::Flip, .mode = stage::Overlay, .looping = true},
        {.name = u"Frame"_s, .asset = stage::Frame, .mode = stage::Webcam, .position = u"top_right"_s},
        {.name = u"Own scene"_s, .asset = stage::Flip, .mode = stage::NewScene}};
    QString problem;
    served_ = ServedSession::start({.host = {.canvas = canvas_}, .stage = components, .account = u"demo"_s},
                                   &problem);
    QVERIFY2(served_, qPrintable(problem));
    QVERIFY2(panel().search(Product), qPrintable(panel().problem()));
    QVERIFY(stage().setTransition(u"Cut"_s, 50));
}

bool SceneLayoutsTest::enterScene(const QString &name)
{
    return state().createScene(name) && state().setCurrentScene(name) &&
           QTest::qWaitFor([&] { return state().currentScene() == name; });
}

QStringList SceneLayoutsTest::sourcesOf(const QString &scene)
{
    QStringList names;
    const QList<ObsItem> items = state().items(scene);
    for (const ObsItem &item : items)
        names.append(item.source);
    return names;
}

/// Adds a picture, a clip and a webcam frame, and looks where they land.
void SceneLayoutsTest::addOneOfEachKind(const QString &scene, QSize canvas)
{
    const QRectF whole(QPointF(0, 0), canvas);
    const QRectF corner(canvas.width() - 500, 20, 480, 270);
    const qsizetype before = state().items(scene).size();
    qsizetype added = 0;
    for (const Addition &addition :
         {Addition{u"Picture"_s, whole}, Addition{u"Clip"_s, whole}, Addition{u"Frame"_s, corner}}) {
        ++added;
        const auto isThere = [&] { return state().items(scene).size() == before + added; };
        QVERIFY2(panel().pressUntil({Product, addition.component}, isThere), qPrintable(panel().problem()));
        const ObsItem top = *state().topItem(scene);
        QVERIFY2(top.source.startsWith(u"Quillmar - "_s + addition.component), qPrintable(top.source));
        QCOMPARE(top.position, addition.area.topLeft());
        QCOMPARE(top.bounds, addition.area.size());
        QCOMPARE(top.boundsType, BoundsScaleInner);
        QVERIFY(top.visible);
        QVERIFY(!top.locked);
    }
}

void SceneLayoutsTest::canvas_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("1280 x 720") << QSize(1280, 720);
    QTest::newRow("1920 x 1080") << QSize(1920, 1080);
    QTest::newRow("3840 x 2160") << QSize(3840, 2160);
    QTest::newRow("1080 x 1920, upright") << QSize(1080, 1920);
}

void SceneLayoutsTest::canvas()
{
    QFETCH(const QSize, size);
    QVERIFY(stage().setCanvas(size));
    const QString scene = u"%1 x %2"_s.arg(size.width()).arg(size.height());
    QVERIFY(enterScene(scene));
    addOneOfEachKind(scene, size);

    const QStringList before = state().scenes();
    const auto isThere = [&] { return state().scenes().size() == before.size() + 1; };
    QVERIFY2(panel().pressUntil({Product, u"Own scene"_s}, isThere), qPrintable(panel().problem()));
    QString added;
    const QStringList after = state().scenes();
    for (const QString &name : after)
        added = before.contains(name) ? added : name;
    QVERIFY2(added.startsWith(u"Quillmar - Own scene"_s), qPrintable(added));
    QCOMPARE(state().topItem(added)->bounds, QSizeF(size));
    QCOMPARE(state().currentScene(), scene);
    QVERIFY(stage().setCanvas(canvas_));
}

void SceneLayoutsTest::studioModeUsesTheProgramScene()
{
    QVERIFY(enterScene(u"On air"_s));
    QVERIFY(stage().setStudioMode(true));
    QVERIFY(state().createScene(u"In preparation"_s));
    QVERIFY(stage().setPreviewScene(u"In preparation"_s));
    addOneOfEachKind(u"On air"_s, canvas_);
    QCOMPARE(sourcesOf(u"In preparation"_s), QStringList());
    QVERIFY(stage().setStudioMode(false));
}

void SceneLayoutsTest::lockedItems()
{
    const QString scene = u"Locked"_s;
    QVERIFY(enterScene(scene));
    QVERIFY(stage().addColour(scene, u"Fixed"_s));
    QVERIFY(stage().lockItems(scene));
    const ObsItem before = *state().topItem(scene);
    addOneOfEachKind(scene, canvas_);
    const ObsItem fixed = state().items(scene).first();
    QCOMPARE(fixed.source, u"Fixed"_s);
    QVERIFY(fixed.locked);
    QCOMPARE(fixed.position, before.position);
    QCOMPARE(fixed.bounds, before.bounds);
}

void SceneLayoutsTest::groups()
{
    const QString scene = u"With a group"_s;
    QVERIFY(enterScene(scene));
    QVERIFY(stage().addGroup(scene, u"Group"_s));
    addOneOfEachKind(scene, canvas_);
    const QStringList sources = sourcesOf(scene);
    QCOMPARE(sources.size(), 4);
    QCOMPARE(sources.first(), u"Group"_s);
    QCOMPARE(sourcesOf(u"Group"_s), QStringList(u"Group member"_s));
}

void SceneLayoutsTest::nestedScenes()
{
    const QString scene = u"Outer"_s;
    QVERIFY(state().createScene(u"Inner"_s));
    QVERIFY(stage().addColour(u"Inner"_s, u"Inside"_s));
    QVERIFY(enterScene(scene));
    QVERIFY(stage().nestScene(scene, u"Inner"_s));
    addOneOfEachKind(scene, canvas_);
    QCOMPARE(sourcesOf(scene).first(), u"Inner"_s);
    QCOMPARE(sourcesOf(u"Inner"_s), QStringList(u"Inside"_s));
}

void SceneLayoutsTest::sceneInsideAnotherScene()
{
    QVERIFY(state().setCurrentScene(u"Inner"_s));
    QTRY_COMPARE_WITH_TIMEOUT(state().currentScene(), u"Inner"_s, 20000);
    const QStringList outer = sourcesOf(u"Outer"_s);
    addOneOfEachKind(u"Inner"_s, canvas_);
    QCOMPARE(sourcesOf(u"Outer"_s), outer);
}

void SceneLayoutsTest::vanishedFile_data()
{
    QTest::addColumn<QString>("component");
    QTest::newRow("picture") << u"Picture"_s;
    QTest::newRow("clip") << u"Clip"_s;
    QTest::newRow("webcam frame") << u"Frame"_s;
    QTest::newRow("new scene") << u"Own scene"_s;
}

/// Removed after it was extracted, at the very moment of insertion.
void SceneLayoutsTest::vanishedFile()
{
    QFETCH(const QString, component);
    const QString folder = served_->session().home().packageRoot() + u"/host-stage"_s;
    const QStringList before = state().ownNames();
    QVERIFY(stage().atStatus(u"Component.Adding"_s, {{u"then"_s, u"remove-files"_s}, {u"folder"_s, folder}}));
    QVERIFY2(panel().run({Product, component}, u"Component.FileMissing"_s), qPrintable(panel().problem()));
    QVERIFY(stage().isSprung());
    QVERIFY(!QFileInfo::exists(folder));
    QCOMPARE(state().ownNames(), before);

    QVERIFY2(panel().run({Product, component}), qPrintable(panel().problem()));
    QVERIFY(QFileInfo(panel().outcomePath({Product, component})).isFile());
    QVERIFY(state().ownNames().size() > before.size());
}

void SceneLayoutsTest::allCanBeLeftInOrder()
{
    const ObsExit exit = served_->session().quit();
    QVERIFY(exit.inTime);
    QCOMPARE(exit.code, 0);
    QCOMPARE(exit.log.leaks, 0);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::SceneLayoutsTest)
#include "scene_layouts_test.moc"
