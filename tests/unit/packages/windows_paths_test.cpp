#include "packages/atomic_file.h"
#include "packages/incoming_file.h"
#include "packages/path_safety.h"
#include "packages/product_downloads.h"
#include "tests/support/zip_builder/zip_builder.h"
#include "tests/unit/packages/extraction_folder.h"
#include "tests/unit/packages/links.h"
#include "tests/unit/packages/package_root.h"
#include "tests/unit/packages/second_drive.h"

#include <QDir>
#include <QNetworkAccessManager>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

namespace
{

/// The same path with the letter of its drive in the other case.
QString otherLetter(const QString &path)
{
    const QString upper = path.first(1).toUpper();
    return (path.first(1) == upper ? path.first(1).toLower() : upper) + path.sliced(1);
}

/// The downloads folder of this user is another one while an instance lives.
class DownloadsElsewhere
{
public:
    explicit DownloadsElsewhere(const QString &folder)
        : folders_(
              u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders"_s,
              QSettings::NativeFormat),
          before_(folders_.value(downloads))
    {
        folders_.setValue(downloads, QDir::toNativeSeparators(folder));
        folders_.sync();
    }
    ~DownloadsElsewhere()
    {
        if (before_.isValid())
            folders_.setValue(downloads, before_);
        else
            folders_.remove(downloads);
    }
    Q_DISABLE_COPY_MOVE(DownloadsElsewhere)

private:
    static inline const QString downloads = u"{374DE290-123F-4565-9164-39C4925E467B}"_s;

    QSettings folders_;
    QVariant before_;
};

} // namespace

/// Paths as only Windows knows them, with real files.
class WindowsPathsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void driveLetterInBothCases();
    void insideARootOnAnotherComputer_data();
    void insideARootOnAnotherComputer();
    void extendedPaths_data();
    void extendedPaths();
    void longRoot_data();
    void longRoot();
    void longPathInAnArchive();
    void unsafeNamesInAnArchive_data();
    void unsafeNamesInAnArchive();
    void unsafeNamesOfADownload_data() { unsafeNamesInAnArchive_data(); }
    void unsafeNamesOfADownload();
    void persianNames();
    void downloadsOnAnotherDrive();
    void otherDriveIsOutside();
};

void WindowsPathsTest::driveLetterInBothCases()
{
    const QTemporaryDir folder;
    const QString root = folder.path();
    const QString other = otherLetter(root);
    QVERIFY(root != other);
    for (const QString &path : {root, QString(root + u"/x/y"_s)}) {
        QVERIFY(isInsideRoot(root, path));
        QVERIFY(isInsideRoot(root, otherLetter(path)));
    }
    QVERIFY(writeFileAtomically(root, other + u"/x/y"_s, "bytes"));
    QCOMPARE(fileContent(root + u"/x/y"_s), "bytes");
    QVERIFY(!isInsideRoot(root, other + u"/../x"_s));

    QNetworkAccessManager network;
    QCOMPARE(ProductDownloads(&network, other + u"/Quillmar"_s).root().toCaseFolded(),
             QString(root + u"/Quillmar"_s).toCaseFolded());
    worksIn(ProductDownloads(&network, other + u"/Quillmar"_s).root());
}

void WindowsPathsTest::insideARootOnAnotherComputer_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("inside");
    QTest::newRow("the root") << u"//server/share/Quillmar"_s << true;
    QTest::newRow("below") << u"//server/share/Quillmar/a/b"_s << true;
    QTest::newRow("with the separators of Windows") << u"\\\\server\\share\\Quillmar\\a"_s << true;
    QTest::newRow("another case") << u"//SERVER/Share/quillmar/a"_s << true;
    QTest::newRow("back again") << u"//server/share/Quillmar/a/../b"_s << true;
    QTest::newRow("the share") << u"//server/share"_s << false;
    QTest::newRow("beside the root") << u"//server/share/Quillmar2/a"_s << false;
    QTest::newRow("above the root") << u"//server/share/Quillmar/../a"_s << false;
    QTest::newRow("above the share") << u"//server/share/Quillmar/../../../server2/share/Quillmar/a"_s
                                     << false;
    QTest::newRow("another share") << u"//server/other/Quillmar/a"_s << false;
    QTest::newRow("another computer") << u"//server2/share/Quillmar/a"_s << false;
    QTest::newRow("no computer") << u"/server/share/Quillmar/a"_s << false;
    QTest::newRow("a drive") << u"C:/server/share/Quillmar/a"_s << false;
}

/// Nobody answers there; what does not exist is no link.
void WindowsPathsTest::insideARootOnAnotherComputer()
{
    QFETCH(const QString, path);
    const QString root = u"//server/share/Quillmar"_s;
    QTEST(!pathBelowRoot(root, path).isEmpty(), "inside");
    QTEST(isInsideRoot(root, path), "inside");
}

void WindowsPathsTest::extendedPaths_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::newRow("as the system writes them") << u"\\\\?\\"_s;
    QTest::newRow("with slashes") << u"//?/"_s;
}

/// The long forms name the same files as the short ones, and their links are seen as well.
void WindowsPathsTest::extendedPaths()
{
    QFETCH(const QString, prefix);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"root"_s);
    const QString root = prefix + (prefix.endsWith(u'/') ? path : QDir::toNativeSeparators(path));
    QNetworkAccessManager network;
    const QString cleaned = ProductDownloads(&network, root).root();
    worksIn(cleaned);
    QVERIFY(QFileInfo::exists(folder.filePath(u"root/.quillmar-cache"_s)));
    QVERIFY(QDir().mkpath(folder.filePath(u"outside"_s)));
    QVERIFY(makeLink(folder.filePath(u"outside"_s), folder.filePath(u"root/a"_s)));
    QVERIFY(!isInsideRoot(cleaned, cleaned + u"/a/x"_s));
    QVERIFY(!writeFileAtomically(cleaned, cleaned + u"/a/x"_s, "evil"));
    QVERIFY(treeBelow(folder.filePath(u"outside"_s)).isEmpty());
}

void WindowsPathsTest::longRoot_data()
{
    QTest::addColumn<qsizetype>("length");
    // The cache adds 90 characters, and a temporary name some more: the borders of 248 and 260 are passed on
    // the way.
    for (const qsizetype length : {150, 160, 165, 170, 240, 247, 248, 249, 255, 258, 259, 260, 261, 400, 900})
        QTest::addRow("%lld", static_cast<long long>(length)) << length;
}

void WindowsPathsTest::longRoot()
{
    QFETCH(const qsizetype, length);
    const QTemporaryDir folder;
    QString root = folder.path();
    while (length - root.size() > 101)
        root += u'/' + QString(50, u'f');
    root += u'/' + QString(length - root.size() - 1, u'r');
    QCOMPARE(root.size(), length);
    worksIn(root);
}

void WindowsPathsTest::longPathInAnArchive()
{
    const QByteArray path = "pack/" + QByteArray("a folder of thirty characters/").repeated(15) + "frame.png";
    const QString asset = QString::fromUtf8(path);
    QVERIFY(asset.size() > 400);
    ExtractionFolder folder;
    folder.storePackage(zipOf({fileItem(path, "picture")}));
    const ProductFileResult file = folder.extractFile(asset);
    QCOMPARE(file.error, QString());
    QCOMPARE(fileContent(file.path), "picture");
    QCOMPARE(folder.extractFolder(u"pack"_s).error, QString());
}

void WindowsPathsTest::unsafeNamesInAnArchive_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &name : {u"con"_s, u"NUL"_s, u"nul.png"_s, u"Aux.tar.gz"_s, u"prn"_s, u"com1"_s,
                                u"COM9.txt"_s, u"lpt1"_s, u"file."_s, u"file..."_s, u"file "_s, u"file. "_s,
                                u"file:stream"_s, u"file::$DATA"_s, u"C:file"_s, u"C:"_s})
        QTest::newRow(qPrintable(name)) << name;
}

void WindowsPathsTest::unsafeNamesInAnArchive()
{
    QFETCH(const QString, name);
    ExtractionFolder folder;
    folder.putComponent(u"file"_s, "must stay");
    folder.storePackage(zipOf({fileItem("good.txt"), fileItem(name.toUtf8(), "evil")}));
    const auto before = folder.snapshot();
    QCOMPARE(folder.extractFile(name).error, u"Component.UnsafePath"_s);
    QCOMPARE(folder.extractFile(u"good.txt"_s).error, u"Component.UnsafePath"_s);
    QCOMPARE(folder.snapshot(), before);
}

void WindowsPathsTest::unsafeNamesOfADownload()
{
    QFETCH(const QString, name);
    const QTemporaryDir folder;
    putFile(folder.filePath(u"file"_s), "must stay");
    const auto before = treeBelow(folder.path());
    IncomingFile file(folder.path());
    file.setName(name);
    file.append("evil");
    QCOMPARE(file.store().error, u"Download.SaveFailed"_s);
    QCOMPARE(treeBelow(folder.path()), before);
}

void WindowsPathsTest::persianNames()
{
    const QTemporaryDir folder;
    worksIn(folder.filePath(u"دانلود\u200cها/کوییل‌مار ۱۴۰۵"_s));
    ExtractionFolder archive;
    archive.storePackage(zipOf({fileItem("pack/قاب‌ها/قاب ۱.png", "picture")}));
    const ProductFileResult file = archive.extractFile(u"pack/قاب‌ها/قاب ۱.png"_s);
    QCOMPARE(file.error, QString());
    QCOMPARE(fileContent(file.path), "picture");
    QVERIFY(QFileInfo(file.path).absoluteDir().exists(u"قاب ۱.png"_s));
}

void WindowsPathsTest::downloadsOnAnotherDrive()
{
    const QTemporaryDir folder;
    const SecondDrive drive(folder.path());
    QVERIFY(!drive.name().isEmpty());
    QNetworkAccessManager network;
    for (const QString &folderName : {QString(), u"دانلود"_s}) {
        const QString place = drive.name() + u'/' + folderName;
        const DownloadsElsewhere downloads(place);
        const QString root = ProductDownloads(&network, {}).root();
        QCOMPARE(root, QDir::cleanPath(place + u"/Quillmar"_s));
        worksIn(root);
    }
    QVERIFY(QFileInfo::exists(folder.filePath(u"Quillmar/.quillmar-cache"_s)));
    QVERIFY(QFileInfo::exists(folder.filePath(u"دانلود/Quillmar/.quillmar-cache"_s)));
}

void WindowsPathsTest::otherDriveIsOutside()
{
    const QTemporaryDir folder;
    const SecondDrive drive(folder.path());
    QVERIFY(!drive.name().isEmpty());
    const QString root = drive.name() + u"/Quillmar"_s;
    QVERIFY(isInsideRoot(root, root.toLower() + u"/x"_s));
    QVERIFY(!isInsideRoot(root, u"C:/Quillmar/x"_s));
    QVERIFY(!isInsideRoot(u"C:/Quillmar"_s, root + u"/x"_s));
    QVERIFY(!writeFileAtomically(root, folder.filePath(u"Quillmar/x"_s), "evil"));
    QVERIFY(treeBelow(folder.path()).isEmpty());
}

QTEST_GUILESS_MAIN(WindowsPathsTest)
#include "windows_paths_test.moc"
