#include "tests/support/zip_builder/zip_builder.h"

#include <QtEndian>

#include <libdeflate.h>

#include <memory>
#include <utility>

namespace quillmar::test
{
namespace
{

template <typename Number>
void put(QByteArray &to, Number value)
{
    const Number little = qToLittleEndian(value);
    to.append(reinterpret_cast<const char *>(&little), sizeof little);
}

QByteArray bytesOf(const LocalHeader &header)
{
    QByteArray bytes;
    put(bytes, header.signature);
    put(bytes, header.version_needed);
    put(bytes, header.flags);
    put(bytes, header.method);
    put(bytes, header.time);
    put(bytes, header.date);
    put(bytes, header.crc32);
    put(bytes, header.compressed_size);
    put(bytes, header.size);
    put(bytes, header.name_length);
    put(bytes, header.extra_length);
    return bytes + header.name + header.extra;
}

QByteArray bytesOf(const CentralHeader &header)
{
    QByteArray bytes;
    put(bytes, header.signature);
    put(bytes, header.version_made_by);
    put(bytes, header.host);
    put(bytes, header.version_needed);
    put(bytes, header.flags);
    put(bytes, header.method);
    put(bytes, header.time);
    put(bytes, header.date);
    put(bytes, header.crc32);
    put(bytes, header.compressed_size);
    put(bytes, header.size);
    put(bytes, header.name_length);
    put(bytes, header.extra_length);
    put(bytes, header.comment_length);
    put(bytes, header.disk);
    put(bytes, header.internal_attributes);
    put(bytes, header.external_attributes);
    put(bytes, header.local_offset);
    return bytes + header.name + header.extra + header.comment;
}

QByteArray bytesOf(const EndHeader &header)
{
    QByteArray bytes;
    put(bytes, header.signature);
    put(bytes, header.disk);
    put(bytes, header.directory_disk);
    put(bytes, header.entries_here);
    put(bytes, header.entries);
    put(bytes, header.directory_size);
    put(bytes, header.directory_offset);
    put(bytes, header.comment_length);
    return bytes + header.comment;
}

quint16 length16(const QByteArray &bytes)
{
    return static_cast<quint16>(bytes.size());
}
quint32 length32(const QByteArray &bytes)
{
    return static_cast<quint32>(bytes.size());
}

LocalHeader localHeader(const ZipItem &item, const QByteArray &data)
{
    LocalHeader header;
    header.flags = item.flags;
    header.method = item.deflated ? 8 : 0;
    header.crc32 = crc32(item.content);
    header.compressed_size = length32(data);
    header.size = length32(item.content);
    header.name = item.name;
    header.name_length = length16(item.name);
    header.extra = item.local_extra;
    header.extra_length = length16(item.local_extra);
    return header;
}

CentralHeader centralHeader(const ZipItem &item, const LocalHeader &local, qsizetype offset)
{
    CentralHeader header;
    header.flags = local.flags;
    header.method = local.method;
    header.crc32 = local.crc32;
    header.compressed_size = local.compressed_size;
    header.size = local.size;
    header.name = item.name;
    header.name_length = length16(item.name);
    header.extra = item.central_extra;
    header.extra_length = length16(item.central_extra);
    header.comment = item.comment;
    header.comment_length = length16(item.comment);
    header.external_attributes = item.mode << 16;
    header.local_offset = static_cast<quint32>(offset);
    return header;
}

} // namespace

QByteArray ZipBuilder::build() const
{
    QByteArray archive = prefix;
    QList<QByteArray> records;
    for (const ZipItem &item : items) {
        const QByteArray data = item.data.value_or(item.deflated ? deflated(item.content) : item.content);
        LocalHeader local = localHeader(item, data);
        archive += item.gap;
        CentralHeader central = centralHeader(item, local, archive.size());
        if (item.local)
            item.local(local);
        if (item.central)
            item.central(central);
        archive += bytesOf(local) + data + item.trailer;
        records.insert(directory_reversed ? 0 : records.size(), bytesOf(central));
    }
    QByteArray directory = records.join();
    if (directory_bytes)
        directory_bytes(directory);

    EndHeader header;
    header.entries = header.entries_here = static_cast<quint16>(items.size());
    header.directory_size = length32(directory);
    header.directory_offset = length32(archive);
    header.comment = comment;
    header.comment_length = length16(comment);
    if (end)
        end(header);
    return archive + directory + after_directory + bytesOf(header);
}

QByteArray deflated(const QByteArray &bytes, int level)
{
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), &libdeflate_free_compressor);
    const auto length = static_cast<size_t>(bytes.size());
    QByteArray out(static_cast<qsizetype>(libdeflate_deflate_compress_bound(compressor.get(), length)),
                   Qt::Uninitialized);
    const size_t used = libdeflate_deflate_compress(compressor.get(), bytes.constData(), length, out.data(),
                                                    static_cast<size_t>(out.size()));
    out.truncate(static_cast<qsizetype>(used));
    return out;
}

quint32 crc32(const QByteArray &bytes)
{
    return libdeflate_crc32(0, bytes.constData(), static_cast<size_t>(bytes.size()));
}

QByteArray dataDescriptor(const QByteArray &content, qsizetype compressedSize, bool withSignature)
{
    QByteArray bytes;
    if (withSignature)
        put(bytes, quint32{0x08074b50});
    put(bytes, crc32(content));
    put(bytes, static_cast<quint32>(compressedSize));
    put(bytes, length32(content));
    return bytes;
}

ZipItem fileItem(const QByteArray &name, const QByteArray &content)
{
    return {.name = name, .content = content};
}

ZipItem deflatedItem(const QByteArray &name, const QByteArray &content)
{
    return {.name = name, .content = content, .deflated = true};
}

ZipItem folderItem(const QByteArray &name)
{
    return {.name = name, .content = {}, .mode = 040755};
}

ZipItem linkItem(const QByteArray &name, const QByteArray &to)
{
    return {.name = name, .content = to, .mode = 0120777};
}

QByteArray zipOf(const QList<ZipItem> &items)
{
    return ZipBuilder{.items = items}.build();
}

QByteArray noise(qsizetype length, quint32 seed)
{
    QByteArray bytes(length, Qt::Uninitialized);
    quint32 state = seed;
    for (char &byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

} // namespace quillmar::test
