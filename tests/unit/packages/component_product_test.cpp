#include "packages/component_product.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <limits>

using namespace quillmar;
using namespace Qt::StringLiterals;

namespace
{

QJsonObject withComponent(const QJsonObject &component)
{
    return {{u"components"_s, QJsonArray{component}}};
}

ProductComponent parseComponent(const QJsonObject &component)
{
    return parseComponentProduct(withComponent(component)).components.value(0);
}

QJsonArray gallery(int count)
{
    QJsonArray entries;
    for (int i = 0; i < count; ++i)
        entries.append(QJsonObject{{u"url"_s, u"https://quillmar.example/%1.png"_s.arg(i)}});
    return entries;
}

QStringList keys(const QList<ProductComponent> &components)
{
    QStringList names;
    for (const ProductComponent &component : components)
        names.append(component.component_key);
    return names;
}

/// One value of every JSON type, none of them text that means anything, plus numbers at and beyond every
/// border.
QList<QJsonValue> oddValues()
{
    return {QJsonValue::Null,
            true,
            u""_s,
            u"9"_s,
            -1,
            0,
            1.5,
            2147483647.0,
            2147483648.0,
            -2147483648.0,
            -2147483649.0,
            9223372036854775808.0,
            1e300,
            -1e300,
            QJsonArray{},
            QJsonObject{}};
}

} // namespace

class ComponentProductTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEveryProductField();
    void readsEveryComponentField();
    void emptyObjectTakesAllDefaults();
    void componentsThatAreNoArrayAreNone();
    void elementsThatAreNoObjectAreSkipped();
    void sortsByOrderStable();
    void sortsLongListsStable();
    void transitionPoint_data();
    void transitionPoint();
    void integerFields_data();
    void integerFields();
    void fileSize_data();
    void fileSize();
    void booleanFieldsTakeBooleansOnly();
    void textFieldsTakeTextOnly();
    void oddValuesNeverFail();
    void galleryEndsAt32();
    void galleryElementThatIsNoObjectIsAnEmptyEntry();
    void galleryReadsAllKeys();
    void previewImageStandsInForAnEmptyGallery();
    void previewImageIsIgnoredBesideAGallery();
    void emptyGalleryAndEmptyImageYieldNone();
    void componentReadsItsOwnGallery();
};

void ComponentProductTest::readsEveryProductField()
{
    const QJsonObject object{{u"product_key"_s, u"key"_s},      {u"product_version"_s, u"2"_s},
                             {u"file_name"_s, u"p.zip"_s},      {u"file_mime"_s, u"application/zip"_s},
                             {u"product_name"_s, u"نام"_s},     {u"description"_s, u"text"_s},
                             {u"sha256"_s, u"ABCDEF"_s},        {u"file_size"_s, 5'000'000'000.0},
                             {u"preview_gallery"_s, gallery(1)}};
    const ComponentProduct product = parseComponentProduct(object);
    QCOMPARE(product.product_key, u"key"_s);
    QCOMPARE(product.product_version, u"2"_s);
    QCOMPARE(product.file_name, u"p.zip"_s);
    QCOMPARE(product.file_mime, u"application/zip"_s);
    QCOMPARE(product.product_name, u"نام"_s);
    QCOMPARE(product.description, u"text"_s);
    QCOMPARE(product.sha256, u"abcdef"_s);
    QCOMPARE(product.file_size, 5'000'000'000);
    QCOMPARE(product.previews.size(), 1);
}

void ComponentProductTest::readsEveryComponentField()
{
    const ProductComponent component = parseComponent({{u"component_key"_s, u"k"_s},
                                                       {u"component_name"_s, u"n"_s},
                                                       {u"component_type"_s, u"t"_s},
                                                       {u"asset_path"_s, u"a/b"_s},
                                                       {u"asset_kind"_s, u"folder"_s},
                                                       {u"file_mime"_s, u"m"_s},
                                                       {u"insert_mode"_s, u"i"_s},
                                                       {u"source_type"_s, u"s"_s},
                                                       {u"position"_s, u"center"_s},
                                                       {u"variant_label"_s, u"v"_s},
                                                       {u"auto_insert_enabled"_s, true},
                                                       {u"media_loop"_s, true},
                                                       {u"width"_s, 640},
                                                       {u"height"_s, -3},
                                                       {u"transition_point_ms"_s, 750},
                                                       {u"sort_order"_s, 9}});
    QCOMPARE(component.component_key, u"k"_s);
    QCOMPARE(component.component_name, u"n"_s);
    QCOMPARE(component.component_type, u"t"_s);
    QCOMPARE(component.asset_path, u"a/b"_s);
    QCOMPARE(component.asset_kind, u"folder"_s);
    QCOMPARE(component.file_mime, u"m"_s);
    QCOMPARE(component.insert_mode, u"i"_s);
    QCOMPARE(component.source_type, u"s"_s);
    QCOMPARE(component.position, u"center"_s);
    QCOMPARE(component.variant_label, u"v"_s);
    QVERIFY(component.auto_insert_enabled);
    QVERIFY(component.media_loop);
    QCOMPARE(component.width, 640);
    QCOMPARE(component.height, -3);
    QCOMPARE(component.transition_point_ms, 750);
    QCOMPARE(component.sort_order, 9);
}

void ComponentProductTest::emptyObjectTakesAllDefaults()
{
    const ComponentProduct product = parseComponentProduct({});
    QVERIFY(product.product_key.isEmpty() && product.product_version.isEmpty() && product.sha256.isEmpty());
    QCOMPARE(product.file_size, 0);
    QVERIFY(product.previews.isEmpty() && product.components.isEmpty());
    QVERIFY(!isValid(product));

    const ProductComponent component = parseComponentProduct(withComponent({})).components.at(0);
    QVERIFY(component.asset_path.isEmpty() && component.position.isEmpty() && component.previews.isEmpty());
    QVERIFY(!component.auto_insert_enabled && !component.media_loop);
    QCOMPARE(component.width, 0);
    QCOMPARE(component.height, 0);
    QCOMPARE(component.sort_order, 0);
    QCOMPARE(component.transition_point_ms, 300);
}

void ComponentProductTest::componentsThatAreNoArrayAreNone()
{
    QVERIFY(parseComponentProduct({{u"components"_s, QJsonObject{{u"a"_s, 1}}}}).components.isEmpty());
    QVERIFY(parseComponentProduct({{u"components"_s, u"[]"_s}}).components.isEmpty());
}

void ComponentProductTest::elementsThatAreNoObjectAreSkipped()
{
    const QJsonArray elements{
        1, u"x"_s, QJsonObject{{u"component_key"_s, u"A"_s}}, QJsonArray{}, QJsonValue::Null, QJsonObject{}};
    const ComponentProduct product = parseComponentProduct({{u"components"_s, elements}});
    QCOMPARE(keys(product.components), QStringList({u"A"_s, QString()}));
}

void ComponentProductTest::sortsByOrderStable()
{
    QJsonArray elements;
    for (const auto &[key, order] : {std::pair(u"A"_s, 5), {u"B"_s, 1}, {u"C"_s, 5}, {u"D"_s, 0}})
        elements.append(QJsonObject{{u"component_key"_s, key}, {u"sort_order"_s, order}});
    const ComponentProduct product = parseComponentProduct({{u"components"_s, elements}});
    QCOMPARE(keys(product.components), QStringList({u"D"_s, u"B"_s, u"A"_s, u"C"_s}));
}

void ComponentProductTest::sortsLongListsStable()
{
    QJsonArray elements;
    for (int i = 0; i < 500; ++i)
        elements.append(QJsonObject{{u"width"_s, i}, {u"sort_order"_s, -(i % 7)}});
    const QList<ProductComponent> sorted = parseComponentProduct({{u"components"_s, elements}}).components;
    QCOMPARE(sorted.size(), 500);
    for (qsizetype i = 1; i < sorted.size(); ++i) {
        const ProductComponent &before = sorted.at(i - 1);
        const ProductComponent &after = sorted.at(i);
        QVERIFY(before.sort_order < after.sort_order ||
                (before.sort_order == after.sort_order && before.width < after.width));
    }
}

void ComponentProductTest::transitionPoint_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<qint32>("expected");
    QTest::newRow("largest kept") << QJsonValue(120000) << 120000;
    QTest::newRow("one more") << QJsonValue(120001) << 300;
    QTest::newRow("minus one") << QJsonValue(-1) << 300;
    QTest::newRow("most negative") << QJsonValue(std::numeric_limits<qint32>::min()) << 300;
    QTest::newRow("zero") << QJsonValue(0) << 0;
    QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined) << 300;
    QTest::newRow("not whole") << QJsonValue(12.5) << 300;
    QTest::newRow("text") << QJsonValue(u"500"_s) << 300;
    QTest::newRow("beyond the field, low half in range") << QJsonValue(4294967296.0 + 500) << 300;
}

void ComponentProductTest::transitionPoint()
{
    QFETCH(const QJsonValue, value);
    QTEST(parseComponent({{u"transition_point_ms"_s, value}}).transition_point_ms, "expected");
}

void ComponentProductTest::integerFields_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<qint32>("expected");
    QTest::newRow("text") << QJsonValue(u"640"_s) << 0;
    QTest::newRow("not whole") << QJsonValue(12.5) << 0;
    QTest::newRow("whole as a double") << QJsonValue(640.0) << 640;
    QTest::newRow("largest") << QJsonValue(2147483647.0) << 2147483647;
    QTest::newRow("one more") << QJsonValue(2147483648.0) << 0;
    QTest::newRow("smallest") << QJsonValue(-2147483648.0) << std::numeric_limits<qint32>::min();
    QTest::newRow("one less") << QJsonValue(-2147483649.0) << 0;
    QTest::newRow("far outside") << QJsonValue(1e300) << 0;
    QTest::newRow("boolean") << QJsonValue(true) << 0;
}

void ComponentProductTest::integerFields()
{
    QFETCH(const QJsonValue, value);
    const ProductComponent component =
        parseComponent({{u"width"_s, value}, {u"height"_s, value}, {u"sort_order"_s, value}});
    QTEST(component.width, "expected");
    QTEST(component.height, "expected");
    QTEST(component.sort_order, "expected");
}

void ComponentProductTest::fileSize_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("whole") << QByteArray("7") << qint64(7);
    QTest::newRow("beyond 32 bit") << QByteArray("2147483648") << qint64(2147483648);
    QTest::newRow("beyond exact doubles") << QByteArray("9007199254740993") << qint64(9007199254740993);
    QTest::newRow("largest") << QByteArray("9223372036854775807") << std::numeric_limits<qint64>::max();
    QTest::newRow("one more") << QByteArray("9223372036854775808") << qint64(0);
    QTest::newRow("negative") << QByteArray("-5") << qint64(-5);
    QTest::newRow("with exponent") << QByteArray("1e3") << qint64(1000);
    QTest::newRow("text") << QByteArray("\"7\"") << qint64(0);
    QTest::newRow("not whole") << QByteArray("12.5") << qint64(0);
    QTest::newRow("null") << QByteArray("null") << qint64(0);
}

void ComponentProductTest::fileSize()
{
    QFETCH(const QByteArray, json);
    const QJsonObject object = QJsonDocument::fromJson("{\"file_size\":" + json + "}").object();
    QTEST(parseComponentProduct(object).file_size, "expected");
}

void ComponentProductTest::booleanFieldsTakeBooleansOnly()
{
    for (const QJsonValue &value : {QJsonValue(1), QJsonValue(u"true"_s), QJsonValue(QJsonValue::Null)}) {
        const ProductComponent component =
            parseComponent({{u"media_loop"_s, value}, {u"auto_insert_enabled"_s, value}});
        QVERIFY(!component.media_loop);
        QVERIFY(!component.auto_insert_enabled);
    }
}

void ComponentProductTest::textFieldsTakeTextOnly()
{
    const ComponentProduct product = parseComponentProduct({{u"product_key"_s, 5},
                                                            {u"product_name"_s, QJsonArray{u"x"_s}},
                                                            {u"sha256"_s, true},
                                                            {u"preview_image"_s, 3}});
    QVERIFY(product.product_key.isEmpty() && product.product_name.isEmpty() && product.sha256.isEmpty());
    QVERIFY(product.previews.isEmpty());
}

void ComponentProductTest::oddValuesNeverFail()
{
    const QStringList names{u"product_key"_s, u"file_size"_s,       u"sha256"_s,     u"components"_s,
                            u"width"_s,       u"preview_gallery"_s, u"sort_order"_s, u"transition_point_ms"_s,
                            u"url"_s,         u"preview_image"_s,   u"media_loop"_s, u"asset_path"_s};
    for (const QString &name : names) {
        for (const QJsonValue &value : oddValues()) {
            QJsonObject object = withComponent({{name, value}, {u"preview_gallery"_s, QJsonArray{value}}});
            object.insert(name, value);
            const ComponentProduct product = parseComponentProduct(object);
            QVERIFY(product.components.size() <= 1);
            for (const ProductComponent &component : product.components)
                QVERIFY(component.transition_point_ms >= 0 && component.transition_point_ms <= 120000);
        }
    }
}

void ComponentProductTest::galleryEndsAt32()
{
    const QList<PreviewEntry> previews =
        parseComponentProduct({{u"preview_gallery"_s, gallery(40)}}).previews;
    QCOMPARE(previews.size(), 32);
    QCOMPARE(previews.last().url, QUrl(u"https://quillmar.example/31.png"_s));
}

void ComponentProductTest::galleryElementThatIsNoObjectIsAnEmptyEntry()
{
    const QList<PreviewEntry> previews =
        parseComponentProduct(
            {{u"preview_gallery"_s, QJsonArray{7}}, {u"preview_image"_s, u"https://quillmar.example/a"_s}})
            .previews;
    QCOMPARE(previews.size(), 1);
    QVERIFY(previews.at(0).url.isEmpty());
    QVERIFY(previews.at(0).label.isEmpty());
}

void ComponentProductTest::galleryReadsAllKeys()
{
    const QJsonObject entry{{u"url"_s, u"https://quillmar.example/a b.png"_s},
                            {u"fallback_url"_s, u"https://quillmar.example/f.png"_s},
                            {u"revision"_s, u"r7"_s},
                            {u"label"_s, u"Front"_s}};
    const PreviewEntry read =
        parseComponentProduct({{u"preview_gallery"_s, QJsonArray{entry}}}).previews.at(0);
    QCOMPARE(read.url.toEncoded(), "https://quillmar.example/a%20b.png");
    QCOMPARE(read.fallback_url, QUrl(u"https://quillmar.example/f.png"_s));
    QCOMPARE(read.revision, u"r7"_s);
    QCOMPARE(read.label, u"Front"_s);
}

void ComponentProductTest::previewImageStandsInForAnEmptyGallery()
{
    const QList<PreviewEntry> previews =
        parseComponentProduct({{u"preview_gallery"_s, QJsonArray{}},
                               {u"preview_image"_s, u"https://quillmar.example/one.png"_s},
                               {u"preview_revision"_s, u"r1"_s}})
            .previews;
    QCOMPARE(previews.size(), 1);
    QCOMPARE(previews.at(0).url, QUrl(u"https://quillmar.example/one.png"_s));
    QVERIFY(previews.at(0).fallback_url.isEmpty());
    QCOMPARE(previews.at(0).revision, u"r1"_s);
    QVERIFY(previews.at(0).label.isEmpty());
}

void ComponentProductTest::previewImageIsIgnoredBesideAGallery()
{
    const QList<PreviewEntry> previews =
        parseComponentProduct({{u"preview_gallery"_s, gallery(2)}, {u"preview_image"_s, u"x"_s}}).previews;
    QCOMPARE(previews.size(), 2);
}

void ComponentProductTest::emptyGalleryAndEmptyImageYieldNone()
{
    QVERIFY(parseComponentProduct({{u"preview_gallery"_s, QJsonArray{}}, {u"preview_image"_s, QString()}})
                .previews.isEmpty());
}

void ComponentProductTest::componentReadsItsOwnGallery()
{
    QCOMPARE(parseComponent({{u"preview_gallery"_s, gallery(40)}}).previews.size(), 32);
    QCOMPARE(parseComponent({{u"preview_image"_s, u"https://quillmar.example/c"_s}}).previews.size(), 1);
}

QTEST_GUILESS_MAIN(ComponentProductTest)
#include "component_product_test.moc"
