#include "packages/zip_entry_reader.h"

#include <QFile>

#include <libdeflate.h>

#include <algorithm>

namespace quillmar
{
namespace
{

constexpr qint64 kPieceBytes = 256 * 1024;

bool readStored(QFile &file, const ZipEntry &entry, const Inflater::Sink &sink)
{
    if (entry.size != entry.compressed_size || !file.seek(entry.data_offset))
        return false;
    QByteArray piece(std::min<qint64>(entry.size, kPieceBytes), Qt::Uninitialized);
    for (qint64 left = entry.size; left > 0;) {
        const qint64 count = file.read(piece.data(), std::min(left, kPieceBytes));
        if (count <= 0)
            return false;
        sink(QByteArrayView(piece).first(count));
        left -= count;
    }
    return true;
}

} // namespace

bool ZipEntryReader::read(QFile &file, const ZipEntry &entry, const Inflater::Sink &sink)
{
    quint32 crc = 0;
    const Inflater::Sink checked = [&](QByteArrayView bytes) {
        crc = libdeflate_crc32(crc, bytes.data(), static_cast<std::size_t>(bytes.size()));
        sink(bytes);
    };
    const bool complete =
        entry.method == ZipEntry::Method::Stored
            ? readStored(file, entry, checked)
            : inflater_.inflate(file, entry.data_offset, entry.compressed_size, entry.size, checked);
    return complete && crc == entry.crc32;
}

} // namespace quillmar
