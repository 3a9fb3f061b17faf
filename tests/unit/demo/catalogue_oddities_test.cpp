#include "tests/unit/demo/catalogue_fixture.h"

#include <QJsonArray>
#include <QTest>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace quillmar::test
{
namespace
{

using ProductTest = std::function<bool(const CatalogueProduct &product)>;
using ComponentTest = std::function<bool(const QJsonObject &json, const ProductComponent &component)>;

ProductTest text(QLatin1StringView key, const std::function<bool(const QString &value)> &test)
{
    return [key, test](const CatalogueProduct &product) { return test(product.json.value(key).toString()); };
}

/// True for a product with a component that passes. Raw and parsed components are matched by key and name.
ProductTest component(const ComponentTest &test)
{
    return [test](const CatalogueProduct &product) {
        for (const QJsonValue &value : product.json.value("components"_L1).toArray()) {
            const QJsonObject json = value.toObject();
            for (const ProductComponent &parsed : product.parsed.components) {
                if (parsed.component_name == json.value("component_name"_L1).toString() && test(json, parsed))
                    return true;
            }
        }
        return false;
    };
}

ProductTest word(QLatin1StringView key, const QString &value)
{
    return component([key, value](const QJsonObject &json, const ProductComponent &) {
        return json.contains(key) && json.value(key).toString() == value;
    });
}

bool isPersian(const QString &value)
{
    return std::any_of(value.begin(), value.end(),
                       [](QChar c) { return c.script() == QChar::Script_Arabic; });
}

qsizetype longestWord(const QString &value)
{
    qsizetype longest = 0;
    for (const QString &part : value.split(u' '))
        longest = std::max(longest, part.size());
    return longest;
}

bool hasEqualOrders(const CatalogueProduct &product)
{
    const auto same = [](const ProductComponent &a, const ProductComponent &b) {
        return a.sort_order == b.sort_order;
    };
    const auto &list = product.parsed.components;
    return std::adjacent_find(list.begin(), list.end(), same) != list.end();
}

bool isUnsorted(const CatalogueProduct &product)
{
    const QJsonArray raw = product.json.value("components"_L1).toArray();
    return !raw.isEmpty() &&
           raw.first()["component_name"_L1].toString() != product.parsed.components.first().component_name;
}

bool isOwnComponent(const CatalogueProduct &product)
{
    return product.parsed.components.size() == 1 &&
           product.parsed.components.first().asset_path == product.parsed.file_name;
}

} // namespace

/// Every kind of component and every oddity that the module must cope with occurs in the demo.
class CatalogueOdditiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void words_data();
    void words();
    void insertableModes_data();
    void insertableModes();
    void categories();
    void oddities_data();
    void oddities();

private:
    bool occurs(const ProductTest &test) const
    {
        return std::any_of(products_.begin(), products_.end(), test);
    }

    QList<CatalogueProduct> products_;
};

void CatalogueOdditiesTest::initTestCase()
{
    products_ = readCatalogue();
    QVERIFY(!products_.isEmpty());
}

void CatalogueOdditiesTest::words_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    const QList<std::pair<QString, QStringList>> words{
        {u"insert_mode"_s, {u"overlay"_s, u"webcam_frame"_s, u"fullscreen_scene"_s, u"stinger_transition"_s}},
        {u"source_type"_s, {u"image"_s, u"media"_s}},
        {u"asset_kind"_s, {u"file"_s, u"folder"_s}},
        {u"position"_s, {u"center"_s, u"top_right"_s, u"bottom_right"_s, u"bottom_left"_s, QString()}},
        {u"file_mime"_s,
         {u"image/png"_s, u"image/jpeg"_s, u"image/webp"_s, u"video/webm"_s, u"video/mp4"_s}}};
    for (const auto &[key, values] : words) {
        for (const QString &value : values)
            QTest::newRow(qPrintable(key + u' ' + value)) << key << value;
    }
}

void CatalogueOdditiesTest::words()
{
    QFETCH(const QString, key);
    QFETCH(const QString, value);
    const QByteArray latin = key.toLatin1();
    QVERIFY(occurs(word(QLatin1StringView(latin), value)));
}

void CatalogueOdditiesTest::insertableModes_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("source");
    for (const QString &mode : {u"overlay"_s, u"webcam_frame"_s, u"fullscreen_scene"_s}) {
        for (const QString &source : {u"image"_s, u"media"_s})
            QTest::newRow(qPrintable(mode + u' ' + source)) << mode << source;
    }
    QTest::newRow("stinger_transition media") << u"stinger_transition"_s << u"media"_s;
}

void CatalogueOdditiesTest::insertableModes()
{
    QFETCH(const QString, mode);
    QFETCH(const QString, source);
    QVERIFY(occurs(component([&](const QJsonObject &, const ProductComponent &c) {
        return c.insert_mode == mode && c.source_type == source && c.auto_insert_enabled && isInsertable(c);
    })));
}

void CatalogueOdditiesTest::categories()
{
    QSet<QString> plain;
    int persian = 0;
    int padded = 0;
    int repeated = 0;
    for (const CatalogueProduct &product : products_) {
        const QString category = product.json.value("category"_L1).toString();
        repeated += plain.contains(category.trimmed()) && category != category.trimmed() ? 1 : 0;
        plain.insert(category.trimmed());
        persian += isPersian(category) ? 1 : 0;
        padded += category.startsWith(u' ') && category.endsWith(u' ') ? 1 : 0;
    }
    QVERIFY(plain.size() >= 6);
    QVERIFY(persian >= 2);
    QVERIFY(padded >= 1);
    QVERIFY2(repeated >= 1, "a padded category must also occur without blanks");
    QVERIFY2(plain.contains(u"Overlays"_s) && plain.contains(u"overlays"_s), "two that differ in case alone");
}

void CatalogueOdditiesTest::oddities_data()
{
    QTest::addColumn<ProductTest>("test");
    const auto row = [](const char *name, const ProductTest &test) { QTest::newRow(name) << test; };
    row("no components", [](const auto &p) { return p.parsed.components.isEmpty(); });
    row("picture as its own component",
        [](const auto &p) { return isOwnComponent(p) && p.parsed.file_mime == "image/png"_L1; });
    row("clip as its own component",
        [](const auto &p) { return isOwnComponent(p) && p.parsed.file_mime == "video/webm"_L1; });
    row("gallery of 40", [](const auto &p) {
        return p.json.value("preview_gallery"_L1).toArray().size() == 40 && p.parsed.previews.size() == 32;
    });
    for (const int size : {0, 1, 5, 8}) {
        row(qPrintable(u"gallery of %1"_s.arg(size)),
            [size](const auto &p) { return p.parsed.previews.size() == size; });
    }
    row("preview that fails once and has a fallback", [](const auto &p) {
        return std::ranges::any_of(p.parsed.previews, [](const PreviewEntry &entry) {
            return entry.url.fileName().startsWith("unsteady-"_L1) && !entry.fallback_url.isEmpty();
        });
    });
    row("Persian product without components",
        [](const auto &p) { return p.parsed.components.isEmpty() && isPersian(p.parsed.product_name); });
    row("preview_image alone", [](const auto &p) {
        return p.parsed.previews.size() == 1 && !p.json.contains("preview_gallery"_L1) &&
               p.parsed.previews.first().revision == "7"_L1;
    });
    row("Persian name", text("product_name"_L1, isPersian));
    row("Persian description", text("description"_L1, isPersian));
    row("Persian entry name", component([](const auto &, const auto &c) { return isPersian(c.asset_path); }));
    row("very long word in the name",
        text("product_name"_L1, [](const auto &v) { return longestWord(v) >= 60; }));
    row("very long word in a component",
        component([](const auto &, const auto &c) { return longestWord(c.component_name) >= 60; }));
    row("long description",
        text("description"_L1, [](const auto &v) { return v.simplified().size() > 240; }));
    row("description of several lines",
        text("description"_L1, [](const auto &v) { return v.contains(u'\n'); }));
    row("empty category", text("category"_L1, [](const auto &v) { return v.isEmpty(); }));
    row("ZIP by its name only", [](const auto &p) {
        return p.parsed.file_mime == "application/octet-stream"_L1 && p.parsed.file_name.endsWith(".ZIP"_L1);
    });
    row("size and digest unknown", [](const auto &p) {
        return p.parsed.file_size == 0 && p.json.value("sha256"_L1) == QJsonValue(QString());
    });
    row("upper-case digest", [](const auto &p) {
        const QString raw = p.json.value("sha256"_L1).toString();
        return raw.size() == 64 && raw == raw.toUpper() && raw != p.parsed.sha256;
    });
    row("neither insertable nor downloadable",
        component([](const auto &, const auto &c) { return !isInsertable(c) && !hasUsableAsset(c); }));
    row("not to be inserted by itself",
        component([](const auto &, const auto &c) { return isInsertable(c) && !c.auto_insert_enabled; }));
    row("stinger made of a picture", component([](const auto &, const auto &c) {
            return c.insert_mode == "stinger_transition"_L1 && c.source_type == "image"_L1;
        }));
    row("unknown insert mode", word("insert_mode"_L1, u"hologram"_s));
    row("unknown source type", word("source_type"_L1, u"audio"_s));
    row("asset that the archive lacks", word("asset_path"_L1, kMissingAsset));
    row("transition point too late", component([](const auto &json, const auto &c) {
            return json.value("transition_point_ms"_L1).toInt() > 120'000 && c.transition_point_ms == 300;
        }));
    row("transition point before the start", component([](const auto &json, const auto &c) {
            return json.value("transition_point_ms"_L1).toInt() < 0 && c.transition_point_ms == 300;
        }));
    row("equal sort orders", hasEqualOrders);
    row("components out of order", isUnsorted);
    row("unknown position", word("position"_L1, u"top_left"_s));
    row("size 0", component([](const auto &, const auto &c) {
            return c.insert_mode == "webcam_frame"_L1 && c.width == 0 && c.height == 0 &&
                   c.position.isEmpty();
        }));
    row("size over the canvas",
        component([](const auto &, const auto &c) { return c.width > 3840 && c.height > 2160; }));
    row("looping clip", component([](const auto &, const auto &c) { return c.media_loop; }));
    row("variant label", component([](const auto &, const auto &c) { return !c.variant_label.isEmpty(); }));
}

void CatalogueOdditiesTest::oddities()
{
    QFETCH(const ProductTest, test);
    QVERIFY(occurs(test));
}

} // namespace quillmar::test

Q_DECLARE_METATYPE(quillmar::test::ProductTest)

QTEST_GUILESS_MAIN(quillmar::test::CatalogueOdditiesTest)
#include "catalogue_oddities_test.moc"
