#include "tests/unit/catalogue/closed_folder.h"
#include "tests/unit/catalogue/direct_download_fixture.h"
#include "tests/unit/packages/disk_limit.h"
#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/links.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// What a name becomes where '\\' and ':' part folders and files; elsewhere it is refused.
QString nameOnWindows([[maybe_unused]] const QString &name)
{
#ifdef Q_OS_WIN
    return name;
#else
    return {};
#endif
}

/// A name that no file on Windows can have.
QString nameElsewhere([[maybe_unused]] const QString &name)
{
#ifdef Q_OS_WIN
    return {};
#else
    return name;
#endif
}

} // namespace

/// What a download shows and leaves when the disk or the name of the file is not as it should be. The next
/// one works.
class DirectDownloadPlaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void hostileName_data();
    void hostileName();
    void fullDisk();
    void fullDiskKeepsTheOldFile();
    void folderInPlaceOfTheFile();
    void fileInPlaceOfTheFolder();
    void linkInPlaceOfTheFile_data();
    void linkInPlaceOfTheFile();
    void linkInPlaceOfTheFolder();
    void readOnlyFolder();

private:
    void expectSaveFailure();
    void expectSuccessNow();

    std::optional<DirectDownloadFixture> f_;
};

void DirectDownloadPlaceTest::expectSaveFailure()
{
    QCOMPARE(f_->outcome(), u"Download.SaveFailed"_s);
    QCOMPARE(f_->row->status->styleSheet(), u"color: #ff5555;"_s);
    QCOMPARE(f_->row->suffix(), QString());
    QCOMPARE(f_->row->status->toolTip(), QString());
    QCOMPARE(f_->events, QStringList());
}

void DirectDownloadPlaceTest::expectSuccessNow()
{
    f_->serveGood();
    DownloadRow next;
    f_->start(next);
    QCOMPARE(f_->outcomeOf(next), u"Download.Success"_s);
    QCOMPARE(f_->saved(u"Pack 1.zip"_s), f_->bytes);
}

void DirectDownloadPlaceTest::hostileName_data()
{
    QTest::addColumn<QByteArray>("disposition");
    QTest::addColumn<QString>("name"); ///< in the folder; null: not saved
    const auto row = [](const char *title, const QByteArray &disposition, const QString &name = {}) {
        QTest::newRow(title) << disposition << name;
    };
    row("parent folder", "filename=\"../x.zip\"", u"x.zip"_s);
    row("many parent folders", "filename=../../../../../../x.zip", u"x.zip"_s);
    row("absolute", "filename=/etc/passwd", u"passwd"_s);
    row("parent folder of Windows", "filename=\"..\\x\"", nameOnWindows(u"x"_s));
    row("drive", "filename=C:x", nameOnWindows(u"x"_s));
    row("stream", "filename=a.zip:b");
    row("dot", "filename=.");
    row("two dots", "filename=\"..\"");
    row("only dots", "filename=....");
    row("only separators", "filename=\"///\"");
    row("separator at the end", "filename=folder/");
    row("device", "filename=con");
    row("device with a suffix", "filename=\"nul.zip\"");
    row("control character", "filename=\"a\tb\"");
    row("escape, which Qt drops with its header", "filename=\"a\x1b[2Jb\"", u"abc.bin"_s);
    row("zero character, which Qt drops with its header", QByteArray("filename=\"a\0b\"", 14), u"abc.bin"_s);
    row("4,000 characters", "filename=" + QByteArray(4000, 'n'));
    row("256 bytes", "filename=" + QByteArray(256, 'n'));
    row("folder of the cache", "filename=.quillmar-cache");
    row("quotation marks inside", "filename=\"a.zip\"; size=5", nameElsewhere(u"\"a.zip\"; size=5"_s));
    row("semicolon at the end", "filename=\"a.zip\";", nameElsewhere(u"\"a.zip\";"_s));
    row("Persian in UTF-8", "filename=\"بستهٔ شب.zip\"", u"بستهٔ شب.zip"_s);
    row("Latin-1", "filename=\"d\xe9j\xe0.zip\"", u"d\uFFFDj\uFFFD.zip"_s);
    row("continued on the next line", "attachment;\r\n filename=a.zip", u"a.zip"_s);
    row("header smuggled in", "filename=a.zip\r\nContent-Disposition: filename=../../b.zip");
}

void DirectDownloadPlaceTest::hostileName()
{
    QFETCH(const QByteArray, disposition);
    QFETCH(const QString, name);
    putFile(f_->around() + u"/x"_s, "a neighbour");
    f_->serveFile(TlsService::always(DirectDownloadFixture::file("bytes", disposition)));
    const QString key = f_->outcome();
    QMap<QString, QByteArray> tree = treeBelow(f_->around());
    QCOMPARE(tree.take(u"x"_s), "file a neighbour");
    if (QByteArray(QTest::currentDataTag()) == "header smuggled in") {
        // How the two headers are joined is Qt's affair; the file stays in its folder.
        for (const QString &path : tree.keys())
            QVERIFY(QString(u"Downloads/Quillmar/x"_s).startsWith(path) ||
                    path.startsWith("Downloads/Quillmar/"_L1));
        return;
    }
    QCOMPARE(key, name.isNull() ? u"Download.SaveFailed"_s : u"Download.Success"_s);
    if (name.isNull())
        QVERIFY2(tree.isEmpty(), qPrintable(tree.keys().join(u'\n')));
    else
        QCOMPARE(tree.take(QString(u"Downloads/Quillmar/"_s + name)), "file bytes");
}

void DirectDownloadPlaceTest::fullDisk()
{
    {
        const DiskLimit limit(100'000);
        expectSaveFailure();
    }
    QVERIFY(treeBelow(f_->around()).isEmpty());
    expectSuccessNow();
}

void DirectDownloadPlaceTest::fullDiskKeepsTheOldFile()
{
    putFile(f_->folder() + u"/Pack 1.zip"_s, "the old file");
    const DiskLimit limit(100'000);
    expectSaveFailure();
    QCOMPARE(f_->saved(u"Pack 1.zip"_s), "the old file");
    QCOMPARE(QDir(f_->folder()).entryList(QDir::Files | QDir::Hidden), QStringList{u"Pack 1.zip"_s});
}

void DirectDownloadPlaceTest::folderInPlaceOfTheFile()
{
    putFile(f_->folder() + u"/Pack 1.zip/inside"_s, "content");
    const auto before = treeBelow(f_->around());
    expectSaveFailure();
    QCOMPARE(treeBelow(f_->around()), before);
}

void DirectDownloadPlaceTest::fileInPlaceOfTheFolder()
{
    putFile(f_->folder(), "a file");
    const auto before = treeBelow(f_->around());
    expectSaveFailure();
    QCOMPARE(treeBelow(f_->around()), before);
}

void DirectDownloadPlaceTest::linkInPlaceOfTheFile_data()
{
    QTest::addColumn<bool>("isDangling");
    QTest::newRow("to a file") << false;
    if (LinksMayDangle)
        QTest::newRow("dangling") << true;
}

void DirectDownloadPlaceTest::linkInPlaceOfTheFile()
{
    QFETCH(const bool, isDangling);
    const QString outside = f_->around() + u"/outside"_s;
    if (!isDangling)
        putFile(outside, "untouched");
    QVERIFY(QDir().mkpath(f_->folder()));
    QVERIFY(makeLink(outside, f_->folder() + u"/Pack 1.zip"_s));
    const auto before = treeBelow(f_->around());
    expectSaveFailure();
    QCOMPARE(treeBelow(f_->around()), before);
}

void DirectDownloadPlaceTest::linkInPlaceOfTheFolder()
{
    const QString outside = f_->around() + u"/outside"_s;
    QVERIFY(QDir().mkpath(outside) && QDir().mkpath(QFileInfo(f_->folder()).path()));
    QVERIFY(makeLink(outside, f_->folder()));
    const auto before = treeBelow(f_->around());
    expectSaveFailure();
    QCOMPARE(treeBelow(f_->around()), before);
}

void DirectDownloadPlaceTest::readOnlyFolder()
{
    QVERIFY(QDir().mkpath(f_->folder()));
    {
        const ClosedFolder closed(f_->folder());
        f_->makeDownloads(closed.path());
        expectSaveFailure();
    }
    QCOMPARE(QDir(f_->folder()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::DirectDownloadPlaceTest)
#include "direct_download_place_test.moc"
