#include "tests/support/zip_builder/archive_samples.h"
#include "tests/unit/packages/extraction_folder.h"

#include <QRandomGenerator>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr int kSamplesPerArchive = 7000;

ZipBuilder described()
{
    ZipBuilder builder = baseArchive();
    for (ZipItem &item : builder.items) {
        const qsizetype packed = item.deflated ? deflated(item.content).size() : item.content.size();
        item.flags = 8;
        item.trailer = dataDescriptor(item.content, packed, true);
        item.local = [](LocalHeader &local) { local.crc32 = local.compressed_size = local.size = 0; };
    }
    return builder;
}

ZipBuilder commented()
{
    ZipBuilder builder = baseArchive();
    builder.comment = "comment";
    for (ZipItem &item : builder.items)
        item.local_extra = item.central_extra = QByteArray("\x99\x99\x04\0abcd", 8);
    return builder;
}

} // namespace

/// A byte of a good archive that is another one gives the same files or an error, never other content.
class ArchiveMutationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void singleByteNeverGivesOtherContent_data();
    void singleByteNeverGivesOtherContent();
    void twoBytesNeverLeaveTheFolder();
};

void ArchiveMutationsTest::singleByteNeverGivesOtherContent_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::newRow("base") << baseArchive().build();
    QTest::newRow("descriptors") << described().build();
    QTest::newRow("extra fields and comment") << commented().build();
}

void ArchiveMutationsTest::singleByteNeverGivesOtherContent()
{
    QFETCH(QByteArray, archive);
    ExtractionFolder folder;
    folder.storePackage(archive);
    QVERIFY(folder.extractFolder(u"pack"_s).isOk());
    const auto good = folder.extracted();
    const QStringList keys{QString(), u"Component.UnsafePath"_s, u"Component.InvalidArchive"_s,
                           u"Component.FileMissing"_s, u"Download.SaveFailed"_s};

    QRandomGenerator random(20240607);
    for (int i = 0; i < kSamplesPerArchive; ++i) {
        QByteArray changed = archive;
        const auto at = random.bounded(archive.size());
        changed[at] = static_cast<char>(changed[at] ^ static_cast<char>(random.bounded(1, 256)));
        folder.storePackage(changed);
        const ProductFileResult result = folder.extractFolder(u"pack"_s);
        QVERIFY2(keys.contains(result.error), qPrintable(result.error));
        QVERIFY2(folder.extracted() == good, qPrintable(QString::number(at)));
    }
}

void ArchiveMutationsTest::twoBytesNeverLeaveTheFolder()
{
    const QByteArray archive = described().build();
    ExtractionFolder folder;
    const auto before = folder.surroundings();
    QRandomGenerator random(19700101);
    for (int i = 0; i < 1000; ++i) {
        QByteArray changed = archive;
        for (int change = 0; change < 2; ++change)
            changed[random.bounded(archive.size())] = static_cast<char>(random.bounded(256));
        folder.storePackage(changed);
        (void)folder.extractFolder(u"pack"_s);
    }
    QCOMPARE(folder.surroundings(), before);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::ArchiveMutationsTest)
#include "archive_mutations_test.moc"
