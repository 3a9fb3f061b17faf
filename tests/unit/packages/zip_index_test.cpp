#include "packages/zip_index.h"

#include "tests/support/zip_builder/archive_samples.h"

#include <QFile>
#include <QTemporaryFile>
#include <QTest>

#include <optional>

namespace quillmar::test
{

using namespace Qt::StringLiterals;
using Verdict = ZipIndex::Verdict;

namespace
{

ZipIndex indexOf(const QByteArray &archive)
{
    QTemporaryFile file;
    if (!file.open() || file.write(archive) != archive.size() || !file.flush())
        qFatal("cannot write a temporary file");
    return readZipIndex(file);
}

} // namespace

class ZipIndexTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void malformed_data();
    void malformed() { has(Verdict::Malformed); }
    void unsafe_data() { addRows(archivesWithUnsafeEntries()); }
    void unsafe() { has(Verdict::UnsafeEntry); }
    void damagedDataIsNotLookedAt_data() { addRows(archivesWithDamagedData()); }
    void damagedDataIsNotLookedAt() { has(Verdict::Sound); }
    void good_data();
    void good();
    void entriesHoldWhatTheDirectorySays();
    void entriesKeepTheOrderOfTheDirectory();
    void dataBeginsAfterTheLocalExtraField();
    void kinds_data();
    void kinds();
    void eachFieldOffByOne_data();
    void eachFieldOffByOne();
    void positionOfTheFileDoesNotMatter();

private:
    static void addRows(const QList<SampleArchive> &archives);
    static void has(Verdict verdict);
};

void ZipIndexTest::addRows(const QList<SampleArchive> &archives)
{
    QTest::addColumn<QByteArray>("archive");
    for (const SampleArchive &sample : archives)
        QTest::newRow(sample.name.constData()) << sample.bytes;
}

void ZipIndexTest::has(Verdict verdict)
{
    QFETCH(QByteArray, archive);
    const ZipIndex index = indexOf(archive);
    QCOMPARE(index.verdict, verdict);
    QCOMPARE(index.entries.isEmpty(), verdict != Verdict::Sound);
}

void ZipIndexTest::malformed_data()
{
    addRows(archivesWithBadFraming() + archivesWithBadDirectory() + archivesWithBadLocals());
}

void ZipIndexTest::good_data()
{
    QTest::addColumn<GoodArchive>("archive");
    for (const GoodArchive &sample : goodArchives())
        QTest::newRow(sample.name.constData()) << sample;
}

void ZipIndexTest::good()
{
    QFETCH(GoodArchive, archive);
    const ZipIndex index = indexOf(archive.bytes);
    QCOMPARE(index.verdict, Verdict::Sound);
    QStringList files;
    for (const ZipEntry &entry : index.entries) {
        if (entry.kind == ZipEntry::Kind::File)
            files.append(entry.path);
    }
    files.sort();
    QCOMPARE(files, archive.files.keys());
}

void ZipIndexTest::entriesHoldWhatTheDirectorySays()
{
    const ZipBuilder builder = baseArchive();
    const QByteArray archive = builder.build();
    const ZipIndex index = indexOf(archive);
    QCOMPARE(index.verdict, Verdict::Sound);
    QCOMPARE(index.entries.size(), 3);
    for (qsizetype i = 0; i < 3; ++i) {
        const ZipEntry &entry = index.entries[i];
        const ZipItem &item = builder.items[i];
        const QByteArray data = item.deflated ? deflated(item.content) : item.content;
        QCOMPARE(entry.kind, i == 0 ? ZipEntry::Kind::Directory : ZipEntry::Kind::File);
        QCOMPARE(entry.method, item.deflated ? ZipEntry::Method::Deflated : ZipEntry::Method::Stored);
        QCOMPARE(entry.crc32, crc32(item.content));
        QCOMPARE(entry.size, item.content.size());
        QCOMPARE(archive.mid(entry.data_offset, entry.compressed_size), data);
    }
    QCOMPARE(index.entries[0].path, u"pack"_s);
    QCOMPARE(index.entries[1].path, u"pack/wanted.txt"_s);
}

void ZipIndexTest::entriesKeepTheOrderOfTheDirectory()
{
    ZipBuilder builder = baseArchive();
    builder.directory_reversed = true;
    const ZipIndex index = indexOf(builder.build());
    QCOMPARE(index.entries.size(), 3);
    QCOMPARE(index.entries[0].path, u"pack/other.bin"_s);
    QCOMPARE(index.entries[2].path, u"pack"_s);
}

void ZipIndexTest::dataBeginsAfterTheLocalExtraField()
{
    ZipItem item = fileItem("a", "data");
    item.local_extra = noise(77);
    item.central_extra = noise(5);
    const ZipIndex index = indexOf(zipOf({item}));
    QCOMPARE(index.entries.size(), 1);
    QCOMPARE(index.entries[0].data_offset, 30 + 1 + 77);
}

void ZipIndexTest::kinds_data()
{
    using Kind = std::optional<ZipEntry::Kind>;
    const Kind file = ZipEntry::Kind::File;
    const Kind folder = ZipEntry::Kind::Directory;
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("host");
    QTest::addColumn<quint32>("attributes");
    QTest::addColumn<Kind>("kind");
    const auto row = [](const QByteArray &title, const QByteArray &name, int host, quint32 attributes,
                        Kind kind) {
        QTest::newRow(title.constData()) << name << host << attributes << kind;
    };
    row("Unix file", "a", 3, 0100644U << 16, file);
    row("Unix folder by mode", "a", 3, 040755U << 16, folder);
    row("Unix folder by slash", "a/", 3, 0, folder);
    row("Unix file mode but a slash", "a/", 3, 0100644U << 16, folder);
    row("Unix link", "a", 3, 0120777U << 16, {});
    row("Unix link with a slash", "a/", 3, 0120777U << 16, {});
    row("Unix device", "a", 3, 0020644U << 16, file);
    row("Unix pipe", "a", 3, 0010644U << 16, file);
    row("Unix socket", "a", 3, 0140644U << 16, file);
    row("Unix without a mode", "a", 3, 0, file);
    row("Unix, DOS folder attribute alone", "a", 3, 0x10, file);
    for (const int host : {0, 6, 10, 11, 14}) {
        const QByteArray title = "DOS host " + QByteArray::number(host);
        row(title + ", file", "a", host, 0x20, file);
        row(title + ", folder", "a", host, 0x10, folder);
        row(title + ", slash", "a/", host, 0, folder);
        row(title + ", link mode means nothing", "a", host, 0120777U << 16, file);
    }
    for (const int host : {1, 7, 13, 19, 255}) {
        const QByteArray title = "other host " + QByteArray::number(host);
        row(title + ", no slash", "a", host, 0100644U << 16, {});
        row(title + ", slash", "a/", host, 0, folder);
    }
}

void ZipIndexTest::kinds()
{
    QFETCH(QByteArray, name);
    QFETCH(int, host);
    QFETCH(quint32, attributes);
    QFETCH(std::optional<ZipEntry::Kind>, kind);
    ZipItem item = fileItem(name, {});
    item.central = [=](CentralHeader &central) {
        central.host = static_cast<quint8>(host);
        central.external_attributes = attributes;
    };
    const ZipIndex index = indexOf(zipOf({item}));
    QCOMPARE(index.verdict, kind ? Verdict::Sound : Verdict::UnsafeEntry);
    QCOMPARE(index.entries.isEmpty(), !kind.has_value());
    QVERIFY(!kind || index.entries[0].kind == *kind);
}

/// Fields that the check reads, each of them changed in a record of the archive of one stored file of four
/// bytes.
void ZipIndexTest::eachFieldOffByOne_data()
{
    struct Field {
        const char *name;
        qsizetype offset;
        bool checked;
    };
    const QList<Field> local{
        {"signature", 0, true},    {"version", 4, false},         {"flags", 6, true},
        {"method", 8, true},       {"time", 10, false},           {"date", 12, false},
        {"checksum", 14, true},    {"compressed size", 18, true}, {"plain size", 22, true},
        {"name length", 26, true}, {"extra length", 28, true},    {"name", 30, true}};
    const QList<Field> central{{"signature", 0, true},
                               {"made by", 4, false},
                               {"version", 6, false},
                               {"flags", 8, true},
                               {"method", 10, true},
                               {"time", 12, false},
                               {"date", 14, false},
                               {"checksum", 16, true},
                               {"compressed size", 20, true},
                               {"plain size", 24, true},
                               {"name length", 28, true},
                               {"extra length", 30, true},
                               {"comment length", 32, true},
                               {"disk", 34, true},
                               {"internal attributes", 36, false},
                               {"external attributes", 38, false},
                               {"local offset", 42, true},
                               {"name", 46, true}};
    const QList<Field> end{{"signature", 0, true},         {"disk", 4, true},
                           {"directory disk", 6, true},    {"entries here", 8, true},
                           {"entries", 10, true},          {"directory size", 12, true},
                           {"directory offset", 16, true}, {"comment length", 20, true}};

    const QByteArray good = zipOf({fileItem("name", "data")});
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<Verdict>("verdict");
    const auto addRecord = [&](const char *record, qsizetype start, const QList<Field> &fields) {
        for (const Field &field : fields) {
            for (const int step : {1, -1}) {
                QByteArray archive = good;
                archive[start + field.offset] = static_cast<char>(archive[start + field.offset] + step);
                QTest::addRow("%s %s %+d", record, field.name, step)
                    << archive << (field.checked ? Verdict::Malformed : Verdict::Sound);
            }
        }
    };
    addRecord("local", 0, local);
    addRecord("central", good.indexOf("PK\x01\x02"), central);
    addRecord("end", good.indexOf("PK\x05\x06"), end);
}

void ZipIndexTest::eachFieldOffByOne()
{
    QFETCH(QByteArray, archive);
    QFETCH(Verdict, verdict);
    QCOMPARE(indexOf(archive).verdict, verdict);
}

void ZipIndexTest::positionOfTheFileDoesNotMatter()
{
    const QByteArray archive = baseArchive().build();
    QTemporaryFile file;
    QVERIFY(file.open());
    QCOMPARE(file.write(archive), archive.size());
    QVERIFY(file.flush() && file.seek(17));
    QCOMPARE(readZipIndex(file).verdict, Verdict::Sound);
    QCOMPARE(readZipIndex(file).entries.size(), 3);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::ZipIndexTest)
#include "zip_index_test.moc"
