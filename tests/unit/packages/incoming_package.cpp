#include "packages/incoming_package.h"

#include "packages/package_cache.h"
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

class IncomingPackageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void layoutOnDisk();
    void recordHasExactlyItsKeys();
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
    void droppedPackageLeavesNothing();

private:
    ProductFileResult store(const QByteArray &bytes = kBytes) const;
    QString find() const { return findCachedPackage(root_, product_); }
    QJsonObject record() const;
    QString packagePath() const { return cachedPackagePath(root_, product_); }
    QString recordPath() const { return cachedRecordPath(root_, product_); }

    std::optional<QTemporaryDir> folder_;
    QString root_;
    ComponentProduct product_;
};

void IncomingPackageTest::init()
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

void IncomingPackageTest::cleanup()
{
    folder_.reset();
}

ProductFileResult IncomingPackageTest::store(const QByteArray &bytes) const
{
    IncomingPackage package(root_, product_);
    package.append(bytes);
    return package.store();
}

QJsonObject IncomingPackageTest::record() const
{
    return QJsonDocument::fromJson(fileContent(recordPath())).object();
}

void IncomingPackageTest::layoutOnDisk()
{
    QVERIFY(store().isOk());
    const QString folder = u".quillmar-cache/"_s + productIdentity(product_);
    QCOMPARE(treeBelow(root_).keys(), QStringList({u".quillmar-cache"_s, folder, folder + u"/manifest.json"_s,
                                                   folder + u"/product"_s}));
    QCOMPARE(fileContent(packagePath()), kBytes);
}

void IncomingPackageTest::recordHasExactlyItsKeys()
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

void IncomingPackageTest::piecesMakeTheSamePackage()
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

void IncomingPackageTest::storingTwiceDoesNotWriteAgain()
{
    QVERIFY(store().isOk());
    const QByteArray package = fileStamp(packagePath());
    const QByteArray record = fileStamp(recordPath());
    QVERIFY(store().isOk());
    QCOMPARE(fileStamp(packagePath()), package);
    QCOMPARE(fileStamp(recordPath()), record);
    QCOMPARE(treeBelow(root_).size(), 4);
}

void IncomingPackageTest::otherContentReplacesTheOld()
{
    product_.sha256.clear();
    QVERIFY(store("old content").isOk());
    QVERIFY(store("new content").isOk());
    QCOMPARE(fileContent(packagePath()), "new content");
    QCOMPARE(find(), packagePath());
}

void IncomingPackageTest::refusedPackage_data()
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

void IncomingPackageTest::refusedPackage()
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

void IncomingPackageTest::fullDisk_data()
{
    QTest::addColumn<qint64>("room");
    QTest::newRow("no byte fits") << qint64(0);
    QTest::newRow("one byte fits") << qint64(1);
    QTest::newRow("all but one fit") << qint64(2'999'999);
}

void IncomingPackageTest::fullDisk()
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

void IncomingPackageTest::fullDiskAndWrongDigestIsAFailedDownload()
{
    const DiskLimit limit(3);
    QCOMPARE(store("the packagE").error, u"Download.Failed"_s);
    QCOMPARE(store("the package and more").error, u"Download.Failed"_s);
    QVERIFY(treeBelow(folder_->path()).isEmpty());
}

void IncomingPackageTest::identicalPackageNeedsNoRoom()
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

void IncomingPackageTest::fullDiskAtTheRecordLeavesAnUnknownPackage()
{
    {
        const DiskLimit limit(kBytes.size());
        QCOMPARE(store().error, u"Download.SaveFailed"_s);
    }
    QCOMPARE(fileContent(packagePath()), kBytes);
    QVERIFY(!QFileInfo::exists(recordPath()));
    QVERIFY(find().isEmpty());
}

void IncomingPackageTest::fileInPlaceOfTheCache()
{
    putFile(root_ + u"/.quillmar-cache"_s, "a file");
    QCOMPARE(store().error, u"Download.SaveFailed"_s);
    QVERIFY(find().isEmpty());
    QCOMPARE(fileContent(root_ + u"/.quillmar-cache"_s), "a file");
}

void IncomingPackageTest::folderInPlaceOfThePackage()
{
    QVERIFY(QDir().mkpath(packagePath()));
    QCOMPARE(store().error, u"Download.SaveFailed"_s);
    QVERIFY(find().isEmpty());
    QVERIFY(QFileInfo(packagePath()).isDir());
}

void IncomingPackageTest::folderInPlaceOfTheRecord()
{
    QVERIFY(QDir().mkpath(recordPath()));
    QCOMPARE(store().error, u"Download.SaveFailed"_s);
    QVERIFY(find().isEmpty());
    QCOMPARE(fileContent(packagePath()), kBytes);
}

void IncomingPackageTest::droppedPackageLeavesNothing()
{
    {
        IncomingPackage package(root_, product_);
        package.append("the pack");
        QVERIFY(QFileInfo::exists(cacheDirectory(root_, product_)));
    }
    QVERIFY(treeBelow(folder_->path()).isEmpty());
}

QTEST_GUILESS_MAIN(IncomingPackageTest)
#include "incoming_package.moc"
