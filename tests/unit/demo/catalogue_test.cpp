#include "packages/zip_index.h"
#include "tests/unit/demo/catalogue_fixture.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonArray>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// Of the lightness of two pictures of one size, pixel by pixel.
double meanDifference(const QImage &one, const QImage &other)
{
    qint64 sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            sum += std::abs(qGray(one.pixel(x, y)) - qGray(other.pixel(x, y)));
    }
    return double(sum) / (double(one.width()) * one.height());
}

} // namespace

/// The catalogue of the demo holds what it says it holds.
class CatalogueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void keysAreUnique();
    void product_data() { addProductRows(); }
    void product();
    void archives_data() { addProductRows(); }
    void archives();
    void components_data() { addProductRows(); }
    void components();
    void previews();
    void turnedPreviewsLookUpright();

private:
    void addProductRows() const;

    QList<CatalogueProduct> products_;
};

void CatalogueTest::initTestCase()
{
    products_ = readCatalogue();
    QVERIFY(products_.size() >= 12);
}

void CatalogueTest::addProductRows() const
{
    QTest::addColumn<qsizetype>("index");
    for (qsizetype i = 0; i < products_.size(); ++i)
        QTest::newRow(qPrintable(products_.at(i).parsed.product_key)) << i;
}

void CatalogueTest::keysAreUnique()
{
    QSet<QString> keys;
    for (const CatalogueProduct &product : products_)
        keys.insert(product.parsed.product_key);
    QCOMPARE(keys.size(), products_.size());
}

void CatalogueTest::product()
{
    QFETCH(const qsizetype, index);
    const CatalogueProduct &product = products_.at(index);
    QVERIFY(isValid(product.parsed));
    QVERIFY(!product.parsed.product_name.isEmpty());
    QFile file(product.packagePath);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(product.packagePath));
    if (product.parsed.file_size == 0 && product.parsed.sha256.isEmpty())
        return;
    QCOMPARE(product.parsed.file_size, file.size());
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QVERIFY(hash.addData(&file));
    QCOMPARE(product.parsed.sha256, QString::fromLatin1(hash.result().toHex()));
}

void CatalogueTest::archives()
{
    QFETCH(const qsizetype, index);
    const CatalogueProduct &product = products_.at(index);
    QFile file(product.packagePath);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const bool isZip = product.parsed.file_name.endsWith(".zip"_L1, Qt::CaseInsensitive);
    QCOMPARE(readZipIndex(file).verdict, isZip ? ZipIndex::Verdict::Sound : ZipIndex::Verdict::Malformed);
}

void CatalogueTest::components()
{
    QFETCH(const qsizetype, index);
    const CatalogueProduct &product = products_.at(index);
    const QTemporaryDir root;
    for (const ProductComponent &component : product.parsed.components) {
        if (!hasUsableAsset(component))
            continue;
        const QString taken = takeOut(root.path(), product, component);
        if (component.asset_path == kMissingAsset) {
            QCOMPARE(taken, u"Component.FileMissing"_s);
            continue;
        }
        QVERIFY2(QFileInfo::exists(taken), qPrintable(component.component_key + u": "_s + taken));
        QCOMPARE(QFileInfo(taken).isDir(), component.asset_kind == "folder"_L1);
        if (!isInsertable(component) || component.source_type != "image"_L1)
            continue;
        const QImage image(taken);
        QVERIFY(!image.isNull());
        const bool fillsTheScreen = component.insert_mode == "fullscreen_scene"_L1;
        QCOMPARE(image.hasAlphaChannel() && fillsTheScreen, false);
    }
    QVERIFY(product.parsed.components.size() == product.json.value("components"_L1).toArray().size());
}

void CatalogueTest::previews()
{
    QSet<QByteArray> formats;
    int missing = 0;
    for (const CatalogueProduct &product : products_) {
        QList<PreviewEntry> entries = product.parsed.previews;
        for (const ProductComponent &component : product.parsed.components)
            entries += component.previews;
        for (const PreviewEntry &entry : entries) {
            const QString path = previewPath(entry.url);
            QVERIFY2(!path.isEmpty(), qPrintable(entry.url.toString()));
            missing += QFileInfo::exists(path) ? 0 : 1;
            const QString shown = QFileInfo::exists(path) ? path : previewPath(entry.fallback_url);
            if (shown.isEmpty())
                continue;
            QImageReader reader(shown);
            formats.insert(reader.format());
            QVERIFY2(!reader.read().isNull(), qPrintable(shown));
        }
    }
    QCOMPARE(missing, 2);
    for (const char *format : {"png", "jpeg", "webp"})
        QVERIFY2(formats.contains(format), format);
}

/// One picture in every direction that a camera knows: with the turn applied, all look like the first.
void CatalogueTest::turnedPreviewsLookUpright()
{
    const auto turned = std::ranges::find_if(
        products_, [](const auto &p) { return p.parsed.product_key == "eight-turns"_L1; });
    QVERIFY(turned != products_.end());
    const QImage upright(previewPath(turned->parsed.previews.first().url));
    QSet<int> directions;
    for (const PreviewEntry &entry : turned->parsed.previews) {
        QImageReader reader(previewPath(entry.url));
        QCOMPARE(reader.format(), "jpeg");
        directions.insert(reader.transformation().toInt());
        reader.setAutoTransform(true);
        const QImage shown = reader.read();
        QCOMPARE(shown.size(), upright.size());
        QVERIFY2(meanDifference(shown, upright) < 4, qPrintable(entry.label));
    }
    QCOMPARE(directions.size(), 8);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::CatalogueTest)
#include "catalogue_test.moc"
