#include "packages/component_product.h"

#include <QTest>

using namespace quillmar;
using namespace Qt::StringLiterals;

namespace
{

ComponentProduct soundProduct()
{
    ComponentProduct product;
    product.product_key = u"my.pack-1_2"_s;
    product.product_version = u"1.0"_s;
    return product;
}

ProductComponent insertableOverlay()
{
    ProductComponent component;
    component.asset_path = u"overlays/frame.png"_s;
    component.asset_kind = u"file"_s;
    component.insert_mode = u"overlay"_s;
    component.source_type = u"image"_s;
    return component;
}

} // namespace

class ProductValidityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void productWithoutComponentsIsValid();
    void digest_data();
    void digest();
    void validity_data();
    void validity();
    void usableAsset_data();
    void usableAsset();
    void insertable_data();
    void insertable();
};

void ProductValidityTest::productWithoutComponentsIsValid()
{
    const ComponentProduct product =
        parseComponentProduct({{u"product_key"_s, u"a"_s}, {u"product_version"_s, u"1"_s}});
    QVERIFY(product.components.isEmpty());
    QVERIFY(isValid(product));
}

void ProductValidityTest::digest_data()
{
    QTest::addColumn<QString>("digest");
    QTest::addColumn<bool>("valid");
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("64 lower-case") << QString(64, u'a') << true;
    QTest::newRow("64 upper-case are lower-cased") << QString(64, u'F') << true;
    QTest::newRow("63 digits") << QString(63, u'a') << false;
    QTest::newRow("65 digits") << QString(65, u'a') << false;
    QTest::newRow("not a digit") << QString(QString(63, u'a') + u'g') << false;
    QTest::newRow("full-width digit") << QString(QString(63, u'a') + u'１') << false;
    QTest::newRow("line break at the end") << QString(QString(64, u'a') + u'\n') << false;
}

void ProductValidityTest::digest()
{
    QFETCH(const QString, digest);
    const ComponentProduct product = parseComponentProduct(
        {{u"product_key"_s, u"a"_s}, {u"product_version"_s, u"1"_s}, {u"sha256"_s, digest}});
    QCOMPARE(product.sha256, digest.toLower());
    QTEST(isValid(product), "valid");
}

void ProductValidityTest::validity_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("digest");
    QTest::addColumn<bool>("valid");
    QTest::newRow("sound") << u"a"_s << u"1"_s << QString() << true;
    QTest::newRow("no key") << QString() << u"1"_s << QString() << false;
    QTest::newRow("no version") << u"a"_s << QString() << QString() << false;
    QTest::newRow("unsafe key") << u"../a"_s << u"1"_s << QString() << false;
    QTest::newRow("device name") << u"con"_s << u"1"_s << QString() << false;
    QTest::newRow("upper-case digest, not parsed") << u"a"_s << u"1"_s << QString(64, u'A') << false;
    QTest::newRow("hostile version") << u"a"_s << u"../../x"_s << QString() << true;
}

void ProductValidityTest::validity()
{
    ComponentProduct product = soundProduct();
    QFETCH(const QString, key);
    QFETCH(const QString, version);
    QFETCH(const QString, digest);
    product.product_key = key;
    product.product_version = version;
    product.sha256 = digest;
    QTEST(isValid(product), "valid");
}

void ProductValidityTest::usableAsset_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("usable");
    QTest::newRow("file") << u"a.png"_s << u"file"_s << true;
    QTest::newRow("folder") << u"a"_s << u"folder"_s << true;
    QTest::newRow("no path") << QString() << u"file"_s << false;
    QTest::newRow("no kind") << u"a"_s << QString() << false;
    QTest::newRow("kind in another case") << u"a"_s << u"File"_s << false;
}

void ProductValidityTest::usableAsset()
{
    ProductComponent component;
    QFETCH(const QString, path);
    QFETCH(const QString, kind);
    component.asset_path = path;
    component.asset_kind = kind;
    QTEST(hasUsableAsset(component), "usable");
}

void ProductValidityTest::insertable_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("expected");
    const auto row = [](const char *name, const QString &path, const QString &kind, const QString &mode,
                        const QString &source,
                        bool expected) { QTest::newRow(name) << path << kind << mode << source << expected; };
    for (const QString &suffix : {u"png"_s, u"jpg"_s, u"jpeg"_s, u"webp"_s, u"WebP"_s})
        row(qPrintable(u"image "_s + suffix), u"a."_s + suffix, u"file"_s, u"overlay"_s, u"image"_s, true);
    for (const QString &suffix : {u"webm"_s, u"mp4"_s})
        row(qPrintable(u"media "_s + suffix), u"a."_s + suffix, u"file"_s, u"overlay"_s, u"media"_s, true);
    for (const QString &mode : {u"overlay"_s, u"webcam_frame"_s, u"fullscreen_scene"_s})
        row(qPrintable(u"mode "_s + mode), u"a.png"_s, u"file"_s, mode, u"image"_s, true);
    row("overlay of media, upper-case suffix", u"clip.MP4"_s, u"file"_s, u"overlay"_s, u"media"_s, true);
    row("stinger of media", u"s.webm"_s, u"file"_s, u"stinger_transition"_s, u"media"_s, true);
    row("stinger of an image", u"s.png"_s, u"file"_s, u"stinger_transition"_s, u"image"_s, false);
    row("folder", u"frames.png"_s, u"folder"_s, u"overlay"_s, u"image"_s, false);
    row("image suffix for media", u"a.png"_s, u"file"_s, u"overlay"_s, u"media"_s, false);
    row("media suffix for an image", u"a.mp4"_s, u"file"_s, u"overlay"_s, u"image"_s, false);
    row("gif", u"a.gif"_s, u"file"_s, u"overlay"_s, u"image"_s, false);
    row("no suffix", u"png"_s, u"file"_s, u"overlay"_s, u"image"_s, false);
    row("suffix of the folder only", u"a.png/b"_s, u"file"_s, u"overlay"_s, u"image"_s, false);
    row("last suffix counts", u"a.png.exe"_s, u"file"_s, u"overlay"_s, u"image"_s, false);
    row("unknown mode", u"a.png"_s, u"file"_s, u"Overlay"_s, u"image"_s, false);
    row("no mode", u"a.png"_s, u"file"_s, QString(), u"image"_s, false);
    row("unknown source", u"a.mp4"_s, u"file"_s, u"overlay"_s, u"browser"_s, false);
    row("no source", u"a.mp4"_s, u"file"_s, u"overlay"_s, QString(), false);
    row("no path", QString(), u"file"_s, u"overlay"_s, u"image"_s, false);
}

void ProductValidityTest::insertable()
{
    ProductComponent component = insertableOverlay();
    QVERIFY(isInsertable(component));
    QFETCH(const QString, path);
    QFETCH(const QString, kind);
    QFETCH(const QString, mode);
    QFETCH(const QString, source);
    component.asset_path = path;
    component.asset_kind = kind;
    component.insert_mode = mode;
    component.source_type = source;
    QTEST(isInsertable(component), "expected");
}

QTEST_GUILESS_MAIN(ProductValidityTest)
#include "product_validity_test.moc"
