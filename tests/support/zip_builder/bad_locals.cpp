#include "tests/support/zip_builder/archive_samples.h"

namespace quillmar::test
{
namespace
{

constexpr qsizetype kWanted = 1;
constexpr qsizetype kOther = 2;

SampleArchive spoiled(const char *name, const std::function<void(ZipBuilder &)> &spoil)
{
    ZipBuilder builder = baseArchive();
    spoil(builder);
    return {name, builder.build()};
}

SampleArchive localChanged(const char *name, const std::function<void(LocalHeader &)> &change,
                           qsizetype item = kWanted)
{
    return spoiled(name, [&](ZipBuilder &builder) { builder.items[item].local = change; });
}

SampleArchive nameChanged(const char *name, const QByteArray &local)
{
    return localChanged(name, [&](LocalHeader &header) {
        header.name = local;
        header.name_length = static_cast<quint16>(local.size());
    });
}

SampleArchive compressedSizeIs(const char *name, const std::function<quint32(quint32)> &size)
{
    return spoiled(name, [&](ZipBuilder &builder) {
        ZipItem &item = builder.items[kOther];
        item.local = [=](LocalHeader &l) { l.compressed_size = size(l.compressed_size); };
        item.central = [=](CentralHeader &c) { c.compressed_size = size(c.compressed_size); };
    });
}

QList<SampleArchive> disagreements()
{
    return {
        localChanged("local signature", [](LocalHeader &l) { ++l.signature; }),
        localChanged("UTF-8 flag local only", [](LocalHeader &l) { l.flags = 0x800; }),
        spoiled("UTF-8 flag central only",
                [](ZipBuilder &b) { b.items[kWanted].central = [](CentralHeader &c) { c.flags = 0x800; }; }),
        localChanged("encrypted local only", [](LocalHeader &l) { l.flags = 1; }),
        localChanged("descriptor flag local only", [](LocalHeader &l) { l.flags = 8; }),
        spoiled("descriptor flag central only",
                [](ZipBuilder &b) { b.items[kWanted].central = [](CentralHeader &c) { c.flags = 8; }; }),
        localChanged("method differs", [](LocalHeader &l) { l.method = 0; }),
        localChanged("checksum differs", [](LocalHeader &l) { ++l.crc32; }),
        localChanged("checksum zero without the flag", [](LocalHeader &l) { l.crc32 = 0; }),
        localChanged("compressed size differs", [](LocalHeader &l) { ++l.compressed_size; }),
        localChanged("plain size differs", [](LocalHeader &l) { --l.size; }),
        localChanged(
            "flaw in an entry not requested", [](LocalHeader &l) { ++l.size; }, kOther),
        nameChanged("local name of the same length", "pack/wanted.exe"),
        nameChanged("local name in another case", "pack/Wanted.txt"),
        nameChanged("local name shorter", "pack/wanted.tx"),
        nameChanged("local name longer", "pack/wanted.text"),
        nameChanged("local name with another separator", "pack\\wanted.txt"),
        nameChanged("local name that climbs", "../../wanted.tx"),
    };
}

QList<SampleArchive> reachingTooFar()
{
    return {
        localChanged(
            "local name reaches into the directory", [](LocalHeader &l) { l.name_length = 0xffff; }, kOther),
        localChanged(
            "local extra pushes data into the directory", [](LocalHeader &l) { l.extra_length = 0xffff; },
            kOther),
        localChanged(
            "local extra ends one byte inside the directory", [](LocalHeader &l) { l.extra_length = 1; },
            kOther),
        compressedSizeIs("data end one byte inside the directory", [](quint32 size) { return size + 1; }),
        compressedSizeIs("compressed size huge", [](quint32) { return 0x7fffffffU; }),
        compressedSizeIs("compressed size negative", [](quint32) { return 0x80000000U; }),
        compressedSizeIs("compressed size wrapping", [](quint32) { return 0xffffffffU; }),
    };
}

SampleArchive twoOnOneHeader()
{
    return spoiled("two entries on one local header", [](ZipBuilder &b) {
        b.items.insert(2, b.items[kWanted]);
        b.items[2].central = [](CentralHeader &c) { c.local_offset = 30 + 5; }; // behind "pack/"
    });
}

/// The data of the first entry hold a whole second entry, to which the directory points as well.
SampleArchive entryInsideEntry()
{
    const ZipItem inner = fileItem("inner.txt", "inner");
    const QByteArray image = zipOf({inner}).left(30 + 9 + 5);
    ZipItem seeming = inner;
    seeming.central = [](CentralHeader &c) { c.local_offset = 30 + 9; };
    return {"entry inside the data of another", zipOf({fileItem("outer.txt", image), seeming})};
}

/// Ends one byte later than the next one begins.
SampleArchive overlapByOneByte()
{
    return spoiled("two entries overlapping by one byte", [](ZipBuilder &b) {
        ZipItem &item = b.items[kWanted];
        item.local = [](LocalHeader &l) { ++l.compressed_size; };
        item.central = [](CentralHeader &c) { ++c.compressed_size; };
    });
}

} // namespace

QList<SampleArchive> archivesWithBadLocals()
{
    return disagreements() + reachingTooFar() +
           QList<SampleArchive>{twoOnOneHeader(), entryInsideEntry(), overlapByOneByte()};
}

} // namespace quillmar::test
