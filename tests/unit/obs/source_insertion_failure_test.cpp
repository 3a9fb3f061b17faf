#include "obs/source_insertion.h"

#include "tests/unit/obs/insertion_fixture.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace quillmar;
using namespace quillmar::test;
using Creation = LibobsFake::Creation;

class SourceInsertionFailureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failingTheAddTest();
    void sourceTypeGoneAfterTheButtonWasMade();
    void missingFile();
    void folderInPlaceOfTheFile();
    void fileIsLookedForBeforeItsSuffix();
    void noVideoInfo();
    void canvasWithoutArea_data();
    void canvasWithoutArea();
    void noCurrentScene();
    void currentSceneIsNoScene();
    void creationFails_data();
    void creationFails();
    void failureLeavesRoomForTheNextTry();
};

void SourceInsertionFailureTest::failingTheAddTest()
{
    const InsertionFixture fixture;
    ProductComponent component = insertable(u"overlay"_s, u"image"_s);
    component.auto_insert_enabled = false;

    QCOMPARE(insertComponent(component, fixture.file(u"a.png"_s)), u"Component.Unsupported"_s);
    QCOMPARE(fixture.obs.calls(), QStringList());
}

void SourceInsertionFailureTest::sourceTypeGoneAfterTheButtonWasMade()
{
    InsertionFixture fixture;
    const ProductComponent component = insertable(u"overlay"_s, u"image"_s);
    QVERIFY(canAdd(component));
    fixture.obs.setConfigurable(u"image_source"_s, false);

    QCOMPARE(insertComponent(component, fixture.file(u"a.png"_s)), u"Component.Unsupported"_s);
    QCOMPARE(fixture.obs.calls(), QStringList());
}

void SourceInsertionFailureTest::missingFile()
{
    const InsertionFixture fixture;
    const ProductComponent component = insertable(u"overlay"_s, u"image"_s);

    QCOMPARE(insertComponent(component, fixture.folder.filePath(u"no.png"_s)), u"Component.FileMissing"_s);
    QCOMPARE(insertComponent(component, QString()), u"Component.FileMissing"_s);
    QCOMPARE(fixture.obs.calls(), QStringList());
}

void SourceInsertionFailureTest::folderInPlaceOfTheFile()
{
    const InsertionFixture fixture;
    QVERIFY(QDir{fixture.folder.path()}.mkdir(u"a.png"_s));

    QCOMPARE(insertComponent(insertable(u"overlay"_s, u"image"_s), fixture.folder.filePath(u"a.png"_s)),
             u"Component.FileMissing"_s);
}

void SourceInsertionFailureTest::fileIsLookedForBeforeItsSuffix()
{
    const InsertionFixture fixture;

    QCOMPARE(insertComponent(insertable(u"overlay"_s, u"image"_s), fixture.folder.filePath(u"no.gif"_s)),
             u"Component.FileMissing"_s);
}

void SourceInsertionFailureTest::noVideoInfo()
{
    InsertionFixture fixture;
    fixture.obs.setCanvas(std::nullopt);
    fixture.obs.setCurrentScene(nullptr); // the canvas is asked for first

    QCOMPARE(insertComponent(insertable(u"overlay"_s, u"image"_s), fixture.file(u"a.png"_s)),
             u"Component.InsertFailed"_s);
    QCOMPARE(fixture.obs.calls(), QStringList());
    QVERIFY(fixture.isBalanced());
}

void SourceInsertionFailureTest::canvasWithoutArea_data()
{
    QTest::addColumn<QSize>("canvas");
    QTest::newRow("no width") << QSize(0, 1080);
    QTest::newRow("no height") << QSize(1920, 0);
    QTest::newRow("nothing") << QSize(0, 0);
}

void SourceInsertionFailureTest::canvasWithoutArea()
{
    QFETCH(const QSize, canvas);
    InsertionFixture fixture;
    fixture.obs.setCanvas(canvas);

    QCOMPARE(insertComponent(insertable(u"fullscreen_scene"_s, u"image"_s), fixture.file(u"a.png"_s)),
             u"Component.InsertFailed"_s);
    QCOMPARE(fixture.obs.calls(), QStringList());
}

void SourceInsertionFailureTest::noCurrentScene()
{
    InsertionFixture fixture;
    fixture.obs.setCurrentScene(nullptr);

    QCOMPARE(insertComponent(insertable(u"overlay"_s, u"image"_s), fixture.file(u"a.png"_s)),
             u"Component.NoScene"_s);
    QCOMPARE(fixture.obs.calls(), QStringList());
    QVERIFY(fixture.isBalanced());
}

void SourceInsertionFailureTest::currentSceneIsNoScene()
{
    InsertionFixture fixture;
    fixture.obs.setCurrentScene(fixture.obs.addSource(u"image_source"_s, u"no scene"_s));

    QCOMPARE(insertComponent(insertable(u"webcam_frame"_s, u"image"_s), fixture.file(u"a.png"_s)),
             u"Component.NoScene"_s);
    QVERIFY(fixture.isBalanced());
}

void SourceInsertionFailureTest::creationFails_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<Creation>("creation");
    QTest::addColumn<QStringList>("removed");
    QTest::newRow("source, current scene") << u"overlay"_s << Creation::Source << QStringList();
    QTest::newRow("source, new scene") << u"fullscreen_scene"_s << Creation::Source << QStringList();
    QTest::newRow("new scene") << u"fullscreen_scene"_s << Creation::Scene
                               << QStringList(u"Quillmar - X - Asset"_s);
    QTest::newRow("item, current scene")
        << u"overlay"_s << Creation::SceneItem << QStringList(u"Quillmar - X"_s);
    QTest::newRow("item, webcam frame")
        << u"webcam_frame"_s << Creation::SceneItem << QStringList(u"Quillmar - X"_s);
    QTest::newRow("item, new scene") << u"fullscreen_scene"_s << Creation::SceneItem
                                     << QStringList({u"Quillmar - X - Asset"_s, u"Quillmar - X"_s});
}

void SourceInsertionFailureTest::creationFails()
{
    QFETCH(const QString, mode);
    QFETCH(const Creation, creation);
    QFETCH(const QStringList, removed);
    InsertionFixture fixture;
    fixture.obs.failCreation(creation);

    QCOMPARE(insertComponent(insertable(mode, u"image"_s), fixture.file(u"a.png"_s)),
             u"Component.InsertFailed"_s);
    QCOMPARE(fixture.obs.removedNames(), removed);
    QCOMPARE(fixture.obs.sourceNames(), QStringList(fixture.scene->name));
    QVERIFY(fixture.scene->scene->items.isEmpty());
    QCOMPARE(fixture.obs.count(u"obs_frontend_save"_s), 0);
    QVERIFY(fixture.isBalanced());
}

void SourceInsertionFailureTest::failureLeavesRoomForTheNextTry()
{
    InsertionFixture fixture;
    fixture.obs.failCreation(Creation::SceneItem);
    const QString path = fixture.file(u"a.png"_s);
    const ProductComponent component = insertable(u"fullscreen_scene"_s, u"image"_s);

    QCOMPARE(insertComponent(component, path), u"Component.InsertFailed"_s);
    QCOMPARE(insertComponent(component, path), QString());
    QVERIFY(fixture.obs.source(u"Quillmar - X"_s) != nullptr); // no number needed
    QVERIFY(fixture.obs.source(u"Quillmar - X - Asset"_s) != nullptr);
}

QTEST_GUILESS_MAIN(SourceInsertionFailureTest)
#include "source_insertion_failure_test.moc"
