#include "tests/support/zip_builder/archive_samples.h"

namespace quillmar::test
{
namespace
{

SampleArchive wanted(const char *name, const std::function<void(ZipItem &)> &spoil, bool deflate = true)
{
    ZipBuilder builder = baseArchive();
    builder.items[1].deflated = deflate;
    spoil(builder.items[1]);
    return {name, builder.build()};
}

SampleArchive stored(const char *name, const std::function<void(ZipItem &)> &spoil)
{
    return wanted(name, spoil, false);
}

void declareCrc(ZipItem &item, quint32 crc)
{
    item.local = [crc](LocalHeader &local) { local.crc32 = crc; };
    item.central = [crc](CentralHeader &central) { central.crc32 = crc; };
}

void declareSize(ZipItem &item, qsizetype size)
{
    item.local = [size](LocalHeader &local) { local.size = static_cast<quint32>(size); };
    item.central = [size](CentralHeader &central) { central.size = static_cast<quint32>(size); };
}

QByteArray flipped(QByteArray bytes, qsizetype at)
{
    bytes[at] = static_cast<char>(bytes[at] ^ 0x10);
    return bytes;
}

QList<SampleArchive> checksums()
{
    return {
        stored("wrong checksum, stored", [](ZipItem &i) { declareCrc(i, crc32(i.content) + 1); }),
        wanted("wrong checksum, deflated", [](ZipItem &i) { declareCrc(i, crc32(i.content) + 1); }),
        stored("checksum zero, stored", [](ZipItem &i) { declareCrc(i, 0); }),
        wanted("checksum zero, deflated", [](ZipItem &i) { declareCrc(i, 0); }),
        stored("flipped bit, stored", [](ZipItem &i) { i.data = flipped(i.content, 100); }),
        stored("flipped last bit, stored",
               [](ZipItem &i) { i.data = flipped(i.content, i.content.size() - 1); }),
        wanted("flipped bit, deflated", [](ZipItem &i) { i.data = flipped(deflated(i.content), 20); }),
        wanted("flipped bit in a stored block",
               [](ZipItem &i) { i.data = flipped(deflated(i.content, 0), 50); }),
    };
}

/// A fixed block that begins with a match of three bytes at distance one.
QByteArray matchBeforeStart()
{
    return QByteArray("\x03\x02\x00", 3);
}

QList<SampleArchive> streams()
{
    return {
        wanted("noise as deflate", [](ZipItem &i) { i.data = noise(200); }),
        wanted("plain bytes as deflate", [](ZipItem &i) { i.data = i.content; }),
        stored("deflate as plain bytes", [](ZipItem &i) { i.data = deflated(i.content); }),
        wanted("truncated stream", [](ZipItem &i) { i.data = deflated(i.content).chopped(1); }),
        wanted("half a stream", [](ZipItem &i) { i.data = deflated(i.content).first(20); }),
        wanted("truncated stored block", [](ZipItem &i) { i.data = deflated(i.content, 0).chopped(1); }),
        wanted("empty stream", [](ZipItem &i) { i.data = QByteArray(); }),
        wanted("byte after the stream", [](ZipItem &i) { i.data = deflated(i.content) + '\0'; }),
        wanted("stream twice", [](ZipItem &i) { i.data = deflated(i.content) + deflated(i.content); }),
        wanted("zlib wrapper", [](ZipItem &i) { i.data = qCompress(i.content).mid(4); }),
        wanted("block of the reserved kind", [](ZipItem &i) { i.data = QByteArray("\x07", 1); }),
        wanted("stored block with a wrong complement",
               [](ZipItem &i) { i.data = flipped(deflated(i.content, 0), 3); }),
        wanted("match before the start",
               [](ZipItem &i) {
                   i.content = "aaa";
                   i.data = matchBeforeStart();
               }),
        wanted("match before the start of zeros",
               [](ZipItem &i) {
                   i.content = QByteArray(3, '\0');
                   i.data = matchBeforeStart();
               }),
    };
}

QList<SampleArchive> lengths()
{
    return {
        wanted("declared size -1", [](ZipItem &i) { declareSize(i, i.content.size() - 1); }),
        wanted("declared size +1", [](ZipItem &i) { declareSize(i, i.content.size() + 1); }),
        wanted("declared size 0", [](ZipItem &i) { declareSize(i, 0); }),
        wanted("declared size 1", [](ZipItem &i) { declareSize(i, 1); }),
        wanted("declared size far too large", [](ZipItem &i) { declareSize(i, 100 << 20); }),
        wanted("small bomb",
               [](ZipItem &i) {
                   i.data = deflated(QByteArray(4 << 20, '\0'));
                   i.content = "x";
               }),
        stored("stored longer than declared", [](ZipItem &i) { i.data = i.content + "more"; }),
        stored("stored shorter than declared", [](ZipItem &i) { i.data = i.content.chopped(1); }),
        stored("stored, nothing there", [](ZipItem &i) { i.data = QByteArray(); }),
        stored("stored, something instead of nothing",
               [](ZipItem &i) {
                   i.data = i.content;
                   i.content.clear();
               }),
    };
}

/// Checksum and sizes stand behind the data and, as the directory has them, are wrong.
SampleArchive described(const char *name, const std::function<void(CentralHeader &)> &spoil)
{
    return wanted(name, [&](ZipItem &item) {
        item.flags = 8;
        item.trailer = dataDescriptor(item.content, deflated(item.content).size(), true);
        item.local = [](LocalHeader &local) { local.crc32 = local.compressed_size = local.size = 0; };
        item.central = spoil;
    });
}

QList<SampleArchive> descriptors()
{
    return {
        described("wrong checksum with descriptor", [](CentralHeader &c) { ++c.crc32; }),
        described("checksum zero with descriptor", [](CentralHeader &c) { c.crc32 = 0; }),
        described("plain size -1 with descriptor", [](CentralHeader &c) { --c.size; }),
        described("plain size +1 with descriptor", [](CentralHeader &c) { ++c.size; }),
        described("plain size 0 with descriptor", [](CentralHeader &c) { c.size = 0; }),
        described("compressed size -1 with descriptor", [](CentralHeader &c) { --c.compressed_size; }),
        described("compressed size +1 with descriptor", [](CentralHeader &c) { ++c.compressed_size; }),
        described("compressed size 0 with descriptor", [](CentralHeader &c) { c.compressed_size = 0; }),
    };
}

} // namespace

QList<SampleArchive> archivesWithDamagedData()
{
    return checksums() + streams() + lengths() + descriptors();
}

} // namespace quillmar::test
