#include "packages/atomic_file.h"

#include "tests/unit/packages/disk_limit.h"
#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/links.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

/// Both writers, by name of the row: from memory, and from a range of an open file.
class AtomicFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void writesANewFile_data() { addWriters(); }
    void writesANewFile();
    void replacesAnOldFile_data() { addWriters(); }
    void replacesAnOldFile();
    void replacedFileKeepsItsPermissions_data() { addWriters(); }
    void replacedFileKeepsItsPermissions();
    void writesAnEmptyFile_data() { addWriters(); }
    void writesAnEmptyFile();
    void identicalContentIsNotWrittenAgain_data() { addWriters(); }
    void identicalContentIsNotWrittenAgain();
    void identicalContentNeedsNoRoom_data() { addWriters(); }
    void identicalContentNeedsNoRoom();
    void sameSizeOtherContentIsReplaced_data() { addWriters(); }
    void sameSizeOtherContentIsReplaced();
    void longNamesAreNeverCut_data();
    void longNamesAreNeverCut();
    void targetOutsideTheRootIsRefused_data() { addWriters(); }
    void targetOutsideTheRootIsRefused();
    void linkIsRefused_data();
    void linkIsRefused();
    void folderInPlaceOfTheFile_data() { addWriters(); }
    void folderInPlaceOfTheFile();
    void fileInPlaceOfTheFolder_data() { addWriters(); }
    void fileInPlaceOfTheFolder();
    void fullDiskKeepsTheOldFile_data();
    void fullDiskKeepsTheOldFile();
    void fullDiskLeavesNoFolders_data() { addWriters(); }
    void fullDiskLeavesNoFolders();
    void rangeIsCutOutExactly();
    void rangeBeyondTheEndFails();
    void negativeLengthFails();

    void pendingFileLeavesNothingWhenDropped();
    void pendingFileLeavesNothingWhenDiscarded();
    void pendingFileShowsNothingBeforeCommit();
    void pendingFileCannotBeWrittenBeforeOpen();
    void pendingFileFailsForGoodAfterAShortWrite();
    void pendingFileSeesALinkOfTheMeantime();
    void pendingFileKeepsAFolderThatSomethingMovedInto();

private:
    enum Writer { FromMemory, FromFile };
    static void addWriters();
    bool write(const QString &target, const QByteArray &bytes);

    std::optional<QTemporaryDir> folder_;
    QString root_;
    QString target_;
};

void AtomicFileTest::init()
{
    folder_.emplace();
    root_ = folder_->filePath(u"root"_s);
    target_ = root_ + u"/a/b/target.bin"_s;
}

void AtomicFileTest::cleanup()
{
    folder_.reset();
}

void AtomicFileTest::addWriters()
{
    QTest::addColumn<int>("writer");
    QTest::newRow("from memory") << int(FromMemory);
    QTest::newRow("from a file") << int(FromFile);
}

/// The file writer gets the bytes in the middle of a larger file.
bool AtomicFileTest::write(const QString &target, const QByteArray &bytes)
{
    QFETCH(const int, writer);
    if (writer == FromMemory)
        return writeFileAtomically(root_, target, bytes);
    QTemporaryDir elsewhere;
    const QString path = elsewhere.filePath(u"source"_s);
    QFile source(path);
    return source.open(QIODevice::ReadWrite) && source.write("before") == 6 &&
           source.write(bytes) == bytes.size() && source.write("after") == 5 && source.flush() &&
           copyRangeAtomically(root_, target, source, 6, bytes.size());
}

void AtomicFileTest::writesANewFile()
{
    const QByteArray bytes = QByteArray("payload").repeated(200'000);
    QVERIFY(write(target_, bytes));
    QCOMPARE(fileContent(target_), bytes);
    QCOMPARE(treeBelow(root_).keys(), QStringList({u"a"_s, u"a/b"_s, u"a/b/target.bin"_s}));
}

void AtomicFileTest::replacesAnOldFile()
{
    putFile(target_, "old");
    QVERIFY(write(target_, "the new one"));
    QCOMPARE(fileContent(target_), "the new one");
    QCOMPARE(treeBelow(root_).size(), 3);
}

void AtomicFileTest::writesAnEmptyFile()
{
    QVERIFY(write(target_, QByteArray()));
    QVERIFY(QFileInfo(target_).isFile());
    QCOMPARE(QFileInfo(target_).size(), 0);
}

void AtomicFileTest::identicalContentIsNotWrittenAgain()
{
    const QByteArray bytes = QByteArray("same").repeated(100'000);
    QVERIFY(write(target_, bytes));
    const QByteArray stamp = fileStamp(target_);
    QVERIFY(write(target_, bytes));
    QCOMPARE(fileStamp(target_), stamp);
}

void AtomicFileTest::identicalContentNeedsNoRoom()
{
    putFile(target_, "same");
    // The source of the file writer is 15 bytes itself.
    const DiskLimit limit(15);
    QVERIFY(write(target_, "same"));
}

void AtomicFileTest::sameSizeOtherContentIsReplaced()
{
    const QByteArray old = QByteArray(600'000, 'x') + 'a';
    const QByteArray fresh = QByteArray(600'000, 'x') + 'b';
    putFile(target_, old);
    QVERIFY(write(target_, fresh));
    QCOMPARE(fileContent(target_), fresh);
}

void AtomicFileTest::longNamesAreNeverCut_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("writer");
    for (const int length : {248, 249, 255, 256}) {
        QTest::addRow("%d bytes from memory", length) << length << int(FromMemory);
        QTest::addRow("%d bytes from a file", length) << length << int(FromFile);
    }
}

void AtomicFileTest::longNamesAreNeverCut()
{
    QFETCH(const int, length);
    const QString path = u"a/"_s + QString(length, u'n');
    const bool isWritten = write(root_ + u'/' + path, "bytes");
    QVERIFY(isWritten || length > 248);
    QCOMPARE(treeBelow(root_).keys(), isWritten ? QStringList({u"a"_s, path}) : QStringList());
}

void AtomicFileTest::replacedFileKeepsItsPermissions()
{
    putFile(target_, "old");
    QVERIFY(QFile::setPermissions(target_, QFile::ReadOwner | QFile::WriteOwner));
    const QFile::Permissions before = QFile::permissions(target_);
    QVERIFY(write(target_, "the new one"));
    QCOMPARE(QFile::permissions(target_), before);
}

void AtomicFileTest::targetOutsideTheRootIsRefused()
{
    QVERIFY(!write(folder_->filePath(u"outside/x"_s), "bytes"));
    QVERIFY(!write(root_ + u"/../outside/x"_s, "bytes"));
    QVERIFY(!write(root_ + u"-other/x"_s, "bytes"));
    QVERIFY(treeBelow(folder_->path()).isEmpty());
}

void AtomicFileTest::linkIsRefused_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<int>("writer");
    for (const QString &link : {u"root"_s, u"root/a"_s, u"root/a/b"_s, u"root/a/b/target.bin"_s}) {
        QTest::newRow(qPrintable(link + u" from memory"_s)) << link << int(FromMemory);
        QTest::newRow(qPrintable(link + u" from a file"_s)) << link << int(FromFile);
    }
}

void AtomicFileTest::linkIsRefused()
{
    QFETCH(const QString, link);
    const QString path = folder_->filePath(link);
    putFile(folder_->filePath(u"outside/a/b/target.bin"_s), "precious");
    QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
    const bool isFile = link.endsWith(u".bin"_s);
    const QString outside = isFile ? u"outside/a/b/target.bin"_s : u"outside"_s;
    QVERIFY(makeLink(folder_->filePath(outside), path));
    const auto before = treeBelow(folder_->path());
    QVERIFY(!write(target_, "bytes"));
    QCOMPARE(treeBelow(folder_->path()), before);
}

void AtomicFileTest::folderInPlaceOfTheFile()
{
    QVERIFY(QDir().mkpath(target_));
    const auto before = treeBelow(root_);
    QVERIFY(!write(target_, "bytes"));
    QCOMPARE(treeBelow(root_), before);
}

void AtomicFileTest::fileInPlaceOfTheFolder()
{
    putFile(root_ + u"/a"_s, "a file");
    const auto before = treeBelow(root_);
    QVERIFY(!write(target_, "bytes"));
    QCOMPARE(treeBelow(root_), before);
}

void AtomicFileTest::fullDiskKeepsTheOldFile_data()
{
    QTest::addColumn<qint64>("room");
    QTest::newRow("no byte fits") << qint64(0);
    QTest::newRow("one byte fits") << qint64(1);
    QTest::newRow("all but one fit") << qint64(999'999);
}

void AtomicFileTest::fullDiskKeepsTheOldFile()
{
    QFETCH(const qint64, room);
    putFile(target_, "old and good");
    const auto before = treeBelow(root_);
    {
        const DiskLimit limit(room);
        QVERIFY(!writeFileAtomically(root_, target_, QByteArray(1'000'000, 'n')));
    }
    QCOMPARE(treeBelow(root_), before);
    QVERIFY(writeFileAtomically(root_, target_, QByteArray(1'000'000, 'n')));
    QCOMPARE(QFileInfo(target_).size(), 1'000'000);
}

void AtomicFileTest::fullDiskLeavesNoFolders()
{
    const QByteArray bytes(1'000'000, 'n');
    QFile source(folder_->filePath(u"source"_s));
    QVERIFY(source.open(QIODevice::ReadWrite) && source.write(bytes) == bytes.size() && source.flush());
    QFETCH(const int, writer);
    const DiskLimit limit(500'000);
    if (writer == FromMemory)
        QVERIFY(!writeFileAtomically(root_, target_, bytes));
    else
        QVERIFY(!copyRangeAtomically(root_, target_, source, 0, bytes.size()));
    QVERIFY(!QFileInfo::exists(root_));
}

void AtomicFileTest::rangeIsCutOutExactly()
{
    const QByteArray bytes = QByteArray("0123456789").repeated(100'000);
    putFile(folder_->filePath(u"source"_s), bytes);
    QFile source(folder_->filePath(u"source"_s));
    QVERIFY(source.open(QIODevice::ReadOnly));
    QVERIFY(copyRangeAtomically(root_, target_, source, 3, 700'001));
    QCOMPARE(fileContent(target_), bytes.sliced(3, 700'001));
}

void AtomicFileTest::rangeBeyondTheEndFails()
{
    putFile(folder_->filePath(u"source"_s), "0123456789");
    putFile(target_, "old");
    QFile source(folder_->filePath(u"source"_s));
    QVERIFY(source.open(QIODevice::ReadOnly));
    QVERIFY(!copyRangeAtomically(root_, target_, source, 5, 6));
    QVERIFY(!copyRangeAtomically(root_, target_, source, 11, 1));
    QCOMPARE(fileContent(target_), "old");
    QCOMPARE(treeBelow(root_).size(), 3);
}

void AtomicFileTest::negativeLengthFails()
{
    putFile(folder_->filePath(u"source"_s), "0123456789");
    QFile source(folder_->filePath(u"source"_s));
    QVERIFY(source.open(QIODevice::ReadOnly));
    QVERIFY(!copyRangeAtomically(root_, target_, source, 0, -1));
    QVERIFY(!QFileInfo::exists(target_));
}

void AtomicFileTest::pendingFileLeavesNothingWhenDropped()
{
    {
        PendingFile file(root_, target_);
        QVERIFY(file.open());
        QVERIFY(file.write("bytes"));
        QVERIFY(QFileInfo::exists(root_ + u"/a/b"_s));
    }
    QVERIFY(treeBelow(folder_->path()).isEmpty());
}

void AtomicFileTest::pendingFileLeavesNothingWhenDiscarded()
{
    putFile(target_, "old");
    PendingFile file(root_, target_);
    QVERIFY(file.open());
    QVERIFY(file.write("bytes"));
    file.discard();
    QVERIFY(!file.commit());
    QCOMPARE(fileContent(target_), "old");
    QCOMPARE(treeBelow(root_).size(), 3);
}

void AtomicFileTest::pendingFileShowsNothingBeforeCommit()
{
    PendingFile file(root_, target_);
    QVERIFY(file.open());
    QVERIFY(file.write("by"));
    QVERIFY(file.write("tes"));
    QVERIFY(!QFileInfo::exists(target_));
    QVERIFY(file.commit());
    QCOMPARE(fileContent(target_), "bytes");
    QVERIFY(!file.write("more"));
    QVERIFY(!file.commit());
    QCOMPARE(fileContent(target_), "bytes");
}

void AtomicFileTest::pendingFileCannotBeWrittenBeforeOpen()
{
    PendingFile file(root_, target_);
    QVERIFY(!file.write("bytes"));
    QVERIFY(!file.commit());
    QVERIFY(treeBelow(folder_->path()).isEmpty());
}

void AtomicFileTest::pendingFileFailsForGoodAfterAShortWrite()
{
    PendingFile file(root_, target_);
    QVERIFY(file.open());
    {
        const DiskLimit limit(10);
        QVERIFY(!file.write(QByteArray(20, 'n')));
    }
    QVERIFY(!file.write("room again"));
    QVERIFY(!file.commit());
    QVERIFY(treeBelow(folder_->path()).isEmpty());
}

void AtomicFileTest::pendingFileSeesALinkOfTheMeantime()
{
    putFile(folder_->filePath(u"outside/target.bin"_s), "precious");
    PendingFile file(root_, target_);
    QVERIFY(file.open());
    QVERIFY(file.write("bytes"));
    if (!QDir().rename(root_ + u"/a/b"_s, root_ + u"/a/moved"_s)) {
        QVERIFY(SystemKeepsOpenFolders);
        return;
    }
    QVERIFY(makeLink(folder_->filePath(u"outside"_s), root_ + u"/a/b"_s));
    QVERIFY(!file.commit());
    QCOMPARE(treeBelow(folder_->filePath(u"outside"_s)).size(), 1);
    QCOMPARE(fileContent(folder_->filePath(u"outside/target.bin"_s)), "precious");
}

void AtomicFileTest::pendingFileKeepsAFolderThatSomethingMovedInto()
{
    {
        PendingFile file(root_, target_);
        QVERIFY(file.open());
        putFile(root_ + u"/a/other"_s, "bytes");
    }
    QCOMPARE(treeBelow(root_).keys(), QStringList({u"a"_s, u"a/other"_s}));
}

QTEST_GUILESS_MAIN(AtomicFileTest)
#include "atomic_file_test.moc"
