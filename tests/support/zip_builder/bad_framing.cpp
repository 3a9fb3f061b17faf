#include "tests/support/zip_builder/archive_samples.h"

#include <QtEndian>

namespace quillmar::test
{
namespace
{

SampleArchive spoiled(const char *name, const std::function<void(ZipBuilder &)> &spoil)
{
    ZipBuilder builder = baseArchive();
    spoil(builder);
    return {name, builder.build()};
}

SampleArchive endChanged(const char *name, const std::function<void(EndHeader &)> &change)
{
    return spoiled(name, [&](ZipBuilder &builder) { builder.end = change; });
}

QByteArray commented(const QByteArray &comment)
{
    ZipBuilder builder = baseArchive();
    builder.comment = comment;
    return builder.build();
}

QList<SampleArchive> noArchives()
{
    const QByteArray end = zipOf({}).right(22);
    QByteArray claiming = end;
    claiming[8] = claiming[10] = 1;
    return {
        {"empty file", {}},
        {"21 bytes", end.left(21)},
        {"bare end record", end},
        {"end record claiming one entry", claiming},
        {"noise", noise(4096)},
        {"picture renamed", QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) + noise(600)},
        {"HTML page renamed", "<!DOCTYPE html><html><body>404 Not Found</body></html>"},
    };
}

QList<SampleArchive> cutAndExtended()
{
    const QByteArray good = baseArchive().build();
    const QByteArray withComment = commented("a comment");
    return {
        {"cut in the middle", good.left(good.size() / 2)},
        {"last byte cut", good.chopped(1)},
        {"end record cut", good.chopped(22)},
        {"comment cut", withComment.chopped(4)},
        {"one trailing byte", good + '\0'},
        {"trailing line end", good + "\r\n"},
        {"70,000 trailing bytes", good + QByteArray(70000, '\0')},
        {"archive twice", good + good},
        {"prefix without adjusted offsets", "#!/bin/sh\n" + good},
        {"first byte missing", good.mid(1)},
        {"end record outside the window", good + QByteArray(65536, 'c')},
        spoiled("prefix with adjusted offsets", [](ZipBuilder &b) { b.prefix = "#!/bin/sh\n"; }),
        spoiled("one byte before the first entry", [](ZipBuilder &b) { b.items[0].gap = "x"; }),
        // The later record counts although the earlier one is good and could claim it as its comment.
        {"end record inside the comment", commented(zipOf({}).right(22))},
    };
}

QList<SampleArchive> endFields()
{
    return {
        endChanged("declared comment length -1",
                   [](EndHeader &e) { e.comment = "abc", e.comment_length = 2; }),
        endChanged("declared comment length +1",
                   [](EndHeader &e) { e.comment = "abc", e.comment_length = 4; }),
        endChanged("this disk 1", [](EndHeader &e) { e.disk = 1; }),
        endChanged("directory disk 1", [](EndHeader &e) { e.directory_disk = 1; }),
        endChanged("counts differ, less here", [](EndHeader &e) { --e.entries_here; }),
        endChanged("counts differ, more here", [](EndHeader &e) { ++e.entries_here; }),
        endChanged("count +1", [](EndHeader &e) { ++e.entries, ++e.entries_here; }),
        endChanged("count -1", [](EndHeader &e) { --e.entries, --e.entries_here; }),
        endChanged("count 0", [](EndHeader &e) { e.entries = e.entries_here = 0; }),
        endChanged("count 10,001 of 3", [](EndHeader &e) { e.entries = e.entries_here = 10001; }),
        endChanged("count 65,535", [](EndHeader &e) { e.entries = e.entries_here = 65535; }),
        endChanged("directory size +1", [](EndHeader &e) { ++e.directory_size; }),
        endChanged("directory size -1", [](EndHeader &e) { --e.directory_size; }),
        endChanged("directory size 0", [](EndHeader &e) { e.directory_size = 0; }),
        endChanged("directory size 0xFFFFFFFF", [](EndHeader &e) { e.directory_size = 0xffffffff; }),
        endChanged("directory offset +1", [](EndHeader &e) { ++e.directory_offset; }),
        endChanged("directory offset -1", [](EndHeader &e) { --e.directory_offset; }),
        endChanged("directory offset 0", [](EndHeader &e) { e.directory_offset = 0; }),
        endChanged("directory offset 0xFFFFFFFF", [](EndHeader &e) { e.directory_offset = 0xffffffff; }),
        endChanged("offset +1 and size -1", [](EndHeader &e) { ++e.directory_offset, --e.directory_size; }),
        endChanged("offset -1 and size +1", [](EndHeader &e) { --e.directory_offset, ++e.directory_size; }),
        endChanged("size and offset that wrap to the right sum",
                   [](EndHeader &e) {
                       e.directory_size += e.directory_offset + 1;
                       e.directory_offset = 0xffffffff;
                   }),
        endChanged("wrong end signature", [](EndHeader &e) { ++e.signature; }),
    };
}

QByteArray zip64EndRecords()
{
    QByteArray record("PK\x06\x06", 4);
    record.resize(56, '\0');
    record[4] = 44;
    QByteArray locator("PK\x06\x07", 4);
    locator.resize(20, '\0');
    locator[16] = 1;
    return record + locator;
}

QList<SampleArchive> aroundTheDirectory()
{
    return {
        spoiled("byte between directory and end record", [](ZipBuilder &b) { b.after_directory = "x"; }),
        spoiled("byte between, counted as directory",
                [](ZipBuilder &b) { b.directory_bytes = [](QByteArray &d) { d += 'x'; }; }),
        spoiled("junk inside the directory",
                [](ZipBuilder &b) { b.directory_bytes = [](QByteArray &d) { d.insert(0, noise(46)); }; }),
        spoiled("junk at the end of the directory",
                [](ZipBuilder &b) { b.directory_bytes = [](QByteArray &d) { d += noise(80); }; }),
        spoiled("digital-signature record",
                [](ZipBuilder &b) {
                    b.directory_bytes = [](QByteArray &d) { d += QByteArray("PK\x05\x05\x04\0abcd", 10); };
                }),
        spoiled("two adjacent directories",
                [](ZipBuilder &b) { b.directory_bytes = [](QByteArray &d) { d += d; }; }),
        spoiled("ZIP64 records, needed",
                [](ZipBuilder &b) {
                    b.after_directory = zip64EndRecords();
                    b.end = [](EndHeader &e) {
                        e.entries = e.entries_here = 0xffff;
                        e.directory_size = e.directory_offset = 0xffffffff;
                    };
                }),
        spoiled("ZIP64 records, redundant", [](ZipBuilder &b) { b.after_directory = zip64EndRecords(); }),
        spoiled("ZIP64 records, counted as directory",
                [](ZipBuilder &b) { b.directory_bytes = [](QByteArray &d) { d += zip64EndRecords(); }; }),
    };
}

SampleArchive countModulo()
{
    ZipBuilder builder;
    for (int i = 0; i < 65537; ++i)
        builder.items.append(fileItem(QByteArray::number(i), {}));
    builder.end = [](EndHeader &end) { end.entries = end.entries_here = 1; };
    return {"count modulo 65,536", builder.build()};
}

} // namespace

QList<SampleArchive> archivesWithBadFraming()
{
    return noArchives() + cutAndExtended() + endFields() + aroundTheDirectory() +
           QList<SampleArchive>{countModulo()};
}

} // namespace quillmar::test
