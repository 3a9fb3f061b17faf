#include "packages/atomic_file.h"
#include "packages/incoming_file.h"
#include "packages/package_cache.h"
#include "tests/support/zip_builder/archive_samples.h"
#include "tests/unit/packages/extraction_folder.h"
#include "tests/unit/packages/package_fixture.h"

#include <qt_windows.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

namespace
{

constexpr int kDeadlineMs = 60'000;

/// Another process that holds a file.
class Holder
{
public:
    Holder(const QString &sharing, const QString &path)
    {
        process_.start(QStringLiteral(QUILLMAR_FILE_HOLDER), {sharing, path});
        isHolding_ = process_.waitForReadyRead(kDeadlineMs) && process_.readAll().startsWith("held");
    }
    ~Holder() { letGo(); }
    Q_DISABLE_COPY_MOVE(Holder)

    bool isHolding() const { return isHolding_; }

    bool letGo()
    {
        process_.closeWriteChannel();
        return process_.waitForFinished(kDeadlineMs) && process_.exitCode() == 0;
    }

private:
    QProcess process_;
    bool isHolding_ = false;
};

const QString exclusively = u"exclusively"_s;
const QString reading = u"reading"_s;

void addSharings()
{
    QTest::addColumn<QString>("sharing");
    QTest::newRow("by a virus scanner") << exclusively;
    QTest::newRow("by a player") << reading;
}

} // namespace

/// Files that another process holds while they are to be read or replaced: nothing is lost, and the next try
/// works.
class HeldFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void heldPackageIsNotReplaced_data() { addSharings(); }
    void heldPackageIsNotReplaced();
    void heldRecordIsNotReplaced_data() { addSharings(); }
    void heldRecordIsNotReplaced();
    void heldRecordIsNotDropped_data() { addSharings(); }
    void heldRecordIsNotDropped();
    void heldPackageCannotBeRead();
    void packageThatAPlayerReadsIsFound();
    void heldComponentIsNotReplaced_data() { addSharings(); }
    void heldComponentIsNotReplaced();
    void componentThatAPlayerShowsIsNotWrittenAgain();
    void heldDownloadIsNotReplaced_data() { addSharings(); }
    void heldDownloadIsNotReplaced();
    void fileHeldFromTheMiddleOn();
    void readOnlyFileIsNotReplaced();
};

/// The first package stays the known one until the second can take its place.
void HeldFilesTest::heldPackageIsNotReplaced()
{
    QFETCH(const QString, sharing);
    PackageFixture fixture;
    fixture.product.sha256.clear();
    QVERIFY(fixture.store("old content").isOk());
    const auto before = treeBelow(fixture.folder());
    Holder holder(sharing, fixture.packagePath());
    QVERIFY(holder.isHolding());
    QCOMPARE(fixture.store("new content").error, u"Download.SaveFailed"_s);
    QVERIFY(holder.letGo());
    QCOMPARE(treeBelow(fixture.folder()), before);
    QCOMPARE(fixture.find(), fixture.packagePath());
    QVERIFY(fixture.store("new content").isOk());
    QCOMPARE(fileContent(fixture.find()), "new content");
}

/// A package whose record is of another one is unknown.
void HeldFilesTest::heldRecordIsNotReplaced()
{
    QFETCH(const QString, sharing);
    PackageFixture fixture;
    fixture.product.sha256.clear();
    QVERIFY(fixture.store("old content").isOk());
    const QByteArray record = fileContent(fixture.recordPath());
    Holder holder(sharing, fixture.recordPath());
    QVERIFY(holder.isHolding());
    QCOMPARE(fixture.store("new content").error, u"Download.SaveFailed"_s);
    QVERIFY(fixture.find().isEmpty());
    QVERIFY(holder.letGo());
    QCOMPARE(fileContent(fixture.recordPath()), record);
    QVERIFY(fixture.find().isEmpty());
    QVERIFY(fixture.store("new content").isOk());
    QCOMPARE(fileContent(fixture.find()), "new content");
}

void HeldFilesTest::heldRecordIsNotDropped()
{
    QFETCH(const QString, sharing);
    const PackageFixture fixture;
    QVERIFY(fixture.store().isOk());
    Holder holder(sharing, fixture.recordPath());
    QVERIFY(holder.isHolding());
    dropPackageRecord(fixture.root(), fixture.product);
    QVERIFY(holder.letGo());
    QCOMPARE(fixture.find(), fixture.packagePath());
    dropPackageRecord(fixture.root(), fixture.product);
    QVERIFY(fixture.find().isEmpty());
}

void HeldFilesTest::heldPackageCannotBeRead()
{
    const PackageFixture fixture;
    QVERIFY(fixture.store().isOk());
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    {
        const Holder package(exclusively, fixture.packagePath());
        const Holder archive(exclusively, folder.packagePath());
        QVERIFY(package.isHolding() && archive.isHolding());
        QVERIFY(fixture.find().isEmpty());
        QCOMPARE(folder.extractWhole().error, u"Download.Failed"_s);
        QCOMPARE(folder.extractFile(u"pack/wanted.txt"_s).error, u"Component.InvalidArchive"_s);
    }
    QCOMPARE(fixture.find(), fixture.packagePath());
    QCOMPARE(folder.extractWhole().error, QString());
    QCOMPARE(folder.extractFile(u"pack/wanted.txt"_s).error, QString());
}

void HeldFilesTest::packageThatAPlayerReadsIsFound()
{
    const PackageFixture fixture;
    QVERIFY(fixture.store().isOk());
    const Holder holder(reading, fixture.packagePath());
    QVERIFY(holder.isHolding());
    QCOMPARE(fixture.find(), fixture.packagePath());
    QVERIFY(fixture.store().isOk());
}

void HeldFilesTest::heldComponentIsNotReplaced()
{
    QFETCH(const QString, sharing);
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    folder.putComponent(u"pack/wanted.txt"_s, "old");
    const auto before = folder.snapshot();
    Holder holder(sharing, folder.components() + u"/pack/wanted.txt"_s);
    QVERIFY(holder.isHolding());
    QCOMPARE(folder.extractFile(u"pack/wanted.txt"_s).error, u"Download.SaveFailed"_s);
    QVERIFY(holder.letGo());
    QCOMPARE(folder.snapshot(), before);
    QCOMPARE(folder.extractFile(u"pack/wanted.txt"_s).error, QString());
    QVERIFY(folder.extracted().value(u"pack/wanted.txt"_s) != "old");
}

/// OBS shows a clip, and its component is added once more.
void HeldFilesTest::componentThatAPlayerShowsIsNotWrittenAgain()
{
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    QCOMPARE(folder.extractFile(u"pack/wanted.txt"_s).error, QString());
    const QString path = folder.components() + u"/pack/wanted.txt"_s;
    const QByteArray stamp = fileStamp(path);
    const Holder holder(reading, path);
    QVERIFY(holder.isHolding());
    QCOMPARE(folder.extractFolder(u"pack"_s).error, QString());
    QCOMPARE(fileStamp(path), stamp);
}

void HeldFilesTest::heldDownloadIsNotReplaced()
{
    QFETCH(const QString, sharing);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"قاب.zip"_s);
    putFile(path, "old");
    const auto download = [&folder] {
        IncomingFile file(folder.path());
        file.setName(u"قاب.zip"_s);
        file.append("new one");
        return file.store();
    };
    Holder holder(sharing, path);
    QVERIFY(holder.isHolding());
    QCOMPARE(download().error, u"Download.SaveFailed"_s);
    QVERIFY(holder.letGo());
    QCOMPARE(fileContent(path), "old");
    QCOMPARE(treeBelow(folder.path()).size(), 1);
    QCOMPARE(download().path, path);
    QCOMPARE(fileContent(path), "new one");
}

/// The scanner comes between the first byte and the last.
void HeldFilesTest::fileHeldFromTheMiddleOn()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"root/target"_s);
    putFile(path, "old");
    PendingFile file(folder.filePath(u"root"_s), path);
    QVERIFY(file.open());
    QVERIFY(file.write("new"));
    Holder holder(exclusively, path);
    QVERIFY(holder.isHolding());
    QVERIFY(!file.commit());
    QVERIFY(holder.letGo());
    QCOMPARE(fileContent(path), "old");
    QCOMPARE(treeBelow(folder.path()).size(), 2);
}

void HeldFilesTest::readOnlyFileIsNotReplaced()
{
    PackageFixture fixture;
    fixture.product.sha256.clear();
    QVERIFY(fixture.store("old content").isOk());
    const QString native = QDir::toNativeSeparators(fixture.packagePath());
    QVERIFY(SetFileAttributesW(qUtf16Printable(native), FILE_ATTRIBUTE_READONLY));
    const auto before = treeBelow(fixture.folder());
    QCOMPARE(fixture.store("new content").error, u"Download.SaveFailed"_s);
    QCOMPARE(treeBelow(fixture.folder()), before);
    QVERIFY(SetFileAttributesW(qUtf16Printable(native), FILE_ATTRIBUTE_NORMAL));
    QVERIFY(fixture.store("new content").isOk());
}

QTEST_GUILESS_MAIN(HeldFilesTest)
#include "held_files_test.moc"
