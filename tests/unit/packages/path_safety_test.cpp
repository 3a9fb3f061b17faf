#include "packages/path_safety.h"

#include "tests/unit/packages/links.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

class PathSafetyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void productKey_data();
    void productKey();
    void relativePath_data();
    void relativePath();
    void controlCharactersAreRefused();
    void deviceNamesAreRefusedInEveryCase();
    void rootItselfIsInside();
    void pathThatDoesNotExistYetIsInside();
    void dotDotOutOfTheRootIsOutside();
    void siblingWithTheSamePrefixIsOutside();
    void emptyPathIsOutside();
    void prefixIgnoresCase();
    void linkAnywhereIsRefused_data();
    void linkAnywhereIsRefused();
    void rootThroughALinkedFolderIsRefused();
    void persianFolderNames();
};

void PathSafetyTest::productKey_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("safe");
    const auto good = [](const QString &key) {
        QTest::newRow(qPrintable(u"good "_s + key.left(20))) << key << true;
    };
    const auto bad = [](const char *name, const QString &key) { QTest::newRow(name) << key << false; };
    for (const QString &key : {u"a"_s, u"Z"_s, u"0"_s, u"my.pack-1_2"_s, u"CONSOLE"_s, u"COM10"_s, u"a.con"_s,
                               u"a-"_s, u"a_"_s, u"nul-1"_s, u"LPT"_s, u"aux_"_s})
        good(key);
    QTest::newRow("128 characters") << QString(128, u'k') << true;
    bad("129 characters", QString(129, u'k'));
    bad("empty", {});
    bad("leading hyphen", u"-abc"_s);
    bad("leading underscore", u"_x"_s);
    bad("leading dot", u".a"_s);
    bad("two dots inside", u"a..b"_s);
    bad("trailing dot", u"abc."_s);
    bad("trailing blank", u"abc "_s);
    bad("trailing line break", u"abc\n"_s);
    bad("trailing carriage return", u"abc\r"_s);
    bad("trailing NUL", QString(u"abc"_s + QChar(0)));
    bad("NUL inside", QString(u"a"_s + QChar(0) + u"b"_s));
    bad("line break inside", u"a\nb"_s);
    bad("Lpt9", u"Lpt9"_s);
    bad("con", u"con"_s);
    bad("Aux.backup", u"Aux.backup"_s);
    bad("com1.x", u"com1.x"_s);
    bad("COM0", u"COM0"_s);
    bad("prn", u"prn"_s);
    bad("nul", u"NUL"_s);
    bad("dot", u"."_s);
    bad("dot dot", u".."_s);
    bad("traversal", u"../x"_s);
    bad("traversal inside", u"a/../../x"_s);
    bad("backslash traversal", u"..\\x"_s);
    bad("slash", u"a/b"_s);
    bad("backslash", u"a\\b"_s);
    bad("absolute", u"/etc/passwd"_s);
    bad("drive", u"C:x"_s);
    bad("stream", u"a:b"_s);
    bad("tilde", u"~"_s);
    bad("percent", u"%2e%2e"_s);
    bad("wildcard", u"a*"_s);
    bad("question mark", u"a?"_s);
    bad("quote", u"a\"b"_s);
    bad("angle", u"<a>"_s);
    bad("pipe", u"a|b"_s);
    bad("dollar", u"$HOME"_s);
    bad("semicolon", u"a;b"_s);
    bad("Persian letters", u"دانلود"_s);
    bad("Persian digits", u"a۱"_s);
    bad("full-width letter", u"ａ"_s);
    bad("Kelvin sign", u"\u212A"_s);
    bad("long s", u"a\u017F"_s);
    bad("combining accent", u"a\u0301"_s);
    bad("zero-width joiner", u"a\u200D"_s);
    bad("right-to-left override", u"a\u202Eb"_s);
    bad("byte order mark", u"\uFEFFa"_s);
    bad("fraction slash", u"a\u2044b"_s);
    bad("one-dot leader", u"a\u2024\u2024b"_s);
    bad("emoji", u"a😀"_s);
    bad("lone surrogate", QString(u"a"_s + QChar(0xD800)));
}

void PathSafetyTest::productKey()
{
    QFETCH(const QString, key);
    QTEST(isSafeProductKey(key), "safe");
}

void PathSafetyTest::relativePath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    const auto kept = [](const char *name, const QString &path) { QTest::newRow(name) << path << path; };
    const auto refused = [](const char *name, const QString &path) {
        QTest::newRow(name) << path << QString();
    };
    QTest::newRow("backslash becomes slash") << u"overlays\\frame.png"_s << u"overlays/frame.png"_s;
    QTest::newRow("one trailing slash goes") << u"overlays/"_s << u"overlays"_s;
    QTest::newRow("one trailing backslash goes") << u"overlays\\"_s << u"overlays"_s;
    kept("plain", u"a/b/c.png"_s);
    kept("case is kept", u"A/b/C.PNG"_s);
    kept("Con1 is no device", u"a/Con1.png"_s);
    kept("com10", u"com10/x"_s);
    kept("hidden", u".hidden/a"_s);
    kept("three dots inside a name", u"a...b"_s);
    kept("leading blank", u" a"_s);
    kept("Persian", u"پوسته/قاب وبکم.png"_s);
    kept("emoji", u"😀/x"_s);
    kept("delete character", u"a\u007F"_s);
    QTest::newRow("1024 units") << QString(1024, u'p') << QString(1024, u'p');
    QTest::newRow("1024 units after the slash") << QString(QString(1024, u'p') + u'/') << QString(1024, u'p');
    refused("1025 units", QString(1025, u'p'));
    refused("empty", {});
    refused("slash only", u"/"_s);
    refused("two slashes", u"//"_s);
    refused("two trailing slashes", u"a//"_s);
    refused("empty segment", u"a//b"_s);
    refused("absolute", u"/abs"_s);
    refused("absolute after the backslash", u"\\abs"_s);
    refused("share", u"\\\\server\\share"_s);
    refused("drive", u"C:/x"_s);
    refused("drive without slash", u"C:x"_s);
    refused("stream", u"a.png:hidden"_s);
    refused("dot", u"."_s);
    refused("dot dot", u".."_s);
    refused("dot segment", u"a/./b"_s);
    refused("dot dot segment", u"a/../b"_s);
    refused("leading dot dot", u"../x"_s);
    refused("trailing dot dot", u"a/.."_s);
    refused("trailing dot dot slash", u"a/../"_s);
    refused("backslash dot dot", u"a\\..\\..\\x"_s);
    refused("three dots", u"..."_s);
    refused("dot and blank at the end", u"a/b. "_s);
    refused("dot at the end", u"a/b."_s);
    refused("blank at the end", u"a/b "_s);
    refused("blank at the end of a folder", u"a /b"_s);
    refused("blank only", u" "_s);
    refused("device", u"a/con.png"_s);
    refused("device with a digit", u"LPT1"_s);
    refused("device folder", u"nul/x"_s);
    refused("nul.png", u"nul.png"_s);
    refused("tab", u"a\tb"_s);
    refused("line break", u"a\nb"_s);
    refused("device and line break", u"con\n"_s);
    for (const QChar c : u":<>\"|?*"_s)
        refused(qPrintable(u"character "_s + c), u"a/x"_s + c + u"y"_s);
}

void PathSafetyTest::relativePath()
{
    QFETCH(const QString, path);
    QTEST(safeRelativePath(path), "expected");
}

void PathSafetyTest::controlCharactersAreRefused()
{
    for (char16_t c = 0; c < u' '; ++c) {
        QVERIFY2(safeRelativePath(u"a"_s + QChar(c) + u"b"_s).isEmpty(), qPrintable(QString::number(c)));
        QVERIFY2(safeRelativePath(u"ab"_s + QChar(c)).isEmpty(), qPrintable(QString::number(c)));
    }
}

void PathSafetyTest::deviceNamesAreRefusedInEveryCase()
{
    for (const QString &stem :
         {u"con"_s, u"prn"_s, u"aux"_s, u"nul"_s, u"com0"_s, u"com9"_s, u"lpt0"_s, u"lpt5"_s}) {
        for (const QString &name :
             {stem, stem.toUpper(), QString(stem + u".txt"_s), QString(stem + u".tar.gz"_s)}) {
            QVERIFY2(safeRelativePath(u"a/"_s + name + u"/b"_s).isEmpty(), qPrintable(name));
            QVERIFY2(!isSafeProductKey(name), qPrintable(name));
        }
        QCOMPARE(safeRelativePath(stem + u"x"_s), QString(stem + u"x"_s));
    }
}

void PathSafetyTest::rootItselfIsInside()
{
    const QTemporaryDir folder;
    QVERIFY(isInsideRoot(folder.path(), folder.path()));
    QVERIFY(isInsideRoot(folder.path(), folder.path() + u"/."_s));
    QVERIFY(isInsideRoot(folder.path(), folder.path() + u'/'));
}

void PathSafetyTest::pathThatDoesNotExistYetIsInside()
{
    const QTemporaryDir folder;
    QVERIFY(isInsideRoot(folder.path(), folder.path() + u"/x/y"_s));
    QVERIFY(isInsideRoot(folder.path() + u"/later"_s, folder.path() + u"/later/x"_s));
}

void PathSafetyTest::dotDotOutOfTheRootIsOutside()
{
    const QTemporaryDir folder;
    QVERIFY(!isInsideRoot(folder.path(), folder.path() + u"/../elsewhere"_s));
    QVERIFY(!isInsideRoot(folder.path(), folder.path() + u"/a/../../elsewhere"_s));
    QVERIFY(!isInsideRoot(folder.path(), folder.path() + u"/.."_s));
    QVERIFY(isInsideRoot(folder.path(), folder.path() + u"/a/../b"_s));
}

void PathSafetyTest::siblingWithTheSamePrefixIsOutside()
{
    const QTemporaryDir folder;
    QVERIFY(!isInsideRoot(folder.path(), folder.path() + u"-other/x"_s));
    QVERIFY(!isInsideRoot(folder.path() + u"/a"_s, folder.path()));
}

void PathSafetyTest::emptyPathIsOutside()
{
    const QTemporaryDir folder;
    QVERIFY(!isInsideRoot(folder.path(), {}));
}

void PathSafetyTest::prefixIgnoresCase()
{
    const QTemporaryDir folder;
    QVERIFY(isInsideRoot(folder.path() + u"/Root"_s, folder.path() + u"/rOOT/x"_s));
    QVERIFY(!isInsideRoot(folder.path() + u"/Root"_s, folder.path() + u"/rOOT"_s));
}

void PathSafetyTest::linkAnywhereIsRefused_data()
{
    QTest::addColumn<QString>("link");   // below the temporary folder
    QTest::addColumn<QString>("target"); // of the link, relative to its own folder
    QTest::newRow("the path itself") << u"up/root/a/b/file"_s << u"real"_s;
    QTest::newRow("its folder") << u"up/root/a/b"_s << u"real"_s;
    QTest::newRow("folder above it") << u"up/root/a"_s << u"real"_s;
    QTest::newRow("the root") << u"up/root"_s << u"real"_s;
    QTest::newRow("folder above the root") << u"up"_s << u"real"_s;
    if constexpr (LinksMayDangle) {
        QTest::newRow("dangling") << u"up/root/a/b/file"_s << u"nowhere"_s;
        QTest::newRow("dangling folder") << u"up/root/a"_s << u"nowhere"_s;
        QTest::newRow("loop") << u"up/root/a"_s << u"a"_s;
    }
}

void PathSafetyTest::linkAnywhereIsRefused()
{
    QFETCH(const QString, link);
    QFETCH(const QString, target);
    const QTemporaryDir folder;
    const QString root = folder.filePath(u"up/root"_s);
    const QString linkPath = folder.filePath(link);
    const QString parent = QFileInfo(linkPath).absolutePath();
    QVERIFY(QDir().mkpath(parent + u"/real"_s));
    QVERIFY(isInsideRoot(root, root + u"/a/b/file"_s));
    QVERIFY(makeLink(target, linkPath));
    QVERIFY(!isInsideRoot(root, root + u"/a/b/file"_s));
}

void PathSafetyTest::rootThroughALinkedFolderIsRefused()
{
    const QTemporaryDir folder;
    QVERIFY(QDir().mkpath(folder.filePath(u"real/root"_s)));
    QVERIFY(makeLink(folder.filePath(u"real"_s), folder.filePath(u"linked"_s)));
    const QString root = folder.filePath(u"linked/root"_s);
    QVERIFY(!isInsideRoot(root, root));
    QVERIFY(isInsideRoot(folder.filePath(u"real/root"_s), folder.filePath(u"real/root/x"_s)));
}

void PathSafetyTest::persianFolderNames()
{
    const QTemporaryDir folder;
    const QString root = folder.filePath(u"دانلود/Quillmar"_s);
    QVERIFY(QDir().mkpath(root));
    QVERIFY(isInsideRoot(root, root + u"/پوسته/قاب.png"_s));
}

QTEST_GUILESS_MAIN(PathSafetyTest)
#include "path_safety_test.moc"
