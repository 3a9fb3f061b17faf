#include "tests/support/zip_builder/archive_samples.h"

namespace quillmar::test
{
namespace
{

constexpr qsizetype kWanted = 1;
constexpr qsizetype kOther = 2;
constexpr quint32 kMebibyte = 1U << 20;

SampleArchive spoiled(const QByteArray &name, const std::function<void(ZipBuilder &)> &spoil)
{
    ZipBuilder builder = baseArchive();
    spoil(builder);
    return {name, builder.build()};
}

SampleArchive recordChanged(const char *name, const std::function<void(CentralHeader &)> &change,
                            qsizetype item = kWanted)
{
    return spoiled(name, [&](ZipBuilder &builder) { builder.items[item].central = change; });
}

QList<SampleArchive> fields()
{
    return {
        recordChanged("wrong directory signature", [](CentralHeader &c) { ++c.signature; }),
        recordChanged("directory signature of a local header",
                      [](CentralHeader &c) { c.signature = 0x04034b50; }),
        recordChanged("entry disk 1", [](CentralHeader &c) { c.disk = 1; }),
        recordChanged("entry disk 65535", [](CentralHeader &c) { c.disk = 65535; }),
        recordChanged(
            "name overruns by one", [](CentralHeader &c) { ++c.name_length; }, kOther),
        recordChanged(
            "extra overruns by one", [](CentralHeader &c) { ++c.extra_length; }, kOther),
        recordChanged(
            "comment overruns by one", [](CentralHeader &c) { ++c.comment_length; }, kOther),
        recordChanged("name overruns by far", [](CentralHeader &c) { c.name_length = 0xffff; }),
        recordChanged("extra overruns by far", [](CentralHeader &c) { c.extra_length = 0xffff; }),
        recordChanged("comment overruns by far", [](CentralHeader &c) { c.comment_length = 0xffff; }),
        recordChanged("name shorter than declared locally", [](CentralHeader &c) { --c.name_length; }),
        spoiled("directory entry one byte short",
                [](ZipBuilder &b) { b.directory_bytes = [](QByteArray &d) { d.chop(1); }; }),
    };
}

QList<SampleArchive> offsets()
{
    const QByteArray good = baseArchive().build();
    const auto directory = static_cast<quint32>(good.indexOf(QByteArray("PK\x01\x02", 4)));
    return {
        recordChanged("local offset at directory", [=](CentralHeader &c) { c.local_offset = directory; }),
        recordChanged("local offset beyond file", [](CentralHeader &c) { c.local_offset = 0x7fffffff; }),
        recordChanged("local offset 0xFFFFFFFF", [](CentralHeader &c) { c.local_offset = 0xffffffff; }),
        recordChanged("local offset +1", [](CentralHeader &c) { ++c.local_offset; }),
        recordChanged("local offset -1", [](CentralHeader &c) { --c.local_offset; }),
        recordChanged("local offset at another entry", [](CentralHeader &c) { c.local_offset = 0; }),
        recordChanged("local offset straddling the directory",
                      [=](CentralHeader &c) { c.local_offset = directory - 29; }),
    };
}

SampleArchive encrypted(const char *name, qsizetype item)
{
    return spoiled(name, [&](ZipBuilder &builder) { builder.items[item].flags = 1; });
}

QList<SampleArchive> refusedMethods()
{
    QList<SampleArchive> archives;
    for (const int method : {1, 2, 3, 4, 5, 6, 7, 9, 10, 12, 14, 19, 20, 93, 95, 96, 97, 98, 99, 65535}) {
        archives.append(spoiled("method " + QByteArray::number(method), [method](ZipBuilder &b) {
            b.items[kWanted].local = [method](LocalHeader &l) { l.method = static_cast<quint16>(method); };
            b.items[kWanted].central = [method](CentralHeader &c) {
                c.method = static_cast<quint16>(method);
            };
        }));
    }
    archives.append(spoiled("unsupported method elsewhere", [](ZipBuilder &b) {
        b.items[kOther].local = [](LocalHeader &l) { l.method = 12; };
        b.items[kOther].central = [](CentralHeader &c) { c.method = 12; };
    }));
    return archives;
}

void declare(ZipItem &item, quint32 size)
{
    item.local = [size](LocalHeader &local) { local.size = size; };
    item.central = [size](CentralHeader &central) { central.size = size; };
}

SampleArchive declaredSizes(const char *name, const QList<quint32> &sizes)
{
    ZipBuilder builder = baseArchive();
    for (const quint32 size : sizes) {
        ZipItem item = deflatedItem("big" + QByteArray::number(builder.items.size()), "big");
        declare(item, size);
        builder.items.append(item);
    }
    return {name, builder.build()};
}

QList<SampleArchive> sizes()
{
    // The base archive declares 900 bytes itself.
    const quint32 largest = 512 * kMebibyte;
    return {
        declaredSizes("plain size 512 MiB + 1", {largest + 1}),
        declaredSizes("plain size 0xFFFFFFFF", {0xffffffff}),
        declaredSizes("total 2 GiB + 1", {largest, largest, largest, largest - 899}),
        declaredSizes("total wrapping 2^32", QList<quint32>(8, largest)),
        spoiled("ZIP64 sizes",
                [](ZipBuilder &b) {
                    const QByteArray extra = QByteArray("\x01\0\x10\0", 4) + QByteArray(16, '\x01');
                    ZipItem &item = b.items[kWanted];
                    item.local_extra = item.central_extra = extra;
                    item.local = [](LocalHeader &l) { l.size = l.compressed_size = 0xffffffff; };
                    item.central = [](CentralHeader &c) { c.size = c.compressed_size = 0xffffffff; };
                }),
        spoiled("ZIP64 sizes, local only",
                [](ZipBuilder &b) {
                    ZipItem &item = b.items[kWanted];
                    item.local_extra = QByteArray("\x01\0\x10\0", 4) + QByteArray(16, '\x01');
                    item.local = [](LocalHeader &l) { l.size = l.compressed_size = 0xffffffff; };
                }),
        spoiled("ZIP64 offset",
                [](ZipBuilder &b) {
                    ZipItem &item = b.items[kWanted];
                    item.central_extra = QByteArray("\x01\0\x08\0", 4) + QByteArray(8, '\0');
                    item.central = [](CentralHeader &c) { c.local_offset = 0xffffffff; };
                }),
    };
}

SampleArchive tooManyEntries()
{
    ZipBuilder builder;
    for (int i = 0; i < 10001; ++i)
        builder.items.append(fileItem("pack/" + QByteArray::number(i), {}));
    return {"10,001 entries", builder.build()};
}

} // namespace

QList<SampleArchive> archivesWithBadDirectory()
{
    return fields() + offsets() +
           QList<SampleArchive>{encrypted("encrypted entry requested", kWanted),
                                encrypted("encrypted entry not requested", kOther), tooManyEntries()} +
           refusedMethods() + sizes();
}

} // namespace quillmar::test
