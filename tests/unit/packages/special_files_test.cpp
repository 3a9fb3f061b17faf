#include "packages/package_cache.h"
#include "tests/support/zip_builder/archive_samples.h"
#include "tests/unit/packages/extraction_folder.h"
#include "tests/unit/packages/package_fixture.h"

#include <QFile>
#include <QTest>

#include <sys/stat.h>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

/// Opening it would wait for ever.
bool replaceByPipe(const QString &path)
{
    return QFile::remove(path) && mkfifo(QFile::encodeName(path).constData(), 0600) == 0;
}

} // namespace

/// Pipes in the place of files: nobody opens them.
class SpecialFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pipeInPlaceOfTheRecord();
    void pipeInPlaceOfThePackage();
    void pipeInPlaceOfTheArchive();
    void pipeInPlaceOfAPlainPackage();
};

void SpecialFilesTest::pipeInPlaceOfTheRecord()
{
    const PackageFixture fixture;
    QVERIFY(fixture.store().isOk());
    QVERIFY(replaceByPipe(fixture.recordPath()));
    QVERIFY(fixture.find().isEmpty());
    QVERIFY(fixture.store().isOk());
    QCOMPARE(fixture.find(), fixture.packagePath());
}

void SpecialFilesTest::pipeInPlaceOfThePackage()
{
    const PackageFixture fixture;
    QVERIFY(fixture.store().isOk());
    QVERIFY(replaceByPipe(fixture.packagePath()));
    QVERIFY(fixture.find().isEmpty());
    QVERIFY(fixture.store().isOk());
    QCOMPARE(fixture.find(), fixture.packagePath());
}

void SpecialFilesTest::pipeInPlaceOfTheArchive()
{
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    QVERIFY(replaceByPipe(folder.packagePath()));
    QCOMPARE(folder.extractWhole().error, u"Download.Failed"_s);
    QCOMPARE(folder.extractFile(u"pack/wanted.txt"_s).error, u"Component.InvalidArchive"_s);
}

void SpecialFilesTest::pipeInPlaceOfAPlainPackage()
{
    ExtractionFolder folder;
    folder.product.file_name = u"logo.png"_s;
    folder.storePackage("picture");
    QVERIFY(replaceByPipe(folder.packagePath()));
    QCOMPARE(folder.extractFile(u"logo.png"_s).error, u"Component.FileMissing"_s);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::SpecialFilesTest)
#include "special_files_test.moc"
