#include "tests/support/zip_builder/archive_samples.h"
#include "tests/unit/packages/extraction_folder.h"

#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

/// Every hostile archive through the whole extraction: the right key, and not one byte on disk changed.
class ArchiveRefusalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void malformed_data();
    void malformed() { refuses(u"Component.InvalidArchive"_s); }
    void unsafe_data() { addRows(archivesWithUnsafeEntries()); }
    void unsafe() { refuses(u"Component.UnsafePath"_s); }
    void malformedWeighsMoreThanUnsafe_data() { addRows(archivesWithUnsafeEntries()); }
    void malformedWeighsMoreThanUnsafe();
    void damaged_data() { addRows(archivesWithDamagedData()); }
    void damaged() { refuses(u"Component.InvalidArchive"_s); }
    void damageElsewhereDoesNotMatter_data() { addRows(archivesWithDamagedData()); }
    void damageElsewhereDoesNotMatter();
    void truncated_data();
    void truncated() { refuses(u"Component.InvalidArchive"_s); }

private:
    static void addRows(const QList<SampleArchive> &archives);
    static void refuses(const QString &key);
};

namespace
{

/// A folder component creates its folders in archive order, so an empty one may stand before the flaw shows.
QMap<QString, QByteArray> withoutFolders(QMap<QString, QByteArray> snapshot)
{
    snapshot.removeIf([](const auto &entry) { return isFolder(entry.value()); });
    return snapshot;
}

} // namespace

void ArchiveRefusalTest::addRows(const QList<SampleArchive> &archives)
{
    QTest::addColumn<QByteArray>("archive");
    for (const SampleArchive &sample : archives)
        QTest::newRow(sample.name.constData()) << sample.bytes;
}

void ArchiveRefusalTest::refuses(const QString &key)
{
    QFETCH(QByteArray, archive);
    ExtractionFolder folder;
    folder.storePackage(archive);
    for (const bool withOldResult : {false, true}) {
        if (withOldResult) {
            folder.putComponent(u"pack/wanted.txt"_s, "good from an earlier time");
            folder.putComponent(u"pack/other.bin"_s, "good as well");
        }
        const auto before = folder.snapshot();
        const ProductFileResult file = folder.extractFile(u"pack/wanted.txt"_s);
        QCOMPARE(file.error, key);
        QVERIFY(file.path.isEmpty());
        QVERIFY(folder.snapshot() == before);

        const ProductFileResult whole = folder.extractFolder(u"pack"_s);
        QCOMPARE(whole.error, key);
        QVERIFY(whole.path.isEmpty());
        QVERIFY(withoutFolders(folder.snapshot()) == withoutFolders(before));
    }
}

void ArchiveRefusalTest::malformed_data()
{
    addRows(archivesWithBadFraming() + archivesWithBadDirectory() + archivesWithBadLocals());
}

void ArchiveRefusalTest::malformedWeighsMoreThanUnsafe()
{
    QFETCH(QByteArray, archive);
    ExtractionFolder folder;
    folder.storePackage(archive + '\0');
    QCOMPARE(folder.extractFile(u"pack/wanted.txt"_s).error, u"Component.InvalidArchive"_s);
}

void ArchiveRefusalTest::damageElsewhereDoesNotMatter()
{
    QFETCH(QByteArray, archive);
    ExtractionFolder folder;
    folder.storePackage(archive);
    const ProductFileResult result = folder.extractFile(u"pack/other.bin"_s);
    QCOMPARE(result.error, QString());
    QCOMPARE(fileContent(result.path), noise(300));
}

void ArchiveRefusalTest::truncated_data()
{
    QTest::addColumn<QByteArray>("archive");
    const QByteArray good = baseArchive().build();
    for (qsizetype length = 0; length < good.size(); ++length) {
        const bool atBoundary = good.mid(length).startsWith("PK") || length + 1 == good.size();
        if (atBoundary || length % 16 == 0)
            QTest::addRow("%lld bytes", static_cast<long long>(length)) << good.first(length);
    }
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::ArchiveRefusalTest)
#include "archive_refusal_test.moc"
