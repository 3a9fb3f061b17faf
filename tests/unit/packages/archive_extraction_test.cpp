#include "packages/archive_extraction.h"

#include "packages/product_identity.h"
#include "tests/support/zip_builder/archive_samples.h"
#include "tests/unit/packages/extraction_folder.h"

#include <QDir>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

/// What is selected, where it is put, and which failure has which key.
class ArchiveExtractionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goodArchives_data();
    void goodArchives();
    void fileIsPutBelowComponents();
    void fileComponentTakesNothingElse();
    void folderComponentTakesItsFolderOnly();
    void folderComponentAcceptsASlashAtTheEnd();
    void folderComponentCreatesEmptyFolders();
    void emptyFolderAlone();
    void selectionKeepsCase();
    void folderAskedForAsFile();
    void fileAskedForAsFolder();
    void archiveOfOneFolderOnly();
    void sameContentIsNotRewritten();
    void changedContentReplacesTheOldFile();
    void firstOfThreeStaysWhenTheSecondIsBad();
    void fileAndFolderOfOneName();

    void zipByNameInAnyCase();
    void zipByMimeAlone();
    void zipByMimeWithParametersIsNone();
    void wholePackage();
    void wholePackageThatIsNoZip();
    void plainPackage();
    void plainPackageAskedForAnother();
    void plainPackageAskedForAsFolder();
    void plainPackageIsCaseSensitive();
};

namespace
{

void failsWith(const ProductFileResult &result, const QString &key)
{
    QCOMPARE(result.error, key);
    QVERIFY(result.path.isEmpty());
}

QByteArray frames()
{
    return zipOf({fileItem("frames/a.png", "a"), fileItem("frames/b/c.png", "c"),
                  fileItem("framesX/d.png", "d"), fileItem("frames.txt", "t")});
}

} // namespace

void ArchiveExtractionTest::goodArchives_data()
{
    QTest::addColumn<GoodArchive>("archive");
    for (const GoodArchive &sample : test::goodArchives())
        QTest::newRow(sample.name.constData()) << sample;
}

void ArchiveExtractionTest::goodArchives()
{
    QFETCH(GoodArchive, archive);
    ExtractionFolder folder;
    folder.storePackage(archive.bytes);
    const auto before = folder.surroundings();
    const ProductFileResult result = folder.extractFolder(u"pack"_s);
    QCOMPARE(result.error, QString());
    QCOMPARE(result.path, folder.components() + u"/pack");

    QMap<QString, QByteArray> expected;
    for (const auto &[path, bytes] : archive.files.asKeyValueRange()) {
        const QString clean = QString(path).replace(u'\\', u'/');
        if (clean.startsWith(u"pack/"))
            expected.insert(clean, bytes);
    }
    QVERIFY(folder.extracted() == expected);
    QCOMPARE(folder.surroundings(), before);
}

void ArchiveExtractionTest::fileIsPutBelowComponents()
{
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    const ProductFileResult result = folder.extractFile(u"pack/other.bin"_s);
    QCOMPARE(result.error, QString());
    const QString identity = productIdentity(folder.product);
    QCOMPARE(result.path, folder.root() + u"/pack/" + identity.first(16) + u"/Components/pack/other.bin");
    QCOMPARE(fileContent(result.path), noise(300));
}

void ArchiveExtractionTest::fileComponentTakesNothingElse()
{
    ExtractionFolder folder;
    folder.storePackage(frames());
    QVERIFY(folder.extractFile(u"frames/a.png"_s).isOk());
    QCOMPARE(folder.extracted().keys(), QStringList{u"frames/a.png"_s});
}

void ArchiveExtractionTest::folderComponentTakesItsFolderOnly()
{
    ExtractionFolder folder;
    folder.storePackage(frames());
    const ProductFileResult result = folder.extractFolder(u"frames"_s);
    QCOMPARE(result.path, folder.components() + u"/frames");
    QCOMPARE(folder.extracted().keys(), (QStringList{u"frames/a.png"_s, u"frames/b/c.png"_s}));
}

void ArchiveExtractionTest::folderComponentAcceptsASlashAtTheEnd()
{
    ExtractionFolder folder;
    folder.storePackage(frames());
    QCOMPARE(folder.extractFolder(u"frames\\b/"_s).path, folder.components() + u"/frames/b");
    QCOMPARE(folder.extracted().keys(), QStringList{u"frames/b/c.png"_s});
}

void ArchiveExtractionTest::folderComponentCreatesEmptyFolders()
{
    ExtractionFolder folder;
    folder.storePackage(zipOf({folderItem("frames/empty/deep/"), fileItem("frames/a.png")}));
    QVERIFY(folder.extractFolder(u"frames"_s).isOk());
    QVERIFY(QFileInfo(folder.components() + u"/frames/empty/deep").isDir());
}

void ArchiveExtractionTest::emptyFolderAlone()
{
    ExtractionFolder folder;
    folder.storePackage(zipOf({folderItem("frames/"), fileItem("other.txt")}));
    QCOMPARE(folder.extractFolder(u"frames"_s).path, folder.components() + u"/frames");
    QVERIFY(QFileInfo(folder.components() + u"/frames").isDir());
}

void ArchiveExtractionTest::selectionKeepsCase()
{
    ExtractionFolder folder;
    folder.storePackage(frames());
    failsWith(folder.extractFile(u"Frames/a.png"_s), u"Component.FileMissing"_s);
    failsWith(folder.extractFolder(u"FRAMES"_s), u"Component.FileMissing"_s);
    QVERIFY(folder.extracted().isEmpty());
}

void ArchiveExtractionTest::folderAskedForAsFile()
{
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    failsWith(folder.extractFile(u"pack"_s), u"Component.FileMissing"_s);
}

void ArchiveExtractionTest::fileAskedForAsFolder()
{
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    failsWith(folder.extractFolder(u"pack/other.bin"_s), u"Component.FileMissing"_s);
}

void ArchiveExtractionTest::archiveOfOneFolderOnly()
{
    ExtractionFolder folder;
    folder.storePackage(zipOf({folderItem("pack/")}));
    failsWith(folder.extractFile(u"pack"_s), u"Component.FileMissing"_s);
    failsWith(folder.extractFile(u"pack/a.png"_s), u"Component.FileMissing"_s);
}

void ArchiveExtractionTest::sameContentIsNotRewritten()
{
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    QVERIFY(folder.extractFolder(u"pack"_s).isOk());
    const auto stampOf = [&](const QString &path) { return fileStamp(folder.components() + u'/' + path); };
    const QByteArray wanted = stampOf(u"pack/wanted.txt"_s);
    const QByteArray other = stampOf(u"pack/other.bin"_s);
    QVERIFY(!wanted.isEmpty());
    QVERIFY(folder.extractFolder(u"pack"_s).isOk());
    QCOMPARE(stampOf(u"pack/wanted.txt"_s), wanted);
    QCOMPARE(stampOf(u"pack/other.bin"_s), other);
}

void ArchiveExtractionTest::changedContentReplacesTheOldFile()
{
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    folder.putComponent(u"pack/other.bin"_s, "old");
    QVERIFY(folder.extractFile(u"pack/other.bin"_s).isOk());
    QCOMPARE(folder.extracted().value(u"pack/other.bin"_s), noise(300));
}

void ArchiveExtractionTest::firstOfThreeStaysWhenTheSecondIsBad()
{
    ExtractionFolder folder;
    ZipItem bad = deflatedItem("frames/b.png", noise(500));
    bad.data = deflated(noise(500, 2));
    folder.storePackage(zipOf({fileItem("frames/a.png", "new a"), bad, fileItem("frames/c.png", "new c")}));
    folder.putComponent(u"frames/b.png"_s, "old b");
    folder.putComponent(u"frames/c.png"_s, "old c");
    failsWith(folder.extractFolder(u"frames"_s), u"Component.InvalidArchive"_s);
    const QMap<QString, QByteArray> expected{
        {u"frames/a.png"_s, "new a"}, {u"frames/b.png"_s, "old b"}, {u"frames/c.png"_s, "old c"}};
    QVERIFY(folder.extracted() == expected);
}

void ArchiveExtractionTest::fileAndFolderOfOneName()
{
    ExtractionFolder folder;
    folder.storePackage(zipOf({fileItem("pack/a", "file"), fileItem("pack/a/b", "below")}));
    failsWith(folder.extractFolder(u"pack"_s), u"Download.SaveFailed"_s);
    QVERIFY(folder.extracted() == (QMap<QString, QByteArray>{{u"pack/a"_s, "file"}}));
}

void ArchiveExtractionTest::zipByNameInAnyCase()
{
    ExtractionFolder folder;
    folder.product.file_mime = u"application/octet-stream"_s;
    folder.product.file_name = u"Pack.ZIP"_s;
    folder.storePackage(baseArchive().build());
    QVERIFY(folder.extractFile(u"pack/other.bin"_s).isOk());
}

void ArchiveExtractionTest::zipByMimeAlone()
{
    ExtractionFolder folder;
    folder.product.file_mime = u"application/zip"_s;
    folder.product.file_name = u"../unsafe/download"_s;
    folder.storePackage(baseArchive().build());
    QVERIFY(folder.extractFile(u"pack/other.bin"_s).isOk());
}

void ArchiveExtractionTest::zipByMimeWithParametersIsNone()
{
    ExtractionFolder folder;
    folder.product.file_mime = u"application/zip; charset=binary"_s;
    folder.product.file_name = u"download"_s;
    folder.storePackage(baseArchive().build());
    failsWith(folder.extractFile(u"pack/other.bin"_s), u"Component.FileMissing"_s);
}

void ArchiveExtractionTest::wholePackage()
{
    ExtractionFolder folder;
    const QByteArray bytes = baseArchive().build();
    folder.storePackage(bytes);
    const ProductFileResult result = folder.extractWhole();
    QCOMPARE(result.error, QString());
    QCOMPARE(result.path, outputDirectory(folder.root(), folder.product) + u"/Pack.zip");
    QCOMPARE(fileContent(result.path), bytes);
}

void ArchiveExtractionTest::wholePackageThatIsNoZip()
{
    ExtractionFolder folder;
    folder.storePackage("not an archive at all");
    const ProductFileResult result = folder.extractWhole();
    QCOMPARE(fileContent(result.path), QByteArray("not an archive at all"));
}

void ArchiveExtractionTest::plainPackage()
{
    ExtractionFolder folder;
    folder.product.file_name = u"logo.png"_s;
    folder.storePackage("picture");
    const ProductFileResult result = folder.extractFile(u"logo.png"_s);
    QCOMPARE(result.path, folder.components() + u"/logo.png");
    QCOMPARE(fileContent(result.path), QByteArray("picture"));
}

void ArchiveExtractionTest::plainPackageAskedForAnother()
{
    ExtractionFolder folder;
    folder.product.file_name = u"logo.png"_s;
    folder.storePackage("picture");
    failsWith(folder.extractFile(u"other.png"_s), u"Component.FileMissing"_s);
    QVERIFY(folder.extracted().isEmpty());
}

void ArchiveExtractionTest::plainPackageAskedForAsFolder()
{
    ExtractionFolder folder;
    folder.product.file_name = u"logo.png"_s;
    folder.storePackage("picture");
    failsWith(folder.extractFolder(u"logo.png"_s), u"Component.FileMissing"_s);
}

void ArchiveExtractionTest::plainPackageIsCaseSensitive()
{
    ExtractionFolder folder;
    folder.product.file_name = u"logo.png"_s;
    folder.storePackage("picture");
    failsWith(folder.extractFile(u"Logo.png"_s), u"Component.FileMissing"_s);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::ArchiveExtractionTest)
#include "archive_extraction_test.moc"
