#include "tests/unit/packages/extraction_folder.h"

#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QString samplePath(const QString &path)
{
    return QStringLiteral(QUILLMAR_SAMPLES "/") + path;
}

QByteArray sample(const QString &folder, const QString &archive)
{
    return fileContent(samplePath(folder + u'/' + archive + u".zip"_s));
}

QMap<QString, QByteArray> sourceFiles()
{
    QMap<QString, QByteArray> files;
    for (const auto &[path, what] : treeBelow(samplePath(u"source"_s)).asKeyValueRange()) {
        if (isFile(what))
            files.insert(path, fileContent(samplePath(u"source/"_s + path)));
    }
    return files;
}

} // namespace

/// Archives as packers in the wild write them; make_samples.py lets them.
class ArchiveToolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void extracts_data();
    void extracts();
    void refuses_data();
    void refuses();
};

void ArchiveToolsTest::extracts_data()
{
    QTest::addColumn<QString>("archive");
    for (const char *archive : {"zip", "zip, stored", "zip, best", "zip, without folder entries",
                                "zip, without extra fields", "7z", "7z, stored", "7z, ultra", "bsdtar",
                                "bsdtar, stored", "python", "python, each level", "python, into a pipe"})
        QTest::newRow(archive) << QString::fromLatin1(archive);
}

void ArchiveToolsTest::extracts()
{
    QFETCH(const QString, archive);
    const QByteArray package = sample(u"good"_s, archive);
    const QMap<QString, QByteArray> files = sourceFiles();
    QVERIFY(!package.isEmpty());
    QCOMPARE(files.size(), 6);
    ExtractionFolder folder;
    folder.storePackage(package);
    const ProductFileResult result = folder.extractFolder(u"pack"_s);
    QCOMPARE(result.error, QString());
    QVERIFY(folder.extracted() == files);
}

void ArchiveToolsTest::refuses_data()
{
    const char *const invalid = "Component.InvalidArchive";
    const char *const unsafe = "Component.UnsafePath";
    QTest::addColumn<QString>("archive");
    QTest::addColumn<QString>("key");
    const std::pair<const char *, const char *> refusals[] = {
        {"zip, encrypted", invalid},      {"zip, ZIP64 forced", invalid},
        {"zip, link kept", unsafe},       {"zip, bzip2", invalid},
        {"zip, self-extractor", invalid}, {"7z, LZMA", invalid},
        {"7z, encrypted", invalid},       {"7z, another format", invalid},
        {"bsdtar, into a pipe", invalid}, {"bsdtar, another format", invalid},
        {"python, unsafe name", unsafe},  {"python, name twice", unsafe},
    };
    for (const auto &[archive, key] : refusals)
        QTest::newRow(archive) << QString::fromLatin1(archive) << QString::fromLatin1(key);
}

void ArchiveToolsTest::refuses()
{
    QFETCH(const QString, archive);
    QFETCH(const QString, key);
    const QByteArray package = sample(u"refused"_s, archive);
    QVERIFY(!package.isEmpty());
    ExtractionFolder folder;
    folder.storePackage(package);
    const auto before = folder.snapshot();
    QCOMPARE(folder.extractFile(u"pack/text.txt"_s).error, key);
    QVERIFY(folder.snapshot() == before);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::ArchiveToolsTest)
#include "archive_tools_test.moc"
