#include "packages/incoming_package.h"

#include "packages/package_cache.h"
#include "packages/product_identity.h"
#include "tests/unit/packages/disk_limit.h"
#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/package_fixture.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <optional>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

class IncomingPackageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

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
    std::optional<PackageFixture> f_;
};

void IncomingPackageTest::layoutOnDisk()
{
    QVERIFY(f_->store().isOk());
    const QString folder = u".quillmar-cache/"_s + productIdentity(f_->product);
    QCOMPARE(
        treeBelow(f_->root()).keys(),
        QStringList({u".quillmar-cache"_s, folder, folder + u"/manifest.json"_s, folder + u"/product"_s}));
    QCOMPARE(fileContent(f_->packagePath()), PackageFixture::bytes());
}

void IncomingPackageTest::recordHasExactlyItsKeys()
{
    QVERIFY(f_->store().isOk());
    const QJsonObject expected{{u"identity"_s, productIdentity(f_->product)},
                               {u"product_key"_s, u"pack"_s},
                               {u"product_version"_s, u"1.0"_s},
                               {u"size"_s, PackageFixture::bytes().size()},
                               {u"sha256"_s, f_->product.sha256}};
    QCOMPARE(f_->record(), expected);
    QCOMPARE(fileContent(f_->recordPath()), QJsonDocument(expected).toJson(QJsonDocument::Indented));
}

void IncomingPackageTest::piecesMakeTheSamePackage()
{
    const QByteArray bytes = QByteArray("0123456789").repeated(300'000);
    f_->product.file_size = bytes.size();
    f_->product.sha256 = digestOf(bytes);
    IncomingPackage package(f_->root(), f_->product);
    for (qsizetype at = 0; at < bytes.size(); at += 70'001)
        package.append(QByteArrayView(bytes).sliced(at, std::min<qsizetype>(70'001, bytes.size() - at)));
    QVERIFY(package.store().isOk());
    QCOMPARE(fileContent(f_->packagePath()), bytes);
    QCOMPARE(f_->find(), f_->packagePath());
}

void IncomingPackageTest::storingTwiceDoesNotWriteAgain()
{
    QVERIFY(f_->store().isOk());
    const QByteArray package = fileStamp(f_->packagePath());
    const QByteArray record = fileStamp(f_->recordPath());
    QVERIFY(f_->store().isOk());
    QCOMPARE(fileStamp(f_->packagePath()), package);
    QCOMPARE(fileStamp(f_->recordPath()), record);
    QCOMPARE(treeBelow(f_->root()).size(), 4);
}

void IncomingPackageTest::otherContentReplacesTheOld()
{
    f_->product.sha256.clear();
    QVERIFY(f_->store("old content").isOk());
    QVERIFY(f_->store("new content").isOk());
    QCOMPARE(fileContent(f_->packagePath()), "new content");
    QCOMPARE(f_->find(), f_->packagePath());
}

void IncomingPackageTest::refusedPackage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("key");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("digest");
    const QString digest = digestOf(PackageFixture::bytes());
    QTest::newRow("empty") << QByteArray() << u"pack"_s << qint64(0) << QString();
    QTest::newRow("empty, size 0, digest of nothing")
        << QByteArray() << u"pack"_s << qint64(0) << digestOf({});
    QTest::newRow("too short") << PackageFixture::bytes() << u"pack"_s << qint64(12) << QString();
    QTest::newRow("too long") << PackageFixture::bytes() << u"pack"_s << qint64(10) << QString();
    QTest::newRow("wrong size, right digest") << PackageFixture::bytes() << u"pack"_s << qint64(12) << digest;
    QTest::newRow("wrong digest") << PackageFixture::bytes() << u"pack"_s << qint64(0) << digestOf("other");
    QTest::newRow("right size, wrong digest")
        << PackageFixture::bytes() << u"pack"_s << qint64(11) << digestOf("other");
    QTest::newRow("invalid key") << PackageFixture::bytes() << u"../pack"_s << qint64(0) << QString();
    QTest::newRow("invalid digest") << PackageFixture::bytes() << u"pack"_s << qint64(0) << digest.chopped(1);
}

void IncomingPackageTest::refusedPackage()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, key);
    QFETCH(const qint64, size);
    QFETCH(const QString, digest);
    f_->product.product_key = key;
    f_->product.file_size = size;
    f_->product.sha256 = digest;
    const ProductFileResult result = f_->store(bytes);
    QCOMPARE(result.error, u"Download.Failed"_s);
    QVERIFY(result.path.isEmpty());
    QVERIFY(treeBelow(f_->folder()).isEmpty());
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
    f_->product.file_size = bytes.size();
    f_->product.sha256 = digestOf(bytes);
    {
        const DiskLimit limit(room);
        QCOMPARE(f_->store(bytes).error, u"Download.SaveFailed"_s);
    }
    QVERIFY(treeBelow(f_->folder()).isEmpty());
    QVERIFY(f_->find().isEmpty());
    QVERIFY(f_->store(bytes).isOk());
}

void IncomingPackageTest::fullDiskAndWrongDigestIsAFailedDownload()
{
    const DiskLimit limit(3);
    QCOMPARE(f_->store("the packagE").error, u"Download.Failed"_s);
    QCOMPARE(f_->store("the package and more").error, u"Download.Failed"_s);
    QVERIFY(treeBelow(f_->folder()).isEmpty());
}

void IncomingPackageTest::identicalPackageNeedsNoRoom()
{
    const QByteArray bytes(100'000, 'p');
    f_->product.file_size = bytes.size();
    f_->product.sha256 = digestOf(bytes);
    QVERIFY(f_->store(bytes).isOk());
    dropPackageRecord(f_->root(), f_->product);
    const DiskLimit limit(1000);
    QVERIFY(f_->store(bytes).isOk());
    QCOMPARE(f_->find(), f_->packagePath());
}

void IncomingPackageTest::fullDiskAtTheRecordLeavesAnUnknownPackage()
{
    {
        const DiskLimit limit(PackageFixture::bytes().size());
        QCOMPARE(f_->store().error, u"Download.SaveFailed"_s);
    }
    QCOMPARE(fileContent(f_->packagePath()), PackageFixture::bytes());
    QVERIFY(!QFileInfo::exists(f_->recordPath()));
    QVERIFY(f_->find().isEmpty());
}

void IncomingPackageTest::fileInPlaceOfTheCache()
{
    putFile(f_->root() + u"/.quillmar-cache"_s, "a file");
    QCOMPARE(f_->store().error, u"Download.SaveFailed"_s);
    QVERIFY(f_->find().isEmpty());
    QCOMPARE(fileContent(f_->root() + u"/.quillmar-cache"_s), "a file");
}

void IncomingPackageTest::folderInPlaceOfThePackage()
{
    QVERIFY(QDir().mkpath(f_->packagePath()));
    QCOMPARE(f_->store().error, u"Download.SaveFailed"_s);
    QVERIFY(f_->find().isEmpty());
    QVERIFY(QFileInfo(f_->packagePath()).isDir());
}

void IncomingPackageTest::folderInPlaceOfTheRecord()
{
    QVERIFY(QDir().mkpath(f_->recordPath()));
    QCOMPARE(f_->store().error, u"Download.SaveFailed"_s);
    QVERIFY(f_->find().isEmpty());
    QCOMPARE(fileContent(f_->packagePath()), PackageFixture::bytes());
}

void IncomingPackageTest::droppedPackageLeavesNothing()
{
    {
        IncomingPackage package(f_->root(), f_->product);
        package.append("the pack");
        QVERIFY(QFileInfo::exists(cacheDirectory(f_->root(), f_->product)));
    }
    QVERIFY(treeBelow(f_->folder()).isEmpty());
}

QTEST_GUILESS_MAIN(IncomingPackageTest)
#include "incoming_package_test.moc"
