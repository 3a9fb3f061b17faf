#include "tests/unit/packages/extraction_folder.h"

#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

struct Sample {
    const char *name;
    const char *tool;
    const char *key = ""; ///< of the refusal
};

/// A row for each archive whose tool is there.
void addRows(const QList<Sample> &samples)
{
    QTest::addColumn<QString>("key");
    const QByteArrayList tools = QByteArray(QUILLMAR_TOOLS).split(' ');
    for (const Sample &sample : samples) {
        if (tools.contains(sample.tool))
            QTest::newRow(sample.name) << QString::fromLatin1(sample.key);
    }
}

QString samplePath(const QString &path)
{
    return QStringLiteral(QUILLMAR_SAMPLES "/") + path;
}

/// The archive that the row is named after.
QByteArray sampleOfRow(const QString &folder)
{
    return fileContent(samplePath(folder + u'/' + QString::fromLatin1(QTest::currentDataTag()) + u".zip"_s));
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
    addRows({{"zip", "zip"},
             {"zip, stored", "zip"},
             {"zip, best", "zip"},
             {"zip, without folder entries", "zip"},
             {"zip, without extra fields", "zip"},
             {"7z", "7z"},
             {"7z, stored", "7z"},
             {"7z, ultra", "7z"},
             {"bsdtar", "bsdtar"},
             {"bsdtar, stored", "bsdtar"},
             {"python", "python3"},
             {"python, each level", "python3"},
             {"python, into a pipe", "python3"}});
}

void ArchiveToolsTest::extracts()
{
    const QByteArray archive = sampleOfRow(u"good"_s);
    const QMap<QString, QByteArray> files = sourceFiles();
    QVERIFY(!archive.isEmpty());
    QCOMPARE(files.size(), 6);
    ExtractionFolder folder;
    folder.storePackage(archive);
    const ProductFileResult result = folder.extractFolder(u"pack"_s);
    QCOMPARE(result.error, QString());
    QVERIFY(folder.extracted() == files);
}

void ArchiveToolsTest::refuses_data()
{
    const char *const invalid = "Component.InvalidArchive";
    const char *const unsafe = "Component.UnsafePath";
    addRows({{"zip, encrypted", "zip", invalid},
             {"zip, ZIP64 forced", "zip", invalid},
             {"zip, link kept", "zip", unsafe},
             {"zip, bzip2", "zip", invalid},
             {"zip, self-extractor", "zip", invalid},
             {"7z, LZMA", "7z", invalid},
             {"7z, encrypted", "7z", invalid},
             {"7z, another format", "7z", invalid},
             {"bsdtar, into a pipe", "bsdtar", invalid},
             {"bsdtar, another format", "bsdtar", invalid},
             {"python, unsafe name", "python3", unsafe},
             {"python, name twice", "python3", unsafe}});
}

void ArchiveToolsTest::refuses()
{
    QFETCH(const QString, key);
    const QByteArray archive = sampleOfRow(u"refused"_s);
    QVERIFY(!archive.isEmpty());
    ExtractionFolder folder;
    folder.storePackage(archive);
    const auto before = folder.snapshot();
    QCOMPARE(folder.extractFile(u"pack/text.txt"_s).error, key);
    QVERIFY(folder.snapshot() == before);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::ArchiveToolsTest)
#include "archive_tools_test.moc"
