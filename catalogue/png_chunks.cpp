#include "catalogue/png_chunks.h"

#include <QByteArrayView>
#include <QtEndian>

#include <algorithm>
#include <array>

namespace quillmar
{

namespace
{

constexpr QByteArrayView Signature{"\x89PNG\r\n\x1a\n"};
constexpr qsizetype FrameSize = 12; ///< length, type and checksum of a chunk
constexpr std::array<QByteArrayView, 6> PixelChunks{"IHDR", "PLTE", "tRNS", "eXIf", "IDAT", "IEND"};

} // namespace

bool hasPngSignature(const QByteArray &data)
{
    return data.startsWith(Signature);
}

QByteArray pngPixelChunks(const QByteArray &png)
{
    QByteArray kept;
    kept.reserve(png.size());
    kept += Signature;
    QByteArrayView rest = QByteArrayView(png).sliced(Signature.size());
    while (!rest.isEmpty()) {
        if (rest.size() < FrameSize)
            return {};
        const qint64 length = qFromBigEndian<quint32>(rest.data());
        if (length > rest.size() - FrameSize)
            return {};
        const QByteArrayView chunk = rest.first(qsizetype(length) + FrameSize);
        const QByteArrayView type = chunk.sliced(4, 4);
        if (std::ranges::find(PixelChunks, type) != PixelChunks.end())
            kept += chunk;
        if (type == "IEND")
            break;
        rest = rest.sliced(chunk.size());
    }
    return kept;
}

} // namespace quillmar
