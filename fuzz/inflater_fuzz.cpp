#include "packages/inflater.h"

#include <QByteArray>
#include <QTemporaryFile>

#include <libdeflate.h>

#include <cstdlib>
#include <memory>

namespace
{

constexpr qsizetype kLongest = 1 << 20;

/// What libdeflate makes of the stream; a null array when it refuses it or it is too long.
QByteArray reference(const uint8_t *data, size_t size)
{
    const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> decompressor(
        libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
    QByteArray plain(kLongest, Qt::Uninitialized);
    size_t consumed = 0;
    size_t produced = 0;
    if (libdeflate_deflate_decompress_ex(decompressor.get(), data, size, plain.data(), kLongest, &consumed,
                                         &produced) != LIBDEFLATE_SUCCESS ||
        consumed != size)
        return {};
    plain.truncate(static_cast<qsizetype>(produced));
    return plain;
}

} // namespace

/// A stream that we accept has the content that libdeflate sees in it. Not the other way round: libdeflate
/// also takes code words that an incomplete code does not have.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static QTemporaryFile file;
    static quillmar::Inflater inflater;
    const auto length = static_cast<qint64>(size);
    if (!file.open() || !file.resize(0) ||
        file.write(reinterpret_cast<const char *>(data), length) != length || !file.flush())
        std::abort();
    const QByteArray expected = reference(data, size);
    QByteArray plain;
    const bool sound =
        inflater.inflate(file, 0, length, expected.size(), [&](QByteArrayView bytes) { plain += bytes; });
    file.close();
    if (sound && (expected.isNull() || plain != expected))
        std::abort();
    return 0;
}
