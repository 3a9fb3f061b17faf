#include "tests/support/zip_builder/archive_samples.h"

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QByteArray text()
{
    QByteArray bytes;
    for (int line = 0; bytes.size() < 600; ++line)
        bytes += "line " + QByteArray::number(line * line) + " of the wanted file\n";
    return bytes.first(600);
}

GoodArchive holding(const char *name, const QList<ZipItem> &items)
{
    GoodArchive good{name, zipOf(items), {}};
    for (const ZipItem &item : items) {
        if (!item.name.endsWith('/'))
            good.files.insert(QString::fromUtf8(item.name), item.content);
    }
    return good;
}

GoodArchive base(const char *name, const std::function<void(ZipBuilder &)> &change)
{
    ZipBuilder builder = baseArchive();
    change(builder);
    return {name, builder.build(), {{u"pack/wanted.txt"_s, text()}, {u"pack/other.bin"_s, noise(300)}}};
}

/// The descriptors themselves are nowhere looked at.
GoodArchive describedWrongly(const char *name)
{
    return base(name, [](ZipBuilder &builder) {
        for (ZipItem &item : builder.items) {
            item.flags = 8;
            item.trailer = dataDescriptor("something else", 1, true);
            item.local = [](LocalHeader &local) { local.crc32 = local.compressed_size = local.size = 0; };
        }
    });
}

GoodArchive described(const char *name, bool withSignature)
{
    return base(name, [=](ZipBuilder &builder) {
        for (ZipItem &item : builder.items) {
            const qsizetype packed = item.deflated ? deflated(item.content).size() : item.content.size();
            item.flags = 8;
            item.trailer = dataDescriptor(item.content, packed, withSignature);
            item.local = [](LocalHeader &local) { local.crc32 = local.compressed_size = local.size = 0; };
        }
    });
}

QList<GoodArchive> layouts()
{
    return {
        base("base", [](ZipBuilder &) {}),
        base("comment of 65,535 bytes", [](ZipBuilder &b) { b.comment = QByteArray(65535, 'c'); }),
        base("comment with signatures inside", [](ZipBuilder &b) { b.comment = "PK\x05\x06 PK\x05\x06"; }),
        described("descriptors with signature", true),
        described("descriptors without signature", false),
        describedWrongly("descriptors that tell something else"),
        base("directory in reverse order", [](ZipBuilder &b) { b.directory_reversed = true; }),
        base("gaps between entries", [](ZipBuilder &b) { b.items[1].gap = b.items[2].gap = noise(100); }),
        base("gap before the directory", [](ZipBuilder &b) { b.items[2].trailer = "gap"; }),
        base("unusual extra fields",
             [](ZipBuilder &b) {
                 b.items[1].local_extra = QByteArray("\x99\x99\x04\0abcd", 8);
                 b.items[1].central_extra = noise(500);
                 b.items[1].comment = "a remark";
             }),
        base("folder entry that holds data",
             [](ZipBuilder &b) { b.items[0].content = "a folder has no bytes of its own"; }),
        base("ignored fields",
             [](ZipBuilder &b) {
                 b.items[1].local = [](LocalHeader &l) { l.version_needed = 63, l.time = 1, l.date = 0; };
                 b.items[1].central = [](CentralHeader &c) {
                     c.version_needed = 45, c.internal_attributes = 1;
                 };
             }),
    };
}

void makeDos(ZipItem &item, quint8 host, quint32 attributes)
{
    item.central = [=](CentralHeader &central) {
        central.host = host;
        central.external_attributes = attributes;
    };
}

GoodArchive fromHost(const char *name, quint8 host, quint32 fileAttributes, quint32 folderAttributes)
{
    return base(name, [=](ZipBuilder &builder) {
        makeDos(builder.items[0], host, folderAttributes);
        makeDos(builder.items[1], host, fileAttributes);
        makeDos(builder.items[2], host, fileAttributes);
    });
}

QList<GoodArchive> kinds()
{
    const auto folderWithoutSlash = [](quint8 host, quint32 attributes) {
        return [=](ZipBuilder &builder) {
            builder.items[0].name = "pack";
            makeDos(builder.items[0], host, attributes);
        };
    };
    return {
        fromHost("DOS attributes", 0, 0x20, 0x10),
        fromHost("no attributes at all", 0, 0, 0),
        fromHost("NTFS host", 10, 0x20, 0x10),
        fromHost("NTFS host of Info-ZIP", 11, 0x20, 0x10),
        fromHost("HPFS host", 6, 0x20, 0x10),
        fromHost("VFAT host", 14, 0x20, 0x10),
        fromHost("Unix host without mode", 3, 0, 0),
        fromHost("Unix host with permissions only", 3, 0644 << 16, 0755 << 16),
        base("folder by mode alone", folderWithoutSlash(3, 040755U << 16)),
        base("folder by DOS attribute alone", folderWithoutSlash(0, 0x10)),
        base("folder by slash on an unknown host", [](ZipBuilder &b) { makeDos(b.items[0], 77, 0); }),
        base("folder by backslash",
             [](ZipBuilder &b) {
                 b.items[0].name = "pack\\";
                 makeDos(b.items[0], 0, 0);
             }),
        base("backslashes", [](ZipBuilder &b) { b.items[1].name = "pack\\wanted.txt"; }),
    };
}

QList<GoodArchive> contents()
{
    ZipItem storedBlocks = deflatedItem("pack/stored.bin", noise(200000));
    storedBlocks.data = deflated(storedBlocks.content, 0);
    return {
        holding("empty files", {fileItem("pack/stored", {}), deflatedItem("pack/deflated", {})}),
        holding("signatures inside data", {fileItem("pack/a", baseArchive().build()),
                                           fileItem("pack/b", zipOf({}) + "PK\1\2PK\3\4PK\5\6")}),
        holding("stored, fixed and dynamic blocks",
                {storedBlocks, deflatedItem("pack/fixed", "aaaaaaaaaaaaaaaaaaaa"),
                 deflatedItem("pack/dynamic", text() + noise(3000) + text())}),
        holding("long runs", {deflatedItem("pack/zeros", QByteArray(300000, '\0')),
                              deflatedItem("pack/pattern", QByteArray("abcdefg").repeated(30000))}),
        holding("larger than one piece", {fileItem("pack/stored", noise((1 << 20) + 1)),
                                          deflatedItem("pack/deflated", noise((1 << 20) + 1, 2))}),
        holding("macOS extras",
                {fileItem("pack/a.png", "png"), folderItem("__MACOSX/"),
                 fileItem("__MACOSX/pack/._a.png", "fork"), fileItem("pack/.DS_Store", "store")}),
    };
}

QList<GoodArchive> names()
{
    const QByteArray persian = "pack/\xd9\x82\xd8\xa7\xd8\xa8 \xd9\xbe\xd8\xae\xd8\xb4.png";
    const QByteArray longest = "pack/" + QByteArray("0123456789abcde/").repeated(63) + "0123456789a";
    return {
        holding("Persian name", {fileItem(persian)}),
        holding("Japanese name", {fileItem("pack/\xe6\x9e\xa0\xe7\xb5\x84\xe3\x81\xbf.png")}),
        holding("emoji name", {fileItem("pack/\xf0\x9f\x8e\xae.webm")}),
        holding("composed and decomposed name", {fileItem("pack/\xc3\xa9"), fileItem("pack/e\xcc\x81")}),
        holding("sharp s and ss", {fileItem("pack/\xc3\x9f"), fileItem("pack/ss")}),
        holding("name of 1,024 units", {fileItem(longest)}),
        holding("leading dots", {fileItem("pack/.hidden/a"), fileItem("pack/..b"), fileItem("pack/...c")}),
        holding("nearly device names",
                {fileItem("pack/console"), fileItem("pack/con1"), fileItem("pack/com10")}),
        holding("many dots and blanks", {fileItem("pack/ a. b"), fileItem("pack/a..b")}),
        holding("file beside a folder of nearly its name", {fileItem("pack/a"), fileItem("pack/a.b/c")}),
    };
}

} // namespace

ZipBuilder baseArchive()
{
    return {.items = {folderItem("pack/"), deflatedItem("pack/wanted.txt", text()),
                      fileItem("pack/other.bin", noise(300))}};
}

QList<GoodArchive> goodArchives()
{
    return layouts() + kinds() + contents() + names();
}

} // namespace quillmar::test
