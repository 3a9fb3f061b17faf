#include "packages/archive_extraction.h"

#include "packages/product_identity.h"
#include "tests/support/zip_builder/archive_samples.h"
#include "tests/unit/packages/extraction_folder.h"
#include "tests/unit/packages/links.h"

#include <QDir>
#include <QTest>

#include <functional>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

/// Which failure has which key, and that it changes nothing on disk.
class ArchiveFailuresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void invalidProduct_data();
    void invalidProduct();
    void packagePathElsewhere_data();
    void packagePathElsewhere();
    void unsafeFileName_data();
    void unsafeFileName();
    void unsafeAsset_data();
    void unsafeAsset();
    void unknownAssetKind_data();
    void unknownAssetKind();
    void packageCannotBeOpened_data();
    void packageCannotBeOpened();
    void linkOnTheWay_data();
    void linkOnTheWay();
    void linkInPlaceOfThePackage();
    void linkAtAnEntryThatIsNotRequested_data();
    void linkAtAnEntryThatIsNotRequested();
    void folderInPlaceOfTheFile();
    void fileInPlaceOfTheFolder();
    void fileInPlaceOfAnEmptyFolder();
    void wholePackageOntoAFolder();
    void plainPackageOntoAFolder();
};

namespace
{

void failsWith(const ProductFileResult &result, const QString &key)
{
    QCOMPARE(result.error, key);
    QVERIFY(result.path.isEmpty());
}

void removePackage(const ExtractionFolder &folder)
{
    QFile::remove(folder.packagePath());
}

void replaceByFolder(const ExtractionFolder &folder)
{
    QFile::remove(folder.packagePath());
    QDir().mkpath(folder.packagePath());
}

} // namespace

void ArchiveFailuresTest::invalidProduct_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("digest");
    QTest::newRow("unsafe key") << u"../pack"_s << u"1.0"_s << QString();
    QTest::newRow("no key") << QString() << u"1.0"_s << QString();
    QTest::newRow("no version") << u"pack"_s << QString() << QString();
    QTest::newRow("bad digest") << u"pack"_s << u"1.0"_s << u"abc"_s;
}

void ArchiveFailuresTest::invalidProduct()
{
    QFETCH(QString, key);
    QFETCH(QString, version);
    QFETCH(QString, digest);
    ExtractionFolder folder;
    folder.product.product_key = key;
    folder.product.product_version = version;
    folder.product.sha256 = digest;
    folder.storePackage(baseArchive().build());
    const auto before = folder.snapshot();
    failsWith(folder.extractFile(u"pack/wanted.txt"_s), u"Component.UnsafePath"_s);
    failsWith(folder.extractWhole(), u"Component.UnsafePath"_s);
    QVERIFY(folder.snapshot() == before);
}

void ArchiveFailuresTest::packagePathElsewhere_data()
{
    QTest::addColumn<std::function<QString(const ExtractionFolder &)>>("path");
    using Path = std::function<QString(const ExtractionFolder &)>;
    QTest::newRow("empty") << Path([](const ExtractionFolder &) { return QString(); });
    QTest::newRow("outside the root")
        << Path([](const ExtractionFolder &folder) { return QString(folder.root() + u"/../neighbour.txt"); });
    QTest::newRow("another file in the root") << Path(
        [](const ExtractionFolder &folder) { return QString(folder.root() + u"/other-product/file.txt"); });
    QTest::newRow("not cleaned") << Path([](const ExtractionFolder &folder) {
        return folder.packagePath().replace(u"/product"_s, u"/./product"_s);
    });
    QTest::newRow("another case") << Path([](const ExtractionFolder &folder) {
        return folder.packagePath().replace(u"/product"_s, u"/Product"_s);
    });
    QTest::newRow("package of another product") << Path([](const ExtractionFolder &folder) {
        ComponentProduct other = folder.product;
        other.product_version = u"2.0"_s;
        return cachedPackagePath(folder.root(), other);
    });
}

void ArchiveFailuresTest::packagePathElsewhere()
{
    QFETCH(std::function<QString(const ExtractionFolder &)>, path);
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    const auto before = folder.snapshot();
    const QString elsewhere = path(folder);
    QVERIFY(elsewhere != folder.packagePath());
    failsWith(extractPackage(folder.root(), folder.product, elsewhere, std::nullopt),
              u"Component.UnsafePath"_s);
    QVERIFY(folder.snapshot() == before);
}

void ArchiveFailuresTest::unsafeFileName_data()
{
    QTest::addColumn<QString>("name");
    const QStringList names{QString(),         u"sub/Pack.zip"_s, u"sub\\Pack.zip"_s, u"/Pack.zip"_s,
                            u"..\\Pack.zip"_s, u".."_s,           u"nul.zip"_s,       u"Pack.zip."_s,
                            u"a:b.zip"_s,      u"Pack\n.zip"_s};
    for (const QString &name : names)
        QTest::addRow("%s", name.toUtf8().toPercentEncoding().constData()) << name;
}

void ArchiveFailuresTest::unsafeFileName()
{
    QFETCH(QString, name);
    ExtractionFolder folder;
    folder.product.file_name = name;
    folder.storePackage(baseArchive().build());
    const auto before = folder.snapshot();
    failsWith(folder.extractWhole(), u"Component.UnsafePath"_s);
    QVERIFY(folder.snapshot() == before);
}

void ArchiveFailuresTest::unsafeAsset_data()
{
    QTest::addColumn<QString>("asset");
    const QStringList assets{QString(), u"/"_s,    u"../a"_s,     u"/abs"_s,    u"a/../b"_s,
                             u"a//b"_s, u"C:/x"_s, u"a\\..\\b"_s, u"con.png"_s, u"a/b. "_s,
                             u"a."_s,   u"a?"_s,   u"a\tb"_s,     u"./a"_s,     QString(1025, u'a')};
    for (const QString &asset : assets)
        QTest::addRow("%s", asset.left(40).toUtf8().toPercentEncoding().constData()) << asset;
}

/// Decided before the package is opened: here there is none.
void ArchiveFailuresTest::unsafeAsset()
{
    QFETCH(QString, asset);
    ExtractionFolder folder;
    const auto before = folder.snapshot();
    failsWith(folder.extractFile(asset), u"Component.UnsafePath"_s);
    failsWith(folder.extractFolder(asset), u"Component.UnsafePath"_s);
    QVERIFY(folder.snapshot() == before);
}

void ArchiveFailuresTest::unknownAssetKind_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("empty") << QString();
    QTest::newRow("other word") << u"link"_s;
    QTest::newRow("other case") << u"File"_s;
    QTest::newRow("blank") << u"file "_s;
}

void ArchiveFailuresTest::unknownAssetKind()
{
    QFETCH(QString, kind);
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    failsWith(folder.extract(u"pack/wanted.txt"_s, kind), u"Component.UnsafePath"_s);
    QVERIFY(folder.extracted().isEmpty());
}

void ArchiveFailuresTest::packageCannotBeOpened_data()
{
    QTest::addColumn<std::function<void(const ExtractionFolder &)>>("spoil");
    using Spoil = std::function<void(const ExtractionFolder &)>;
    QTest::newRow("absent") << Spoil(removePackage);
    QTest::newRow("folder in its place") << Spoil(replaceByFolder);
}

void ArchiveFailuresTest::packageCannotBeOpened()
{
    QFETCH(std::function<void(const ExtractionFolder &)>, spoil);
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    spoil(folder);
    failsWith(folder.extractWhole(), u"Download.Failed"_s);
    failsWith(folder.extractFile(u"pack/wanted.txt"_s), u"Component.InvalidArchive"_s);

    folder.product.file_name = u"logo.png"_s;
    folder.storePackage("picture");
    spoil(folder);
    failsWith(folder.extractFile(u"logo.png"_s), u"Component.FileMissing"_s);
}

void ArchiveFailuresTest::linkOnTheWay_data()
{
    QTest::addColumn<QString>("link");
    QTest::newRow("product folder") << u"/../.."_s;
    QTest::newRow("output folder") << u"/.."_s;
    QTest::newRow("Components") << QString();
    QTest::newRow("folder in the archive") << u"/pack"_s;
    QTest::newRow("the file itself") << u"/pack/wanted.txt"_s;
}

void ArchiveFailuresTest::linkOnTheWay()
{
    QFETCH(QString, link);
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    const QString at = QDir::cleanPath(folder.components() + link);
    QVERIFY(QDir().mkpath(QFileInfo(at).path()));
    QVERIFY(makeLink(folder.root() + u"/other-product", at));
    const auto before = folder.snapshot();
    failsWith(folder.extractFile(u"pack/wanted.txt"_s), u"Component.UnsafePath"_s);
    failsWith(folder.extractFolder(u"pack"_s), u"Component.UnsafePath"_s);
    QVERIFY(folder.snapshot() == before);
}

void ArchiveFailuresTest::linkInPlaceOfThePackage()
{
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    QVERIFY(QFile::rename(folder.packagePath(), folder.root() + u"/elsewhere"));
    QVERIFY(makeLink(folder.root() + u"/elsewhere", folder.packagePath()));
    failsWith(folder.extractFile(u"pack/wanted.txt"_s), u"Component.UnsafePath"_s);
    failsWith(folder.extractWhole(), u"Component.UnsafePath"_s);
}

void ArchiveFailuresTest::linkAtAnEntryThatIsNotRequested_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("to a folder") << u"../.."_s;
    if constexpr (LinksMayDangle)
        QTest::newRow("to nothing") << u"/nowhere"_s;
}

/// Every destination of the archive is judged before anything is written, requested or not.
void ArchiveFailuresTest::linkAtAnEntryThatIsNotRequested()
{
    QFETCH(QString, target);
    ExtractionFolder folder;
    folder.storePackage(zipOf({fileItem("a/wanted.txt"), fileItem("b/deep/other.txt"), fileItem("z.txt")}));
    QVERIFY(QDir().mkpath(folder.components() + u"/b"));
    QVERIFY(makeLink(target, folder.components() + u"/b/deep"));
    const auto before = folder.snapshot();
    failsWith(folder.extractFile(u"a/wanted.txt"_s), u"Component.UnsafePath"_s);
    QVERIFY(folder.snapshot() == before);
}

void ArchiveFailuresTest::folderInPlaceOfTheFile()
{
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    folder.putComponent(u"pack/wanted.txt/inside"_s, "kept");
    folder.putComponent(u"pack/other.bin/inside"_s, "kept");
    const auto before = folder.snapshot();
    failsWith(folder.extractFile(u"pack/wanted.txt"_s), u"Download.SaveFailed"_s);
    failsWith(folder.extractFile(u"pack/other.bin"_s), u"Download.SaveFailed"_s);
    QVERIFY(folder.snapshot() == before);
}

void ArchiveFailuresTest::fileInPlaceOfTheFolder()
{
    ExtractionFolder folder;
    folder.storePackage(zipOf({fileItem("pack/wanted.txt")}));
    folder.putComponent(u"pack"_s, "a file");
    const auto before = folder.snapshot();
    failsWith(folder.extractFile(u"pack/wanted.txt"_s), u"Download.SaveFailed"_s);
    QVERIFY(folder.snapshot() == before);
}

void ArchiveFailuresTest::fileInPlaceOfAnEmptyFolder()
{
    ExtractionFolder folder;
    folder.storePackage(zipOf({folderItem("pack/empty/")}));
    folder.putComponent(u"pack/empty"_s, "a file");
    const auto before = folder.snapshot();
    failsWith(folder.extractFolder(u"pack"_s), u"Download.SaveFailed"_s);
    QVERIFY(folder.snapshot() == before);
}

void ArchiveFailuresTest::wholePackageOntoAFolder()
{
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    putFile(outputDirectory(folder.root(), folder.product) + u"/Pack.zip/inside", "kept");
    const auto before = folder.snapshot();
    failsWith(folder.extractWhole(), u"Download.SaveFailed"_s);
    QVERIFY(folder.snapshot() == before);
}

void ArchiveFailuresTest::plainPackageOntoAFolder()
{
    ExtractionFolder folder;
    folder.product.file_name = u"logo.png"_s;
    folder.storePackage("picture");
    folder.putComponent(u"logo.png/inside"_s, "kept");
    failsWith(folder.extractFile(u"logo.png"_s), u"Download.SaveFailed"_s);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::ArchiveFailuresTest)
#include "archive_failures_test.moc"
