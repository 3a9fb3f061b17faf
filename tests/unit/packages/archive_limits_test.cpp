#include "tests/support/zip_builder/archive_samples.h"
#include "tests/unit/packages/disk_limit.h"
#include "tests/unit/packages/extraction_folder.h"
#include "tests/unit/packages/memory.h"

#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <functional>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr quint32 kMebi = 1U << 20;

ZipItem declaring(const QByteArray &name, quint32 size)
{
    ZipItem item = deflatedItem(name, "big");
    item.local = [size](LocalHeader &local) { local.size = size; };
    item.central = [size](CentralHeader &central) { central.size = size; };
    return item;
}

/// A deflate stream of one fixed block: a zero, then `matches` matches of 258 bytes at distance one.
QByteArray zerosStream(qint64 matches)
{
    QByteArray stream;
    quint64 bits = 0;
    int count = 0;
    const auto put = [&](quint32 value, int length) {
        bits |= quint64{value} << count;
        for (count += length; count >= 8; count -= 8, bits >>= 8)
            stream += static_cast<char>(bits & 0xff);
    };
    put(0b011, 3);
    put(0b00001100, 8);
    for (qint64 i = 0; i < matches; ++i)
        put(0b00000'10100011, 13);
    put(0, 7);
    put(0, 7);
    return stream;
}

ZipItem bomb(qint64 realSize, quint32 declaredSize)
{
    ZipItem item = declaring("pack/bomb", declaredSize);
    item.data = zerosStream(realSize / 258);
    return item;
}

/// By how many MiB the process grew at most while `work` ran; negative when it cannot be told.
qint64 growth(const std::function<void()> &work)
{
    const qint64 bytes = memoryGrowth(work);
    return bytes < 0 ? bytes : bytes / kMebi;
}

/// Fills the directory up to exactly `size` bytes with remarks.
QByteArray archiveWithDirectoryOf(qint64 size)
{
    ZipBuilder builder;
    for (int i = 0; i < 300; ++i)
        builder.items.append(fileItem("pack/" + QByteArray::number(1000 + i), {}));
    qint64 left = size - 300 * (46 + 9);
    for (ZipItem &item : builder.items) {
        item.comment = QByteArray(std::min<qint64>(left, 65535), 'c');
        left -= item.comment.size();
    }
    return builder.build();
}

/// `item` holds 48 MiB of noise; twice that would not fit into the allowance.
void staysSmall(const ZipItem &item)
{
    ExtractionFolder folder;
    folder.storePackage(zipOf({item}));
    ProductFileResult result;
    const qint64 grown = growth([&] { result = folder.extractFile(QString::fromUtf8(item.name)); });
    QCOMPARE(result.error, QString());
    QVERIFY2(grown >= 0 && grown <= 32, qPrintable(QString::number(grown)));
    QVERIFY(fileContent(result.path) == item.content);
}

} // namespace

/// Archives at the very limits, memory, bombs and full disks.
class ArchiveLimitsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tenThousandEntries();
    void tenThousandDeepEntries();
    void largestDirectory();
    void directoryOneByteLarger();
    void largestDeclaredEntry();
    void largestDeclaredTotal();
    void largestEntryInLittleMemory();
    void incompressibleEntryInLittleMemory();
    void storedEntryInLittleMemory();
    void bombThatDeclaresOneByte();
    void bombThatDeclaresTheLargestSize();
    void fullDisk_data();
    void fullDisk();
    void damageWeighsMoreThanAFullDisk();
};

void ArchiveLimitsTest::tenThousandEntries()
{
    ZipBuilder builder;
    for (int i = 0; i < 10000; ++i)
        builder.items.append(fileItem("pack/" + QByteArray::number(i), QByteArray::number(i)));
    ExtractionFolder folder;
    folder.storePackage(builder.build());
    QCOMPARE(fileContent(folder.extractFile(u"pack/9999"_s).path), QByteArray("9999"));
    QCOMPARE(fileContent(folder.extractFile(u"pack/0"_s).path), QByteArray("0"));
}

void ArchiveLimitsTest::tenThousandDeepEntries()
{
    ZipBuilder builder;
    for (int i = 0; i < 10000; ++i)
        builder.items.append(fileItem(QByteArray::number(i) + "/" + QByteArray("a/").repeated(60) + "b", {}));
    ExtractionFolder folder;
    folder.storePackage(builder.build());
    const QString path = u"7/"_s + u"a/"_s.repeated(60) + u"b"_s;
    QCOMPARE(folder.extractFile(path).error, QString());
    QCOMPARE(folder.extractFile(path).error, QString());
}

void ArchiveLimitsTest::largestDirectory()
{
    ExtractionFolder folder;
    folder.storePackage(archiveWithDirectoryOf(16 * kMebi));
    QCOMPARE(folder.extractFile(u"pack/1299"_s).error, QString());
}

void ArchiveLimitsTest::directoryOneByteLarger()
{
    ExtractionFolder folder;
    folder.storePackage(archiveWithDirectoryOf(16 * kMebi + 1));
    QCOMPARE(folder.extractFile(u"pack/1299"_s).error, u"Component.InvalidArchive"_s);
}

void ArchiveLimitsTest::largestDeclaredEntry()
{
    ExtractionFolder folder;
    folder.storePackage(zipOf({declaring("big", 512 * kMebi), fileItem("small", "small")}));
    QCOMPARE(fileContent(folder.extractFile(u"small"_s).path), QByteArray("small"));
    QCOMPARE(folder.extractFile(u"big"_s).error, u"Component.InvalidArchive"_s);
}

void ArchiveLimitsTest::largestDeclaredTotal()
{
    ExtractionFolder folder;
    folder.storePackage(
        zipOf({declaring("1", 512 * kMebi), declaring("2", 512 * kMebi), declaring("3", 512 * kMebi),
               declaring("4", 512 * kMebi - 5), fileItem("small", "small")}));
    QCOMPARE(fileContent(folder.extractFile(u"small"_s).path), QByteArray("small"));
}

void ArchiveLimitsTest::largestEntryInLittleMemory()
{
    const qint64 matches = 512 * kMebi / 258;
    ZipItem item = deflatedItem("pack/zeros", {});
    item.data = zerosStream(matches);
    const auto size = static_cast<quint32>(1 + matches * 258);
    const quint32 checksum = crc32(QByteArray(size, '\0'));
    const auto describe = [=](auto &header) {
        header.size = size;
        header.crc32 = checksum;
    };
    item.local = describe;
    item.central = describe;
    ExtractionFolder folder;
    folder.storePackage(zipOf({item}));
    ProductFileResult result;
    const qint64 grown = growth([&] { result = folder.extractFile(u"pack/zeros"_s); });
    QCOMPARE(result.error, QString());
    QCOMPARE(QFileInfo(result.path).size(), size);
    QVERIFY2(grown >= 0 && grown <= 32, qPrintable(QString::number(grown)));
}

void ArchiveLimitsTest::incompressibleEntryInLittleMemory()
{
    ZipItem item = deflatedItem("pack/noise", noise(48 * kMebi));
    item.data = deflated(item.content, 0);
    staysSmall(item);
}

void ArchiveLimitsTest::storedEntryInLittleMemory()
{
    staysSmall(fileItem("pack/noise", noise(48 * kMebi)));
}

void ArchiveLimitsTest::bombThatDeclaresOneByte()
{
    ExtractionFolder folder;
    folder.storePackage(zipOf({bomb(qint64{4608} * kMebi, 1)}));
    const auto before = folder.snapshot();
    ProductFileResult result;
    const qint64 grown = growth([&] { result = folder.extractFile(u"pack/bomb"_s); });
    QCOMPARE(result.error, u"Component.InvalidArchive"_s);
    QVERIFY2(grown >= 0 && grown <= 32, qPrintable(QString::number(grown)));
    QVERIFY(folder.snapshot() == before);
}

void ArchiveLimitsTest::bombThatDeclaresTheLargestSize()
{
    ExtractionFolder folder;
    folder.storePackage(zipOf({bomb(qint64{640} * kMebi, 512 * kMebi)}));
    const auto before = folder.snapshot();
    ProductFileResult result;
    const qint64 grown = growth([&] { result = folder.extractFile(u"pack/bomb"_s); });
    QCOMPARE(result.error, u"Component.InvalidArchive"_s);
    QVERIFY2(grown >= 0 && grown <= 32, qPrintable(QString::number(grown)));
    QVERIFY(folder.snapshot() == before);
}

void ArchiveLimitsTest::fullDisk_data()
{
    QTest::addColumn<QString>("asset");
    QTest::addColumn<qint64>("limit");
    for (const QString &asset : {u"pack/wanted.txt"_s, u"pack/other.bin"_s}) {
        const qint64 size = asset.endsWith(u"txt") ? 600 : 300;
        for (const qint64 limit : {qint64{0}, qint64{1}, size - 1})
            QTest::addRow("%s after %lld bytes", qPrintable(asset), static_cast<long long>(limit))
                << asset << limit;
    }
}

void ArchiveLimitsTest::fullDisk()
{
    QFETCH(QString, asset);
    QFETCH(qint64, limit);
    ExtractionFolder folder;
    folder.storePackage(baseArchive().build());
    folder.putComponent(asset, "old");
    const auto before = folder.snapshot();
    {
        const DiskLimit full(limit);
        QCOMPARE(folder.extractFile(asset).error, u"Download.SaveFailed"_s);
        QCOMPARE(folder.extractFolder(u"pack"_s).error, u"Download.SaveFailed"_s);
    }
    QVERIFY(folder.snapshot() == before);
    QCOMPARE(folder.extractFile(asset).error, QString());
}

void ArchiveLimitsTest::damageWeighsMoreThanAFullDisk()
{
    ExtractionFolder folder;
    for (const SampleArchive &sample : archivesWithDamagedData()) {
        folder.storePackage(sample.bytes);
        const auto before = folder.snapshot();
        const DiskLimit full(0);
        QCOMPARE(folder.extractFile(u"pack/wanted.txt"_s).error, u"Component.InvalidArchive"_s);
        QVERIFY(folder.snapshot() == before);
    }
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::ArchiveLimitsTest)
#include "archive_limits_test.moc"
