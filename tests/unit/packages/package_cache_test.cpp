#include "packages/package_cache.h"

#include "packages/product_identity.h"
#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/links.h"
#include "tests/unit/packages/package_fixture.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QTest>

#include <optional>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

class PackageCacheTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void identityIsTheDigestOfTheFields();
    void identityOfAnUnknownDigestHasNoLastPart();
    void everyFieldChangesTheIdentity();
    void fieldsAreKeptApartInTheIdentity();
    void hostileNamesNeverReachAPath();

    void storedPackageIsFound();
    void packageOfUnknownSizeAndDigestIsFound();
    void learnedDigestSelectsAnotherEntry();

    void linkOnTheWay_data();
    void linkOnTheWay();

    void brokenRecord_data();
    void brokenRecord();
    void recordOf8192BytesCounts();
    void recordOf8193BytesDoesNot();
    void brokenPackage_data();
    void brokenPackage();
    void sizeOfTheProductCounts();
    void digestOfTheProductCounts();
    void invalidProductIsNeverFound();
    void findChangesNothing();
    void droppedRecordMakesThePackageUnknown();
    void dropTouchesNothingBehindALink();

private:
    std::optional<PackageFixture> f_;
};

void PackageCacheTest::identityIsTheDigestOfTheFields()
{
    f_->product.product_version = u"۱.۰"_s;
    const QByteArray bytes = QByteArray("pack") + '\0' + u"۱.۰"_s.toUtf8() + '\0' + "Pack.zip" + '\0' + "11" +
                             '\0' + f_->product.sha256.toLatin1();
    QCOMPARE(productIdentity(f_->product), digestOf(bytes));
}

void PackageCacheTest::identityOfAnUnknownDigestHasNoLastPart()
{
    f_->product.sha256.clear();
    f_->product.file_size = -7;
    const QByteArray bytes = QByteArray("pack") + '\0' + "1.0" + '\0' + "Pack.zip" + '\0' + "-7";
    QCOMPARE(productIdentity(f_->product), digestOf(bytes));
    f_->product.file_size = 0;
    QCOMPARE(productIdentity(f_->product), digestOf(bytes.chopped(2) + "0"));
}

void PackageCacheTest::everyFieldChangesTheIdentity()
{
    QSet<QString> identities{productIdentity(f_->product)};
    for (QString ComponentProduct::*field :
         {&ComponentProduct::product_key, &ComponentProduct::product_version, &ComponentProduct::file_name,
          &ComponentProduct::sha256}) {
        ComponentProduct other = f_->product;
        other.*field += u'x';
        identities.insert(productIdentity(other));
    }
    ComponentProduct other = f_->product;
    other.file_size = 12;
    identities.insert(productIdentity(other));
    QCOMPARE(identities.size(), 6);
}

void PackageCacheTest::fieldsAreKeptApartInTheIdentity()
{
    ComponentProduct other = f_->product;
    other.product_key = u"pac"_s;
    other.product_version = u"k1.0"_s;
    QVERIFY(productIdentity(other) != productIdentity(f_->product));
}

void PackageCacheTest::hostileNamesNeverReachAPath()
{
    f_->product.product_version = u"../../../x"_s;
    f_->product.file_name = u"/etc/passwd"_s;
    QVERIFY(f_->store().isOk());
    QVERIFY(QDir::cleanPath(f_->packagePath()) == f_->packagePath());
    QCOMPARE(treeBelow(f_->root()).size(), 4);
    QCOMPARE(treeBelow(f_->folder()).size(), 6);
}

void PackageCacheTest::storedPackageIsFound()
{
    QVERIFY(f_->find().isEmpty());
    const ProductFileResult stored = f_->store();
    QVERIFY(stored.isOk());
    QCOMPARE(stored.path, f_->packagePath());
    QCOMPARE(f_->find(), f_->packagePath());
}

void PackageCacheTest::packageOfUnknownSizeAndDigestIsFound()
{
    f_->product.file_size = 0;
    f_->product.sha256.clear();
    QVERIFY(f_->store().isOk());
    QCOMPARE(f_->find(), f_->packagePath());
    QCOMPARE(f_->record().value(u"sha256"_s).toString(), digestOf(PackageFixture::bytes()));
}

void PackageCacheTest::learnedDigestSelectsAnotherEntry()
{
    f_->product.sha256.clear();
    QVERIFY(f_->store().isOk());
    f_->product.sha256 = digestOf(PackageFixture::bytes());
    QVERIFY(f_->find().isEmpty());
    QVERIFY(f_->store().isOk());
    QCOMPARE(treeBelow(f_->root()).size(), 7);
}

void PackageCacheTest::linkOnTheWay_data()
{
    QTest::addColumn<QString>("position");
    for (const QString &position :
         {u"parent"_s, u"root"_s, u"cache"_s, u"identity"_s, u"package"_s, u"record"_s})
        QTest::newRow(qPrintable(position)) << position;
    if constexpr (LinksMayDangle)
        QTest::newRow("dangling package") << u"dangling"_s;
}

/// A sound entry is stored, then one part of its way moves outside and a link takes its place.
void PackageCacheTest::linkOnTheWay()
{
    QFETCH(const QString, position);
    QVERIFY(f_->store().isOk());
    const QHash<QString, QString> positions{{u"parent"_s, f_->filePath(u"دانلود"_s)},
                                            {u"root"_s, f_->root()},
                                            {u"cache"_s, f_->root() + u"/.quillmar-cache"_s},
                                            {u"identity"_s, cacheDirectory(f_->root(), f_->product)},
                                            {u"package"_s, f_->packagePath()},
                                            {u"record"_s, f_->recordPath()},
                                            {u"dangling"_s, f_->packagePath()}};
    const QString place = positions.value(position);
    const QString outside = f_->filePath(u"outside"_s);
    QVERIFY(QDir().rename(place, outside));
    QVERIFY(makeLink(outside, place));
    if (position == u"dangling"_s)
        QVERIFY(QFile::remove(outside));

    QVERIFY(f_->find().isEmpty());
    const auto before = treeBelow(f_->folder());
    const ProductFileResult again = f_->store();
    QCOMPARE(again.error, u"Download.SaveFailed"_s);
    QCOMPARE(treeBelow(f_->folder()), before);
}

void PackageCacheTest::brokenRecord_data()
{
    QTest::addColumn<QByteArray>("text"); // %i: identity, %d: digest
    const auto row = [](const char *name, const QByteArray &text) { QTest::newRow(name) << text; };
    row("empty file", "");
    row("not JSON", "<html></html>");
    row("cut off", R"({"identity": "%i", "size": 11, "sha)");
    row("array", R"(["%i", 11, "%d"])");
    row("text", R"("%i")");
    row("no identity", R"({"size": 11, "sha256": "%d"})");
    row("another identity", R"({"identity": "0%i", "size": 11, "sha256": "%d"})");
    row("identity as number", R"({"identity": 5, "size": 11, "sha256": "%d"})");
    row("no size", R"({"identity": "%i", "sha256": "%d"})");
    row("size as text", R"({"identity": "%i", "size": "11", "sha256": "%d"})");
    row("another size", R"({"identity": "%i", "size": 12, "sha256": "%d"})");
    row("size beyond exact doubles", R"({"identity": "%i", "size": 9007199254740992, "sha256": "%d"})");
    row("size not whole", R"({"identity": "%i", "size": 11.5, "sha256": "%d"})");
    row("no digest", R"({"identity": "%i", "size": 11})");
    row("empty digest", R"({"identity": "%i", "size": 11, "sha256": ""})");
    row("another digest", R"({"identity": "%i", "size": 11, "sha256": "0%d"})");
    row("digest in upper case", R"({"identity": "%i", "size": 11, "sha256": "%U"})");
}

void PackageCacheTest::brokenRecord()
{
    QFETCH(QByteArray, text);
    QVERIFY(f_->store().isOk());
    putFile(f_->recordPath(), R"({"identity": ")" + productIdentity(f_->product).toLatin1() +
                                  R"(", "size": 11, "sha256": ")" + f_->product.sha256.toLatin1() + R"("})");
    QCOMPARE(f_->find(), f_->packagePath());
    text.replace("%i", productIdentity(f_->product).toLatin1());
    text.replace("%d", f_->product.sha256.toLatin1());
    text.replace("%U", f_->product.sha256.toUpper().toLatin1());
    putFile(f_->recordPath(), text);
    QVERIFY(f_->find().isEmpty());
    QVERIFY(f_->store().isOk());
    QCOMPARE(f_->find(), f_->packagePath());
}

void PackageCacheTest::recordOf8192BytesCounts()
{
    QVERIFY(f_->store().isOk());
    const QByteArray record = fileContent(f_->recordPath());
    putFile(f_->recordPath(), record + QByteArray(8192 - record.size(), ' '));
    QCOMPARE(f_->find(), f_->packagePath());
}

void PackageCacheTest::recordOf8193BytesDoesNot()
{
    QVERIFY(f_->store().isOk());
    const QByteArray record = fileContent(f_->recordPath());
    putFile(f_->recordPath(), record + QByteArray(8193 - record.size(), ' '));
    QVERIFY(f_->find().isEmpty());
}

void PackageCacheTest::brokenPackage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("one byte changed") << QByteArray("the packagE");
    QTest::newRow("cut off") << QByteArray("the packag");
    QTest::newRow("grown") << QByteArray("the package!");
    QTest::newRow("empty") << QByteArray("");
}

void PackageCacheTest::brokenPackage()
{
    QFETCH(const QByteArray, bytes);
    QVERIFY(f_->store().isOk());
    putFile(f_->packagePath(), bytes);
    QVERIFY(f_->find().isEmpty());
    QVERIFY(QFile::remove(f_->packagePath()));
    QVERIFY(f_->find().isEmpty());
    QVERIFY(f_->store().isOk());
    QCOMPARE(f_->find(), f_->packagePath());
}

void PackageCacheTest::sizeOfTheProductCounts()
{
    QVERIFY(f_->store().isOk());
    const QJsonObject good = f_->record();
    f_->product.file_size = 12;
    QVERIFY(QDir().mkpath(cacheDirectory(f_->root(), f_->product)));
    putFile(f_->packagePath(), PackageFixture::bytes());
    QJsonObject moved = good;
    moved.insert(u"identity"_s, productIdentity(f_->product));
    f_->putRecord(moved);
    QVERIFY(f_->find().isEmpty());
    f_->product.file_size = 0;
    putFile(f_->packagePath(), PackageFixture::bytes());
    moved.insert(u"identity"_s, productIdentity(f_->product));
    f_->putRecord(moved);
    QCOMPARE(f_->find(), f_->packagePath());
}

/// Package and record agree with each other, not with the product.
void PackageCacheTest::digestOfTheProductCounts()
{
    QVERIFY(f_->store().isOk());
    QJsonObject moved = f_->record();
    f_->product.sha256 = digestOf("another package");
    moved.insert(u"identity"_s, productIdentity(f_->product));
    putFile(f_->packagePath(), PackageFixture::bytes());
    f_->putRecord(moved);
    QVERIFY(f_->find().isEmpty());
}

void PackageCacheTest::invalidProductIsNeverFound()
{
    QVERIFY(f_->store().isOk());
    const QJsonObject good = f_->record();
    f_->product.product_version.clear();
    QJsonObject moved = good;
    moved.insert(u"identity"_s, productIdentity(f_->product));
    putFile(f_->packagePath(), PackageFixture::bytes());
    f_->putRecord(moved);
    QVERIFY(f_->find().isEmpty());
}

void PackageCacheTest::findChangesNothing()
{
    QVERIFY(f_->find().isEmpty());
    QVERIFY(treeBelow(f_->folder()).isEmpty());
    QVERIFY(f_->store().isOk());
    putFile(f_->packagePath(), "damaged now");
    const auto before = treeBelow(f_->folder());
    QVERIFY(f_->find().isEmpty());
    QCOMPARE(treeBelow(f_->folder()), before);
}

void PackageCacheTest::droppedRecordMakesThePackageUnknown()
{
    QVERIFY(f_->store().isOk());
    dropPackageRecord(f_->root(), f_->product);
    QVERIFY(!QFileInfo::exists(f_->recordPath()));
    QVERIFY(f_->find().isEmpty());
    QCOMPARE(fileContent(f_->packagePath()), PackageFixture::bytes());
}

void PackageCacheTest::dropTouchesNothingBehindALink()
{
    QVERIFY(f_->store().isOk());
    const QString outside = f_->filePath(u"outside"_s);
    QVERIFY(QDir().rename(cacheDirectory(f_->root(), f_->product), outside));
    QVERIFY(makeLink(outside, cacheDirectory(f_->root(), f_->product)));
    const auto before = treeBelow(f_->folder());
    dropPackageRecord(f_->root(), f_->product);
    QCOMPARE(treeBelow(f_->folder()), before);
    f_->product.product_key = u"../pack"_s;
    putFile(f_->recordPath(), "of an invalid product");
    dropPackageRecord(f_->root(), f_->product);
    QVERIFY(QFileInfo::exists(f_->recordPath()));
}

QTEST_GUILESS_MAIN(PackageCacheTest)
#include "package_cache_test.moc"
