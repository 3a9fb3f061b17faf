#include "packages/zip_entry_data.h"

#include <QFile>

#include <libdeflate.h>

#include <algorithm>
#include <new>

namespace quillmar
{
namespace
{

constexpr qint64 piece_length = qint64{1} << 20;

std::unique_ptr<char[]> tryAllocate(qsizetype length)
{
    return std::unique_ptr<char[]>(new (std::nothrow) char[static_cast<size_t>(length)]);
}

struct FreeDecompressor {
    void operator()(libdeflate_decompressor *decompressor) const { libdeflate_free_decompressor(decompressor); }
};

} // namespace

InflatedEntry InflatedEntry::read(QFile &file, const ZipEntry &entry)
{
    InflatedEntry inflated;
    const std::unique_ptr<libdeflate_decompressor, FreeDecompressor> decompressor(
        libdeflate_alloc_decompressor());
    const std::unique_ptr<char[]> compressed = tryAllocate(entry.compressed_size);
    inflated.bytes_ = tryAllocate(entry.size);
    if (!decompressor || !compressed || !inflated.bytes_) {
        inflated.verdict_ = ZipDataVerdict::OutOfMemory;
        return inflated;
    }
    size_t consumed = 0;
    size_t produced = 0;
    const bool sound =
        file.seek(entry.data_offset) && file.read(compressed.get(), entry.compressed_size) == entry.compressed_size &&
        libdeflate_deflate_decompress_ex(decompressor.get(), compressed.get(), entry.compressed_size,
                                         inflated.bytes_.get(), entry.size, &consumed,
                                         &produced) == LIBDEFLATE_SUCCESS &&
        consumed == entry.compressed_size && produced == entry.size &&
        libdeflate_crc32(0, inflated.bytes_.get(), entry.size) == entry.crc32;
    if (sound) {
        inflated.size_ = entry.size;
        inflated.verdict_ = ZipDataVerdict::Sound;
    }
    return inflated;
}

ZipDataVerdict checkStoredEntry(QFile &file, const ZipEntry &entry)
{
    if (entry.size != entry.compressed_size || !file.seek(entry.data_offset))
        return ZipDataVerdict::Damaged;
    QByteArray piece(std::min<qint64>(entry.size, piece_length), Qt::Uninitialized);
    quint32 crc = 0;
    for (qint64 left = entry.size; left > 0;) {
        const qint64 count = file.read(piece.data(), std::min(left, piece_length));
        if (count <= 0)
            return ZipDataVerdict::Damaged;
        crc = libdeflate_crc32(crc, piece.constData(), static_cast<size_t>(count));
        left -= count;
    }
    return crc == entry.crc32 ? ZipDataVerdict::Sound : ZipDataVerdict::Damaged;
}

} // namespace quillmar
