#include "tests/host/support/served_session.h"

#include <QFileInfo>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

const QString Product = QStringLiteral("Host pictures");

struct Insertion {
    QString component;
    QString source;
    QString sourceId;
    /// Empty for the scene that is current.
    QString newScene;
    QJsonObject settings;
};

QJsonObject mediaSettings(bool looping)
{
    return {{u"is_local_file"_s, true}, {u"looping"_s, looping}, {u"restart_on_activate"_s, true}};
}

} // namespace

/// What a click on "Add to OBS" leaves in OBS, as libobs itself tells it and as OBS writes it to disk.
class InsertionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void adds_data();
    void adds();
    void secondTimeGetsANumber();
    void fullscreenSecondTimeGetsNumbersOnBoth();
    void newestIsOnTop();
    void goesIntoTheCurrentSceneWithAPersianName();
    void unsuitableComponentsOfferNoAddButton();
    void downloadOnlyTouchesNoScene();
    void folderIsDownloadedAsAFolder();
    void savedSceneCollectionHoldsThem();
    void restartedObsStillShowsThem();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    void checkItem(const ObsItem &item, const QString &source);

    std::unique_ptr<ServedSession> served_;
    QString firstScene_;
    QStringList inserted_;
};

void InsertionTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start({.host = {.hostLanguage = u"fa-IR"_s}, .account = u"demo"_s}, &problem);
    QVERIFY2(served_, qPrintable(problem));
    firstScene_ = served_->state().currentScene();
    QVERIFY(!firstScene_.isEmpty());
}

void InsertionTest::checkItem(const ObsItem &item, const QString &source)
{
    QCOMPARE(item.source, source);
    QCOMPARE(item.position, QPointF(0, 0));
    QCOMPARE(item.scale, QPointF(1, 1));
    QCOMPARE(item.rotation, 0.0);
    QCOMPARE(item.alignment, AlignLeftTop);
    QCOMPARE(item.boundsType, BoundsScaleInner);
    QCOMPARE(item.boundsAlignment, AlignCentre);
    QCOMPARE(item.bounds, QSizeF(1920, 1080));
    QVERIFY(!item.cropToBounds);
    QCOMPARE(item.crop, QList<int>(4, 0));
    QVERIFY(item.visible);
}

void InsertionTest::adds_data()
{
    QTest::addColumn<Insertion>("expected");
    const auto row = [](const char *name, const Insertion &insertion) { QTest::newRow(name) << insertion; };
    const QString image = u"image_source"_s;
    const QString media = u"ffmpeg_source"_s;
    row("image overlay", {u"Plain"_s, u"Quillmar - Plain"_s, image, {}, {}});
    row("upper-case suffix", {u"Capital"_s, u"Quillmar - Capital"_s, image, {}, {}});
    row("name of blanks", {u"  "_s, u"Quillmar - Component"_s, image, {}, {}});
    row("leading blank kept", {u" Leading"_s, u"Quillmar -  Leading"_s, image, {}, {}});
    row("Persian name", {u"قاب فارسی"_s, u"Quillmar - قاب فارسی"_s, image, {}, {}});
    row("media overlay that loops", {u"Clip"_s, u"Quillmar - Clip"_s, media, {}, mediaSettings(true)});
    row("image in a new scene", {u"Picture scene"_s,
                                 u"Quillmar - Picture scene - Asset"_s,
                                 image,
                                 u"Quillmar - Picture scene"_s,
                                 {}});
    row("media in a new scene", {u"Clip scene"_s, u"Quillmar - Clip scene - Asset"_s, media,
                                 u"Quillmar - Clip scene"_s, mediaSettings(false)});
}

void InsertionTest::adds()
{
    QFETCH(const Insertion, expected);
    const ComponentButton button{Product, expected.component};
    QVERIFY2(panel().run(button), qPrintable(panel().problem()));

    const ObsState state = served_->state();
    const std::optional<ObsSource> source = state.source(expected.source);
    QVERIFY(source);
    QCOMPARE(source->id, expected.sourceId);
    QCOMPARE(source->file(), panel().outcomePath(button));
    QVERIFY(QFileInfo(source->file()).isFile());
    QVERIFY(source->file().startsWith(served_->session().home().packageRoot() + u'/'));
    for (auto setting = expected.settings.begin(); setting != expected.settings.end(); ++setting)
        QCOMPARE(source->settings[setting.key()], setting.value());

    const QString scene = expected.newScene.isEmpty() ? firstScene_ : expected.newScene;
    QVERIFY(state.scenes().contains(scene));
    QCOMPARE(state.currentScene(), firstScene_);
    QCOMPARE(state.items(scene).size(), expected.newScene.isEmpty() ? inserted_.size() + 1 : 1);
    checkItem(*state.topItem(scene), expected.source);
    if (expected.newScene.isEmpty())
        inserted_.append(expected.source);
}

void InsertionTest::secondTimeGetsANumber()
{
    QVERIFY2(panel().press({Product, u"Plain"_s}), qPrintable(panel().problem()));
    QTRY_VERIFY_WITH_TIMEOUT(served_->state().source(u"Quillmar - Plain (2)"_s), 20000);
    QVERIFY(served_->state().source(u"Quillmar - Plain"_s));
    checkItem(*served_->state().topItem(firstScene_), u"Quillmar - Plain (2)"_s);
    inserted_.append(u"Quillmar - Plain (2)"_s);
}

void InsertionTest::fullscreenSecondTimeGetsNumbersOnBoth()
{
    QVERIFY2(panel().press({Product, u"Picture scene"_s}), qPrintable(panel().problem()));
    QTRY_VERIFY_WITH_TIMEOUT(served_->state().scenes().contains(u"Quillmar - Picture scene (2)"_s), 20000);
    checkItem(*served_->state().topItem(u"Quillmar - Picture scene (2)"_s),
              u"Quillmar - Picture scene - Asset (2)"_s);
    QCOMPARE(served_->state().currentScene(), firstScene_);
}

void InsertionTest::newestIsOnTop()
{
    QStringList order;
    const QList<ObsItem> items = served_->state().items(firstScene_);
    for (const ObsItem &item : items)
        order.append(item.source);
    QCOMPARE(order, inserted_);
}

void InsertionTest::goesIntoTheCurrentSceneWithAPersianName()
{
    const QString scene = u"صحنه‌های من"_s;
    QVERIFY(served_->state().createScene(scene));
    QTRY_VERIFY_WITH_TIMEOUT(served_->state().scenes().contains(scene), 20000);
    QVERIFY(served_->state().setCurrentScene(scene));
    QTRY_COMPARE_WITH_TIMEOUT(served_->state().currentScene(), scene, 20000);
    QVERIFY2(panel().press({Product, u"Capital"_s}), qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(served_->state().items(scene).size(), 1, 20000);
    checkItem(*served_->state().topItem(scene), u"Quillmar - Capital (2)"_s);
    QCOMPARE(served_->state().items(firstScene_).size(), inserted_.size());
}

void InsertionTest::unsuitableComponentsOfferNoAddButton()
{
    const WidgetTree tree = panel().robot().tree();
    for (const QString &name : {u"Animation"_s, u"Not for adding"_s, u"Folder"_s}) {
        const Widget *card = tree.find([&](const Widget &widget) {
            const auto isTitle = [&name](const Widget &w) { return w.text == name; };
            return widget.name == "quillmarComponentCard"_L1 && tree.findBelow(widget, isTitle);
        });
        QVERIFY(card);
        const auto hasText = [this](const QString &key) {
            return [text = panel().text(key)](const Widget &w) { return w.text == text; };
        };
        QVERIFY(!tree.findBelow(*card, hasText(u"Component.Add"_s)));
        QVERIFY(tree.findBelow(*card, hasText(u"Product.Download"_s)));
    }
}

void InsertionTest::downloadOnlyTouchesNoScene()
{
    const QStringList before = served_->state().ownNames();
    const ComponentButton button{Product, u"Animation"_s, u"Product.Download"_s};
    QVERIFY2(panel().run(button, u"Download.Success"_s), qPrintable(panel().problem()));
    QVERIFY(QFileInfo(panel().outcomePath(button)).isFile());
    QCOMPARE(served_->state().ownNames(), before);
}

void InsertionTest::folderIsDownloadedAsAFolder()
{
    const ComponentButton button{Product, u"Folder"_s, u"Product.Download"_s};
    QVERIFY2(panel().run(button, u"Download.Success"_s), qPrintable(panel().problem()));
    const QFileInfo folder(panel().outcomePath(button));
    QVERIFY(folder.isDir());
    QVERIFY(QFileInfo(folder.filePath() + u"/plain.png"_s).isFile());
    QVERIFY(QFileInfo(folder.filePath() + u"/قاب.png"_s).isFile());
}

void InsertionTest::savedSceneCollectionHoldsThem()
{
    QHash<QString, QJsonObject> saved;
    const auto readSaved = [&] {
        const QJsonArray sources = served_->session().home().savedSceneCollection()["sources"_L1].toArray();
        for (const QJsonValue &source : sources)
            saved[source["name"_L1].toString()] = source.toObject();
        return saved.contains(u"Quillmar - Capital (2)"_s);
    };
    QTRY_VERIFY_WITH_TIMEOUT(readSaved(), 20000);
    for (const QString &name : std::as_const(inserted_))
        QVERIFY2(saved.contains(name), qPrintable(name));
    QVERIFY(QFileInfo(saved[u"Quillmar - Plain"_s]["settings"_L1]["file"_L1].toString()).isFile());
    QVERIFY(QFileInfo(saved[u"Quillmar - Clip"_s]["settings"_L1]["local_file"_L1].toString()).isFile());
    QVERIFY(saved.contains(u"Quillmar - Clip scene"_s));
    const QJsonValue items = saved[firstScene_]["settings"_L1]["items"_L1];
    QCOMPARE(items.toArray().size(), inserted_.size());
    QCOMPARE(items[0]["bounds"_L1]["x"_L1].toDouble(), 1920.0);
    QCOMPARE(items[0]["bounds_type"_L1].toInt(), BoundsScaleInner);
}

void InsertionTest::restartedObsStillShowsThem()
{
    QVERIFY(served_->state().setCurrentScene(firstScene_));
    const ObsExit exit = served_->session().quit();
    QVERIFY(exit.inTime);
    QCOMPARE(exit.code, 0);
    QCOMPARE(exit.log.leaks, 0);
    QString problem;
    QVERIFY2(served_->session().startObs(&problem), qPrintable(problem));
    for (const QString &name : std::as_const(inserted_))
        QVERIFY2(served_->state().source(name), qPrintable(name));
    QTRY_COMPARE_WITH_TIMEOUT(served_->state().source(u"Quillmar - Plain"_s)->size, QSize(320, 180), 20000);
    QCOMPARE(served_->session().quit().code, 0);
}

} // namespace quillmar::test

Q_DECLARE_METATYPE(quillmar::test::Insertion)

QTEST_GUILESS_MAIN(quillmar::test::InsertionTest)
#include "insertion_test.moc"
