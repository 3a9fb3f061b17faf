#include "packages/atomic_file.h"
#include "packages/incoming_file.h"
#include "packages/path_safety.h"
#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/links.h"
#include "tests/unit/packages/package_root.h"
#include "tests/unit/packages/second_drive.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

/// Junctions and shortcuts wherever a path could lead through one.
class WindowsLinksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void junctionIsRefused_data();
    void junctionIsRefused();
    void junctionBelowTheRootIsRefused();
    void junctionInPlaceOfAFileIsRefused();
    void junctionBeyond260CharactersIsRefused();
    void shortcutIsRefused();
    void junctionOnAnotherDriveIsRefused();
};

void WindowsLinksTest::junctionIsRefused_data()
{
    QTest::addColumn<QString>("link"); // of this path
    QTest::newRow("the root") << u"up/above/root"_s;
    QTest::newRow("the folder above the root") << u"up/above"_s;
    QTest::newRow("two folders above the root") << u"up"_s;
}

void WindowsLinksTest::junctionIsRefused()
{
    QFETCH(const QString, link);
    const QTemporaryDir folder;
    const QString root = folder.filePath(u"up/above/root"_s);
    putFile(folder.filePath(u"outside/above/root/precious.txt"_s), "must stay");
    QVERIFY(isInsideRoot(root, root + u"/x"_s));
    QVERIFY(QDir().mkpath(QFileInfo(folder.filePath(link)).path()));
    QVERIFY(makeLink(folder.filePath(u"outside"_s), folder.filePath(link)));
    const auto before = treeBelow(folder.path());
    refusesAllIn(root);
    QCOMPARE(treeBelow(folder.path()), before);
}

void WindowsLinksTest::junctionBelowTheRootIsRefused()
{
    const QTemporaryDir folder;
    const QString root = folder.filePath(u"root"_s);
    putFile(folder.filePath(u"outside/precious.txt"_s), "must stay");
    QVERIFY(QDir().mkpath(root));
    QVERIFY(makeLink(folder.filePath(u"outside"_s), root + u"/a"_s));
    const auto before = treeBelow(folder.path());
    QVERIFY(!writeFileAtomically(root, root + u"/a/precious.txt"_s, "evil"));
    QVERIFY(!writeFileAtomically(root, root + u"/a/b/new.txt"_s, "evil"));
    QVERIFY(!makeFolder(root, root + u"/a/b"_s));
    QCOMPARE(treeBelow(folder.path()), before);
}

void WindowsLinksTest::junctionInPlaceOfAFileIsRefused()
{
    const QTemporaryDir folder;
    QVERIFY(QDir().mkpath(folder.filePath(u"outside"_s)));
    QVERIFY(makeLink(folder.filePath(u"outside"_s), folder.filePath(u"file.zip"_s)));
    const auto before = treeBelow(folder.path());
    IncomingFile file(folder.path());
    file.setName(u"file.zip"_s);
    file.append("evil");
    QCOMPARE(file.store().error, u"Download.SaveFailed"_s);
    QCOMPARE(treeBelow(folder.path()), before);
}

/// Without the long form of a path the system does not say what is there.
void WindowsLinksTest::junctionBeyond260CharactersIsRefused()
{
    const QTemporaryDir folder;
    const QString deep = folder.path() + u"/a-folder-with-a-long-name"_s.repeated(12);
    QVERIFY(deep.size() > 300);
    QVERIFY(QDir().mkpath(folder.filePath(u"outside"_s)));
    QVERIFY(QDir().mkpath(deep));
    QVERIFY(isInsideRoot(deep, deep + u"/root/x"_s));
    QVERIFY(makeLink(folder.filePath(u"outside"_s), deep + u"/root"_s));
    refusesAllIn(deep + u"/root"_s);
    QVERIFY(treeBelow(folder.filePath(u"outside"_s)).isEmpty());
}

/// Qt takes the file of a shortcut for a link to what the shortcut names, and would write there.
void WindowsLinksTest::shortcutIsRefused()
{
    const QTemporaryDir folder;
    const QString root = folder.filePath(u"root"_s);
    const QString precious = folder.filePath(u"precious.txt"_s);
    const QString shortcut = root + u"/shortcut.lnk"_s;
    putFile(precious, "must stay");
    QVERIFY(QDir().mkpath(root));
    QVERIFY(QFile::link(precious, shortcut));
    QVERIFY(!writeFileAtomically(root, shortcut, "evil"));
    IncomingFile file(root);
    file.setName(u"shortcut.lnk"_s);
    file.append("evil");
    QCOMPARE(file.store().error, u"Download.SaveFailed"_s);
    QCOMPARE(fileContent(precious), "must stay");
}

void WindowsLinksTest::junctionOnAnotherDriveIsRefused()
{
    const QTemporaryDir folder;
    const SecondDrive drive(folder.path());
    QVERIFY(!drive.name().isEmpty());
    QVERIFY(QDir().mkpath(folder.filePath(u"outside"_s)));
    QVERIFY(makeLink(folder.filePath(u"outside"_s), folder.filePath(u"Quillmar"_s)));
    refusesAllIn(drive.name() + u"/Quillmar"_s);
    QVERIFY(treeBelow(folder.filePath(u"outside"_s)).isEmpty());
}

QTEST_GUILESS_MAIN(WindowsLinksTest)
#include "windows_links_test.moc"
