#include "packages/package_cache.h"

#include "packages/incoming_package.h"
#include "packages/product_identity.h"
#include "tests/unit/packages/disk_limit.h"
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
    void layoutOnDisk();
    void recordHasExactlyItsKeys();
    void packageOfUnknownSizeAndDigestIsFound();
    void learnedDigestSelectsAnotherEntry();
    void piecesMakeTheSamePackage();
    void storingTwiceDoesNotWriteAgain();
    void otherContentReplacesTheOld();

    void refusedPackage_data();
    void refusedPackage();
    void fullDisk_data();
    void fullDisk();
    void fullDiskAndWrongDigestIsAFailedDownload();
    void identicalPackageNeedsNoRoom();
    void fullDiskAtTheRecordLeavesAnUnknownPackage();
    void fileInPlaceOfTheCache();
    void folderInPlaceOfThePackage();
    void folderInPlaceOfTheRecord();
    void linkOnTheWay_data();
    void linkOnTheWay();
    void droppedPackageLeavesNothing();

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

void PackageCacheTest::layoutOnDisk()
{
    QVERIFY(store().isOk());
    const QString folder = u".quillmar-cache/"_s + productIdentity(product_);
    QCOMPARE(treeBelow(root_).keys(), QStringList({u".quillmar-cache"_s, folder, folder + u"/manifest.json"_s,
                                                   folder + u"/product"_s}));
    QCOMPARE(fileContent(packagePath()), kBytes);
}

void PackageCacheTest::recordHasExactlyItsKeys()
{
    QVERIFY(store().isOk());
    const QJsonObject expected{{u"identity"_s, productIdentity(product_)},
                               {u"product_key"_s, u"pack"_s},
                               {u"product_version"_s, u"1.0"_s},
                               {u"size"_s, kBytes.size()},
                               {u"sha256"_s, product_.sha256}};
    QCOMPARE(record(), expected);
    QCOMPARE(fileContent(recordPath()), QJsonDocument(expected).toJson(QJsonDocument::Indented));
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

void PackageCacheTest::piecesMakeTheSamePackage()
{
    const QByteArray bytes = QByteArray("0123456789").repeated(300'000);
    product_.file_size = bytes.size();
    product_.sha256 = digestOf(bytes);
    IncomingPackage package(root_, product_);
    for (qsizetype at = 0; at < bytes.size(); at += 70'001)
        package.append(QByteArrayView(bytes).sliced(at, std::min<qsizetype>(70'001, bytes.size() - at)));
    QVERIFY(package.store().isOk());
    QCOMPARE(fileContent(packagePath()), bytes);
    QCOMPARE(find(), packagePath());
}

void PackageCacheTest::storingTwiceDoesNotWriteAgain()
{
    QVERIFY(store().isOk());
    const QByteArray package = fileStamp(packagePath());
    const QByteArray record = fileStamp(recordPath());
    QVERIFY(store().isOk());
    QCOMPARE(fileStamp(packagePath()), package);
    QCOMPARE(fileStamp(recordPath()), record);
    QCOMPARE(treeBelow(root_).size(), 4);
}

void PackageCacheTest::otherContentReplacesTheOld()
{
    product_.sha256.clear();
    QVERIFY(store("old content").isOk());
    QVERIFY(store("new content").isOk());
    QCOMPARE(fileContent(packagePath()), "new content");
    QCOMPARE(find(), packagePath());
}

void PackageCacheTest::refusedPackage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("key");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("digest");
    const QString digest = digestOf(kBytes);
    QTest::newRow("empty") << QByteArray() << u"pack"_s << qint64(0) << QString();
    QTest::newRow("empty, size 0, digest of nothing")
        << QByteArray() << u"pack"_s << qint64(0) << digestOf({});
    QTest::newRow("too short") << kBytes << u"pack"_s << qint64(12) << QString();
    QTest::newRow("too long") << kBytes << u"pack"_s << qint64(10) << QString();
    QTest::newRow("wrong size, right digest") << kBytes << u"pack"_s << qint64(12) << digest;
    QTest::newRow("wrong digest") << kBytes << u"pack"_s << qint64(0) << digestOf("other");
    QTest::newRow("right size, wrong digest") << kBytes << u"pack"_s << qint64(11) << digestOf("other");
    QTest::newRow("invalid key") << kBytes << u"../pack"_s << qint64(0) << QString();
    QTest::newRow("invalid digest") << kBytes << u"pack"_s << qint64(0) << digest.chopped(1);
}

void PackageCacheTest::refusedPackage()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, key);
    QFETCH(const qint64, size);
    QFETCH(const QString, digest);
    product_.product_key = key;
    product_.file_size = size;
    product_.sha256 = digest;
    const ProductFileResult result = store(bytes);
    QCOMPARE(result.error, u"Download.Failed"_s);
    QVERIFY(result.path.isEmpty());
    QVERIFY(treeBelow(folder_->path()).isEmpty());
}

void PackageCacheTest::fullDisk_data()
{
    QTest::addColumn<qint64>("room");
    QTest::newRow("no byte fits") << qint64(0);
    QTest::newRow("one byte fits") << qint64(1);
    QTest::newRow("all but one fit") << qint64(2'999'999);
}

void PackageCacheTest::fullDisk()
{
    QFETCH(const qint64, room);
    const QByteArray bytes(3'000'000, 'p');
    product_.file_size = bytes.size();
    product_.sha256 = digestOf(bytes);
    {
        const DiskLimit limit(room);
        QCOMPARE(store(bytes).error, u"Download.SaveFailed"_s);
    }
    QVERIFY(treeBelow(folder_->path()).isEmpty());
    QVERIFY(find().isEmpty());
    QVERIFY(store(bytes).isOk());
}

void PackageCacheTest::fullDiskAndWrongDigestIsAFailedDownload()
{
    const DiskLimit limit(3);
    QCOMPARE(store("the packagE").error, u"Download.Failed"_s);
    QCOMPARE(store("the package and more").error, u"Download.Failed"_s);
    QVERIFY(treeBelow(folder_->path()).isEmpty());
}

void PackageCacheTest::identicalPackageNeedsNoRoom()
{
    const QByteArray bytes(100'000, 'p');
    product_.file_size = bytes.size();
    product_.sha256 = digestOf(bytes);
    QVERIFY(store(bytes).isOk());
    dropPackageRecord(root_, product_);
    const DiskLimit limit(1000);
    QVERIFY(store(bytes).isOk());
    QCOMPARE(find(), packagePath());
}

void PackageCacheTest::fullDiskAtTheRecordLeavesAnUnknownPackage()
{
    {
        const DiskLimit limit(kBytes.size());
        QCOMPARE(store().error, u"Download.SaveFailed"_s);
    }
    QCOMPARE(fileContent(packagePath()), kBytes);
    QVERIFY(!QFileInfo::exists(recordPath()));
    QVERIFY(find().isEmpty());
}

void PackageCacheTest::fileInPlaceOfTheCache()
{
    putFile(root_ + u"/.quillmar-cache"_s, "a file");
    QCOMPARE(store().error, u"Download.SaveFailed"_s);
    QVERIFY(find().isEmpty());
    QCOMPARE(fileContent(root_ + u"/.quillmar-cache"_s), "a file");
}

void PackageCacheTest::folderInPlaceOfThePackage()
{
    QVERIFY(QDir().mkpath(packagePath()));
    QCOMPARE(store().error, u"Download.SaveFailed"_s);
    QVERIFY(find().isEmpty());
    QVERIFY(QFileInfo(packagePath()).isDir());
}

void PackageCacheTest::folderInPlaceOfTheRecord()
{
    QVERIFY(QDir().mkpath(recordPath()));
    QCOMPARE(store().error, u"Download.SaveFailed"_s);
    QVERIFY(find().isEmpty());
    QCOMPARE(fileContent(packagePath()), kBytes);
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

void PackageCacheTest::droppedPackageLeavesNothing()
{
    {
        IncomingPackage package(root_, product_);
        package.append("the pack");
        QVERIFY(QFileInfo::exists(cacheDirectory(root_, product_)));
    }
    QVERIFY(treeBelow(folder_->path()).isEmpty());
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
