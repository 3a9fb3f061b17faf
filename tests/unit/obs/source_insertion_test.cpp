#include "obs/source_insertion.h"

#include "tests/unit/obs/insertion_fixture.h"

using namespace Qt::StringLiterals;
using namespace quillmar;
using namespace quillmar::test;

namespace
{

QRectF boundsOf(const obs_scene_item *item)
{
    return {item->info.pos.x, item->info.pos.y, item->info.bounds.x, item->info.bounds.y};
}

} // namespace

class SourceInsertionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addTest_data();
    void addTest();
    void addTestAsksForTheRightSourceType_data();
    void addTestAsksForTheRightSourceType();

    void imageBecomesASourceOnTopOfTheCurrentScene();
    void mediaSettings_data();
    void mediaSettings();
    void fullscreenBecomesANewScene();
    void fullscreenNamesAreCutApart();
    void fullscreenNeedsNoCurrentScene();
    void overlayFillsTheCanvas();
    void webcamFrameSitsInItsCorner();
    void webcamFrameAsLargeAsTheCanvas();
    void sameNameTwiceGetsANumber();
    void sameFullscreenTwiceNumbersBoth();
    void hostileName_data();
    void hostileName();
    void suffix_data();
    void suffix();
    void pathReachesObsAsUtf8();
    void stepsComeInOrder();
};

void SourceInsertionTest::addTest_data()
{
    QTest::addColumn<ProductComponent>("component");
    QTest::addColumn<bool>("passes");
    QTest::newRow("overlay, image") << insertable(u"overlay"_s, u"image"_s) << true;
    QTest::newRow("overlay, media") << insertable(u"overlay"_s, u"media"_s) << true;
    QTest::newRow("webcam frame") << insertable(u"webcam_frame"_s, u"image"_s) << true;
    QTest::newRow("fullscreen scene") << insertable(u"fullscreen_scene"_s, u"media"_s) << true;
    QTest::newRow("stinger without a main window")
        << insertable(u"stinger_transition"_s, u"media"_s) << false;
    QTest::newRow("unknown mode") << insertable(u"underlay"_s, u"image"_s) << false;
    QTest::newRow("mode of other case") << insertable(u"Overlay"_s, u"image"_s) << false;
    QTest::newRow("unknown source type") << insertable(u"overlay"_s, u"text"_s) << false;
    ProductComponent component = insertable(u"overlay"_s, u"image"_s);
    component.auto_insert_enabled = false;
    QTest::newRow("insertion not enabled") << component << false;
    component = insertable(u"overlay"_s, u"image"_s);
    component.asset_kind = u"folder"_s;
    QTest::newRow("folder") << component << false;
    component = insertable(u"overlay"_s, u"image"_s);
    component.asset_path = u"a.gif"_s;
    QTest::newRow("image of another kind") << component << false;
}

void SourceInsertionTest::addTest()
{
    QFETCH(const ProductComponent, component);
    QFETCH(const bool, passes);
    const InsertionFixture fixture;

    QCOMPARE(canAdd(component), passes);
    QVERIFY(fixture.isBalanced());
}

void SourceInsertionTest::addTestAsksForTheRightSourceType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("missing");
    QTest::addColumn<bool>("passes");
    QTest::newRow("image without image source") << u"image"_s << u"image_source"_s << false;
    QTest::newRow("image without media source") << u"image"_s << u"ffmpeg_source"_s << true;
    QTest::newRow("media without media source") << u"media"_s << u"ffmpeg_source"_s << false;
    QTest::newRow("media without image source") << u"media"_s << u"image_source"_s << true;
}

void SourceInsertionTest::addTestAsksForTheRightSourceType()
{
    QFETCH(const QString, type);
    QFETCH(const QString, missing);
    QFETCH(const bool, passes);
    InsertionFixture fixture;
    fixture.obs.setConfigurable(missing, false);

    QCOMPARE(canAdd(insertable(u"overlay"_s, type)), passes);
}

void SourceInsertionTest::imageBecomesASourceOnTopOfTheCurrentScene()
{
    InsertionFixture fixture;
    const QString path = fixture.file(u"frame.png"_s);

    QCOMPARE(insertComponent(insertable(u"overlay"_s, u"image"_s), path), QString());
    QCOMPARE(fixture.scene->scene->items.size(), 1);
    const obs_scene_item *item = fixture.scene->scene->items.first();
    QCOMPARE(item->source->id, u"image_source"_s);
    QCOMPARE(item->source->name, u"Quillmar - X"_s);
    QCOMPARE(item->source->settings, (QVariantHash{{u"file"_s, path}}));
    QCOMPARE(item->source->references, 1); // the scene alone holds it
    QCOMPARE(item->orders, QList<int>{OBS_ORDER_MOVE_TOP});
    QCOMPARE(fixture.obs.count(u"obs_frontend_save"_s), 1);
    QCOMPARE(fixture.obs.removedNames(), QStringList());
    QVERIFY(fixture.isBalanced());
}

void SourceInsertionTest::mediaSettings_data()
{
    QTest::addColumn<bool>("loop");
    QTest::newRow("looping") << true;
    QTest::newRow("once") << false;
}

void SourceInsertionTest::mediaSettings()
{
    QFETCH(const bool, loop);
    InsertionFixture fixture;
    const QString path = fixture.file(u"clip.webm"_s);
    ProductComponent component = insertable(u"overlay"_s, u"media"_s);
    component.media_loop = loop;

    QCOMPARE(insertComponent(component, path), QString());
    const obs_source_t *source = fixture.obs.source(u"Quillmar - X"_s);
    QVERIFY(source != nullptr);
    QCOMPARE(source->id, u"ffmpeg_source"_s);
    QCOMPARE(source->settings, (QVariantHash{{u"is_local_file"_s, true},
                                             {u"local_file"_s, path},
                                             {u"looping"_s, loop},
                                             {u"restart_on_activate"_s, true}}));
}

void SourceInsertionTest::fullscreenBecomesANewScene()
{
    InsertionFixture fixture;

    QCOMPARE(insertComponent(insertable(u"fullscreen_scene"_s, u"image"_s), fixture.file(u"a.png"_s)),
             QString());
    const obs_source_t *scene = fixture.obs.source(u"Quillmar - X"_s);
    QVERIFY(scene != nullptr && scene->scene);
    QCOMPARE(scene->scene->items.size(), 1);
    QCOMPARE(scene->scene->items.first()->source->name, u"Quillmar - X - Asset"_s);
    QCOMPARE(boundsOf(scene->scene->items.first()), QRectF(0, 0, 1920, 1080));
    QVERIFY(fixture.scene->scene->items.isEmpty());
    QCOMPARE(fixture.obs.currentScene(), fixture.scene); // the new one is not made current
    QCOMPARE(fixture.obs.count(u"obs_frontend_save"_s), 1);
    QVERIFY(fixture.isBalanced());
}

void SourceInsertionTest::fullscreenNamesAreCutApart()
{
    InsertionFixture fixture;
    const QString name(116, u'n');

    QCOMPARE(insertComponent(insertable(u"fullscreen_scene"_s, u"image"_s, name), fixture.file(u"a.png"_s)),
             QString());
    QVERIFY(fixture.obs.source(u"Quillmar - "_s + name) != nullptr);
    QVERIFY(fixture.obs.source(u"Quillmar - "_s + name + u" - A"_s) != nullptr); // 120 with the cut suffix
}

void SourceInsertionTest::fullscreenNeedsNoCurrentScene()
{
    InsertionFixture fixture;
    fixture.obs.setCurrentScene(nullptr);

    QCOMPARE(insertComponent(insertable(u"fullscreen_scene"_s, u"media"_s), fixture.file(u"a.mp4"_s)),
             QString());
    QVERIFY(fixture.isBalanced());
}

void SourceInsertionTest::overlayFillsTheCanvas()
{
    InsertionFixture fixture;
    fixture.obs.setCanvas(QSize(2560, 1440));
    ProductComponent component = insertable(u"overlay"_s, u"image"_s);
    component.width = 100;
    component.position = u"center"_s;

    QCOMPARE(insertComponent(component, fixture.file(u"a.png"_s)), QString());
    const obs_transform_info &info = fixture.scene->scene->items.first()->info;
    QCOMPARE(boundsOf(fixture.scene->scene->items.first()), QRectF(0, 0, 2560, 1440));
    QCOMPARE(info.rot, 0.0F);
    QCOMPARE(info.scale.x, 1.0F);
    QCOMPARE(info.scale.y, 1.0F);
    QCOMPARE(info.alignment, quint32(OBS_ALIGN_LEFT | OBS_ALIGN_TOP));
    QCOMPARE(info.bounds_type, OBS_BOUNDS_SCALE_INNER);
    QCOMPARE(info.bounds_alignment, 0U);
    QVERIFY(!info.crop_to_bounds);
}

void SourceInsertionTest::webcamFrameSitsInItsCorner()
{
    InsertionFixture fixture;

    QCOMPARE(insertComponent(insertable(u"webcam_frame"_s, u"image"_s), fixture.file(u"a.png"_s)), QString());
    const obs_scene_item *item = fixture.scene->scene->items.first();
    QCOMPARE(boundsOf(item), QRectF(1420, 790, 480, 270));
    QCOMPARE(item->info.bounds_type, OBS_BOUNDS_SCALE_INNER);
    QCOMPARE(item->info.alignment, quint32(OBS_ALIGN_LEFT | OBS_ALIGN_TOP));
}

void SourceInsertionTest::webcamFrameAsLargeAsTheCanvas()
{
    InsertionFixture fixture;
    ProductComponent component = insertable(u"webcam_frame"_s, u"media"_s);
    component.width = 1920;
    component.height = 1080;
    component.position = u"top_right"_s;

    QCOMPARE(insertComponent(component, fixture.file(u"a.webm"_s)), QString());
    QCOMPARE(boundsOf(fixture.scene->scene->items.first()), QRectF(0, 0, 1920, 1080));
}

void SourceInsertionTest::sameNameTwiceGetsANumber()
{
    InsertionFixture fixture;
    const QString path = fixture.file(u"a.png"_s);
    const ProductComponent component = insertable(u"overlay"_s, u"image"_s);

    QCOMPARE(insertComponent(component, path), QString());
    QCOMPARE(insertComponent(component, path), QString());
    QCOMPARE(fixture.obs.sourceNames(),
             QStringList({fixture.scene->name, u"Quillmar - X"_s, u"Quillmar - X (2)"_s}));
    QVERIFY(fixture.isBalanced());
}

void SourceInsertionTest::sameFullscreenTwiceNumbersBoth()
{
    InsertionFixture fixture;
    const QString path = fixture.file(u"a.png"_s);
    const ProductComponent component = insertable(u"fullscreen_scene"_s, u"image"_s);

    QCOMPARE(insertComponent(component, path), QString());
    QCOMPARE(insertComponent(component, path), QString());
    QCOMPARE(fixture.obs.sourceNames(),
             QStringList({fixture.scene->name, u"Quillmar - X - Asset"_s, u"Quillmar - X"_s,
                          u"Quillmar - X - Asset (2)"_s, u"Quillmar - X (2)"_s}));
}

void SourceInsertionTest::hostileName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("source");
    const QString clef = u"\U0001D11E"_s;
    QTest::newRow("300 characters") << QString(300, u'a') << u"Quillmar - "_s + QString(120, u'a');
    QTest::newRow("pair at the cut") << QString(119, u'a') + clef << u"Quillmar - "_s + QString(119, u'a');
    QTest::newRow("quotes") << u"\"a\"'b'"_s << u"Quillmar - \"a\"'b'"_s;
    QTest::newRow("line break") << u"a\r\nb"_s << u"Quillmar - a\r\nb"_s;
    QTest::newRow("placeholder") << u"%1"_s << u"Quillmar - %1"_s;
    QTest::newRow("only blanks") << u"  "_s << u"Quillmar - Component"_s;
    QTest::newRow("leading blank") << u" a"_s << u"Quillmar -  a"_s;
    QTest::newRow("override of the direction") << u"\u202Ea"_s << u"Quillmar - \u202Ea"_s;
}

void SourceInsertionTest::hostileName()
{
    QFETCH(const QString, name);
    QFETCH(const QString, source);
    InsertionFixture fixture;

    QCOMPARE(insertComponent(insertable(u"overlay"_s, u"image"_s, name), fixture.file(u"a.png"_s)),
             QString());
    QCOMPARE(fixture.scene->scene->items.first()->source->name, source);
}

void SourceInsertionTest::suffix_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("error");
    for (const QString &suffix : {u"png"_s, u"jpg"_s, u"jpeg"_s, u"webp"_s, u"PNG"_s, u"JpEg"_s}) {
        QTest::addRow("image %s", qPrintable(suffix)) << u"image"_s << u"a."_s + suffix << QString();
        QTest::addRow("media %s", qPrintable(suffix))
            << u"media"_s << u"a."_s + suffix << u"Component.Unsupported"_s;
    }
    for (const QString &suffix : {u"webm"_s, u"mp4"_s, u"MP4"_s}) {
        QTest::addRow("media %s", qPrintable(suffix)) << u"media"_s << u"a."_s + suffix << QString();
        QTest::addRow("image %s", qPrintable(suffix))
            << u"image"_s << u"a."_s + suffix << u"Component.Unsupported"_s;
    }
    QTest::newRow("gif") << u"image"_s << u"a.gif"_s << u"Component.Unsupported"_s;
    QTest::newRow("none") << u"image"_s << u"png"_s << u"Component.Unsupported"_s;
    QTest::newRow("last one counts") << u"image"_s << u"a.png.exe"_s << u"Component.Unsupported"_s;
    QTest::newRow("two dots") << u"image"_s << u"a.exe.png"_s << QString();
}

void SourceInsertionTest::suffix()
{
    QFETCH(const QString, type);
    QFETCH(const QString, file);
    QFETCH(const QString, error);
    InsertionFixture fixture;

    QCOMPARE(insertComponent(insertable(u"overlay"_s, type), fixture.file(file)), error);
    QCOMPARE(fixture.scene->scene->items.size(), error.isEmpty() ? 1 : 0);
    QVERIFY(fixture.isBalanced());
}

void SourceInsertionTest::pathReachesObsAsUtf8()
{
    InsertionFixture fixture;
    const QString path = fixture.file(u"دانلود %1 &amp; é.png"_s);

    QCOMPARE(insertComponent(insertable(u"overlay"_s, u"image"_s), path), QString());
    QCOMPARE(fixture.scene->scene->items.first()->source->settings.value(u"file"_s).toString(), path);
}

void SourceInsertionTest::stepsComeInOrder()
{
    InsertionFixture fixture;

    QCOMPARE(insertComponent(insertable(u"fullscreen_scene"_s, u"image"_s), fixture.file(u"a.png"_s)),
             QString());
    QCOMPARE(fixture.obs.calls(), QStringList({
                                      u"obs_source_create image_source Quillmar - X - Asset"_s,
                                      u"obs_scene_create Quillmar - X"_s,
                                      u"obs_scene_add Quillmar - X <- Quillmar - X - Asset"_s,
                                      u"obs_sceneitem_set_info2 Quillmar - X - Asset"_s,
                                      u"obs_sceneitem_set_order Quillmar - X - Asset"_s,
                                      u"obs_frontend_save"_s,
                                  }));
}

QTEST_GUILESS_MAIN(SourceInsertionTest)
#include "source_insertion_test.moc"
