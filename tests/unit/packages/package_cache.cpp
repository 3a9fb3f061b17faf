#include "packages/package_cache.h"

#include "packages/incoming_package.h"
#include "packages/product_identity.h"
#include "tests/unit/packages/file_tree.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <optional>
#include <sys/stat.h>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

namespace
{

const QByteArray kBytes = "the package";

QString digestOf(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

} // namespace

class PackageCacheTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

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
    void fifoInPlaceOfTheRecordDoesNotBlock();
    void fifoInPlaceOfThePackageDoesNotBlock();
    void brokenPackage_data();
    void brokenPackage();
    void sizeOfTheProductCounts();
    void invalidProductIsNeverFound();
    void findChangesNothing();
    void droppedRecordMakesThePackageUnknown();
    void dropTouchesNothingBehindALink();

private:
    ProductFileResult store(const QByteArray &bytes = kBytes) const;
    QString find() const { return findCachedPackage(root_, product_); }
    QJsonObject record() const;
    void putRecord(const QJsonObject &record) const;
    QString packagePath() const { return cachedPackagePath(root_, product_); }
    QString recordPath() const { return cachedRecordPath(root_, product_); }

    std::optional<QTemporaryDir> folder_;
    QString root_;
    ComponentProduct product_;
};

void PackageCacheTest::init()
{
    folder_.emplace();
    root_ = folder_->filePath(u"دانلود/Quillmar"_s);
    product_ = {};
    product_.product_key = u"pack"_s;
    product_.product_version = u"1.0"_s;
    product_.file_name = u"Pack.zip"_s;
    product_.file_size = kBytes.size();
    product_.sha256 = digestOf(kBytes);
}

void PackageCacheTest::cleanup()
{
    folder_.reset();
}

ProductFileResult PackageCacheTest::store(const QByteArray &bytes) const
{
    IncomingPackage package(root_, product_);
    package.append(bytes);
    return package.store();
}

QJsonObject PackageCacheTest::record() const
{
    return QJsonDocument::fromJson(fileContent(recordPath())).object();
}

void PackageCacheTest::putRecord(const QJsonObject &record) const
{
    putFile(recordPath(), QJsonDocument(record).toJson());
}

void PackageCacheTest::identityIsTheDigestOfTheFields()
{
    product_.product_version = u"۱.۰"_s;
    const QByteArray bytes = QByteArray("pack") + '\0' + u"۱.۰"_s.toUtf8() + '\0' + "Pack.zip" + '\0' + "11" +
                             '\0' + product_.sha256.toLatin1();
    QCOMPARE(productIdentity(product_), digestOf(bytes));
}

void PackageCacheTest::identityOfAnUnknownDigestHasNoLastPart()
{
    product_.sha256.clear();
    product_.file_size = -7;
    const QByteArray bytes = QByteArray("pack") + '\0' + "1.0" + '\0' + "Pack.zip" + '\0' + "-7";
    QCOMPARE(productIdentity(product_), digestOf(bytes));
    product_.file_size = 0;
    QCOMPARE(productIdentity(product_), digestOf(bytes.chopped(2) + "0"));
}

void PackageCacheTest::everyFieldChangesTheIdentity()
{
    QSet<QString> identities{productIdentity(product_)};
    for (QString ComponentProduct::*field :
         {&ComponentProduct::product_key, &ComponentProduct::product_version, &ComponentProduct::file_name,
          &ComponentProduct::sha256}) {
        ComponentProduct other = product_;
        other.*field += u'x';
        identities.insert(productIdentity(other));
    }
    ComponentProduct other = product_;
    other.file_size = 12;
    identities.insert(productIdentity(other));
    QCOMPARE(identities.size(), 6);
}

void PackageCacheTest::fieldsAreKeptApartInTheIdentity()
{
    ComponentProduct other = product_;
    other.product_key = u"pac"_s;
    other.product_version = u"k1.0"_s;
    QVERIFY(productIdentity(other) != productIdentity(product_));
}

void PackageCacheTest::hostileNamesNeverReachAPath()
{
    product_.product_version = u"../../../x"_s;
    product_.file_name = u"/etc/passwd"_s;
    QVERIFY(store().isOk());
    QVERIFY(QDir::cleanPath(packagePath()) == packagePath());
    QCOMPARE(treeBelow(root_).size(), 4);
    QCOMPARE(treeBelow(folder_->path()).size(), 6);
}

void PackageCacheTest::storedPackageIsFound()
{
    QVERIFY(find().isEmpty());
    const ProductFileResult stored = store();
    QVERIFY(stored.isOk());
    QCOMPARE(stored.path, packagePath());
    QCOMPARE(find(), packagePath());
}

void PackageCacheTest::packageOfUnknownSizeAndDigestIsFound()
{
    product_.file_size = 0;
    product_.sha256.clear();
    QVERIFY(store().isOk());
    QCOMPARE(find(), packagePath());
    QCOMPARE(record().value(u"sha256"_s).toString(), digestOf(kBytes));
}

void PackageCacheTest::learnedDigestSelectsAnotherEntry()
{
    product_.sha256.clear();
    QVERIFY(store().isOk());
    product_.sha256 = digestOf(kBytes);
    QVERIFY(find().isEmpty());
    QVERIFY(store().isOk());
    QCOMPARE(treeBelow(root_).size(), 7);
}

void PackageCacheTest::linkOnTheWay_data()
{
    QTest::addColumn<QString>("position");
    for (const QString &position :
         {u"parent"_s, u"root"_s, u"cache"_s, u"identity"_s, u"package"_s, u"record"_s})
        QTest::newRow(qPrintable(position)) << position;
    QTest::newRow("dangling package") << u"dangling"_s;
}

/// A sound entry is stored, then one part of its way moves outside and a link takes its place.
void PackageCacheTest::linkOnTheWay()
{
    QFETCH(const QString, position);
    QVERIFY(store().isOk());
    const QHash<QString, QString> positions{{u"parent"_s, folder_->filePath(u"دانلود"_s)},
                                            {u"root"_s, root_},
                                            {u"cache"_s, root_ + u"/.quillmar-cache"_s},
                                            {u"identity"_s, cacheDirectory(root_, product_)},
                                            {u"package"_s, packagePath()},
                                            {u"record"_s, recordPath()},
                                            {u"dangling"_s, packagePath()}};
    const QString place = positions.value(position);
    const QString outside = folder_->filePath(u"outside"_s);
    QVERIFY(QDir().rename(place, outside));
    QVERIFY(QFile::link(outside, place));
    if (position == u"dangling"_s)
        QVERIFY(QFile::remove(outside));

    QVERIFY(find().isEmpty());
    const auto before = treeBelow(folder_->path());
    const ProductFileResult again = store();
    QCOMPARE(again.error, u"Download.SaveFailed"_s);
    QCOMPARE(treeBelow(folder_->path()), before);
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
    QVERIFY(store().isOk());
    putFile(recordPath(), R"({"identity": ")" + productIdentity(product_).toLatin1() +
                              R"(", "size": 11, "sha256": ")" + product_.sha256.toLatin1() + R"("})");
    QCOMPARE(find(), packagePath());
    text.replace("%i", productIdentity(product_).toLatin1());
    text.replace("%d", product_.sha256.toLatin1());
    text.replace("%U", product_.sha256.toUpper().toLatin1());
    putFile(recordPath(), text);
    QVERIFY(find().isEmpty());
    QVERIFY(store().isOk());
    QCOMPARE(find(), packagePath());
}

void PackageCacheTest::recordOf8192BytesCounts()
{
    QVERIFY(store().isOk());
    const QByteArray record = fileContent(recordPath());
    putFile(recordPath(), record + QByteArray(8192 - record.size(), ' '));
    QCOMPARE(find(), packagePath());
}

void PackageCacheTest::recordOf8193BytesDoesNot()
{
    QVERIFY(store().isOk());
    const QByteArray record = fileContent(recordPath());
    putFile(recordPath(), record + QByteArray(8193 - record.size(), ' '));
    QVERIFY(find().isEmpty());
}

void PackageCacheTest::fifoInPlaceOfTheRecordDoesNotBlock()
{
    QVERIFY(store().isOk());
    QVERIFY(QFile::remove(recordPath()));
    QCOMPARE(::mkfifo(QFile::encodeName(recordPath()).constData(), 0600), 0);
    QVERIFY(find().isEmpty());
    QVERIFY(store().isOk());
    QCOMPARE(find(), packagePath());
}

void PackageCacheTest::fifoInPlaceOfThePackageDoesNotBlock()
{
    QVERIFY(store().isOk());
    QVERIFY(QFile::remove(packagePath()));
    QCOMPARE(::mkfifo(QFile::encodeName(packagePath()).constData(), 0600), 0);
    QVERIFY(find().isEmpty());
    QVERIFY(store().isOk());
    QCOMPARE(find(), packagePath());
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
    QVERIFY(store().isOk());
    putFile(packagePath(), bytes);
    QVERIFY(find().isEmpty());
    QVERIFY(QFile::remove(packagePath()));
    QVERIFY(find().isEmpty());
    QVERIFY(store().isOk());
    QCOMPARE(find(), packagePath());
}

void PackageCacheTest::sizeOfTheProductCounts()
{
    QVERIFY(store().isOk());
    const QJsonObject good = record();
    product_.file_size = 12;
    QVERIFY(QDir().mkpath(cacheDirectory(root_, product_)));
    putFile(packagePath(), kBytes);
    QJsonObject moved = good;
    moved.insert(u"identity"_s, productIdentity(product_));
    putRecord(moved);
    QVERIFY(find().isEmpty());
    product_.file_size = 0;
    putFile(packagePath(), kBytes);
    moved.insert(u"identity"_s, productIdentity(product_));
    putRecord(moved);
    QCOMPARE(find(), packagePath());
}

void PackageCacheTest::invalidProductIsNeverFound()
{
    QVERIFY(store().isOk());
    const QJsonObject good = record();
    product_.product_version.clear();
    QJsonObject moved = good;
    moved.insert(u"identity"_s, productIdentity(product_));
    putFile(packagePath(), kBytes);
    putRecord(moved);
    QVERIFY(find().isEmpty());
}

void PackageCacheTest::findChangesNothing()
{
    QVERIFY(find().isEmpty());
    QVERIFY(treeBelow(folder_->path()).isEmpty());
    QVERIFY(store().isOk());
    putFile(packagePath(), "damaged now");
    const auto before = treeBelow(folder_->path());
    QVERIFY(find().isEmpty());
    QCOMPARE(treeBelow(folder_->path()), before);
}

void PackageCacheTest::droppedRecordMakesThePackageUnknown()
{
    QVERIFY(store().isOk());
    dropPackageRecord(root_, product_);
    QVERIFY(!QFileInfo::exists(recordPath()));
    QVERIFY(find().isEmpty());
    QCOMPARE(fileContent(packagePath()), kBytes);
}

void PackageCacheTest::dropTouchesNothingBehindALink()
{
    QVERIFY(store().isOk());
    const QString outside = folder_->filePath(u"outside"_s);
    QVERIFY(QDir().rename(cacheDirectory(root_, product_), outside));
    QVERIFY(QFile::link(outside, cacheDirectory(root_, product_)));
    const auto before = treeBelow(folder_->path());
    dropPackageRecord(root_, product_);
    QCOMPARE(treeBelow(folder_->path()), before);
    product_.product_key = u"../pack"_s;
    putFile(recordPath(), "of an invalid product");
    dropPackageRecord(root_, product_);
    QVERIFY(QFileInfo::exists(recordPath()));
}

QTEST_GUILESS_MAIN(PackageCacheTest)
#include "package_cache.moc"
