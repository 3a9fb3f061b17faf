#include "catalogue/preview_decoder.h"

#include "catalogue/jpeg_scans.h"
#include "catalogue/png_chunks.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>
#include <array>
#include <new>

namespace quillmar
{

namespace
{

constexpr std::array<QByteArrayView, 3> Formats{"png", "jpeg", "webp"};
constexpr int LongestSide = 8192;
constexpr int MostPixels = 16 * 1024 * 1024;
constexpr QSize LargestKept{1600, 1200};

/// Usual programs write 10 scans into a progressive picture, those that search for the smallest file some 20.
/// One takes up to 25 ms for 16 megapixels.
constexpr qsizetype MostJpegScans = 50;

bool hasWebpSignature(const QByteArray &data)
{
    return data.startsWith("RIFF") && data.size() >= 12 && QByteArrayView(data).sliced(8).startsWith("WEBP");
}

/// What the decoder may see of `data`: nothing of a format that is not shown, so that no other plug-in of the
/// host looks at it, and nothing that costs more memory or time than a picture of its size should.
QByteArray harmlessPart(const QByteArray &data)
{
    if (data.size() > MaximumPreviewSize)
        return {};
    if (hasPngSignature(data))
        return pngPixelChunks(data);
    if (hasJpegSignature(data))
        return countJpegScans(data) <= MostJpegScans ? data : QByteArray();
    return hasWebpSignature(data) ? data : QByteArray();
}

bool isAcceptedSize(QSize size)
{
    const auto isAcceptedSide = [](int side) { return side >= 0 && side <= LongestSide; };
    return isAcceptedSide(size.width()) && isAcceptedSide(size.height()) &&
           size.width() * size.height() <= MostPixels;
}

QImage readPicture(const QByteArray &data)
{
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    const QByteArray format = reader.format().toLower();
    if (std::ranges::find(Formats, QByteArrayView(format)) == Formats.end() || !isAcceptedSize(reader.size()))
        return {};
    reader.setAutoTransform(true);
    return reader.read();
}

/// 16 bits per channel show nothing more, take twice the memory and ten times as long to scale.
QImage withEightBits(QImage image)
{
    if (image.depth() > 32)
        image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    return image;
}

QImage fitted(const QImage &image)
{
    if (image.width() <= LargestKept.width() && image.height() <= LargestKept.height())
        return image;
    return image.scaled(LargestKept, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

QImage decodePreview(const QByteArray &data)
{
    // Sizes are bounded before anything is allocated; the exception is for a process without memory.
    try {
        const QByteArray picture = harmlessPart(data);
        return picture.isEmpty() ? QImage() : fitted(withEightBits(readPicture(picture)));
    } catch (const std::bad_alloc &) {
        return {};
    }
}

} // namespace quillmar
