#include "tests/unit/catalogue/picture_samples.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <QtEndian>

namespace quillmar::test
{

namespace
{

constexpr qsizetype PngHeadSize = 8 + 12 + 13; ///< signature and header chunk

template <typename Integer>
QByteArray bigEndian(Integer value)
{
    QByteArray bytes(sizeof value, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

/// The first `size` bytes of `value`, least significant first.
QByteArray littleEndian(quint32 value, qsizetype size)
{
    QByteArray bytes(sizeof value, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes.first(size);
}

quint32 pngChecksum(const QByteArray &bytes)
{
    quint32 sum = 0xffffffffU;
    for (const char byte : bytes) {
        sum ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum & 1U) != 0 ? (sum >> 1U) ^ 0xedb88320U : sum >> 1U;
    }
    return ~sum;
}

QByteArray riffChunk(const QByteArray &type, const QByteArray &data)
{
    const QByteArray padding(data.size() % 2, '\0');
    return type + littleEndian(quint32(data.size()), 4) + data + padding;
}

QByteArray webpFile(const QByteArray &chunks)
{
    return riffChunk("RIFF", "WEBP" + chunks);
}

/// The chunk with the pixels of a lossless WebP file.
QByteArray webpPixels(const QImage &image)
{
    return encoded(image, "webp").sliced(12);
}

QByteArray extendedHeader(quint32 width, quint32 height, bool isAnimated)
{
    const QByteArray flags(1, isAnimated ? '\x02' : '\0');
    return riffChunk("VP8X",
                     flags + QByteArray(3, '\0') + littleEndian(width - 1, 3) + littleEndian(height - 1, 3));
}

QByteArray animationFrame(const QImage &image)
{
    const QByteArray place(6, '\0');
    const QByteArray size =
        littleEndian(quint32(image.width()) - 1, 3) + littleEndian(quint32(image.height()) - 1, 3);
    const QByteArray duration = littleEndian(40, 3);
    return riffChunk("ANMF", place + size + duration + QByteArray(1, '\0') + webpPixels(image));
}

char initialOf(const QColor &colour)
{
    const bool red = colour.red() > 127;
    const bool green = colour.green() > 127;
    const bool blue = colour.blue() > 127;
    if (red && green && blue)
        return 'W';
    return red ? 'R' : green ? 'G' : 'B';
}

} // namespace

QByteArray encoded(const QImage &image, const char *format, int quality)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    return writer.write(image) ? buffer.data() : QByteArray();
}

QImage plainPicture(QSize size, const QColor &colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

QImage quarteredPicture(QSize size)
{
    QImage image = plainPicture(size, Qt::white);
    const QSize half = size / 2;
    QPainter painter(&image);
    painter.fillRect(QRect(QPoint(0, 0), half), Qt::red);
    painter.fillRect(QRect(QPoint(half.width(), 0), half), Qt::green);
    painter.fillRect(QRect(QPoint(0, half.height()), half), Qt::blue);
    return image;
}

QByteArray quartersOf(const QImage &image)
{
    if (image.isNull())
        return "null";
    QByteArray initials;
    for (const int row : {1, 3}) {
        for (const int column : {1, 3}) {
            const QPoint middle(image.width() * column / 4, image.height() * row / 4);
            initials += initialOf(image.pixelColor(middle));
        }
    }
    return initials;
}

QByteArray pngChunk(const QByteArray &type, const QByteArray &data)
{
    return bigEndian(quint32(data.size())) + type + data + bigEndian(pngChecksum(type + data));
}

QByteArray withPngChunks(const QByteArray &png, const QByteArray &chunks)
{
    return png.first(PngHeadSize) + chunks + png.sliced(PngHeadSize);
}

QByteArray pngClaiming(const QByteArray &png, quint32 width, quint32 height)
{
    const QByteArray rest = png.sliced(8 + 8 + 8, 5);
    return png.first(8) + pngChunk("IHDR", bigEndian(width) + bigEndian(height) + rest) +
           png.sliced(PngHeadSize);
}

QByteArray jpegClaiming(const QByteArray &jpeg, quint16 width, quint16 height)
{
    QByteArray changed = jpeg;
    const qsizetype frame = jpeg.indexOf("\xff\xc0");
    const QByteArray size = bigEndian(height) + bigEndian(width);
    changed.replace(frame + 5, size.size(), size);
    return changed;
}

QByteArray zlibStream(const QByteArray &data)
{
    return qCompress(data, 9).sliced(4);
}

QByteArray withExif(const QByteArray &jpeg, const QByteArray &contents)
{
    return jpeg.first(2) + "\xff\xe1" + bigEndian(quint16(contents.size() + 2)) + contents + jpeg.sliced(2);
}

QByteArray exifOrientation(quint16 orientation)
{
    const QByteArray marker("Exif\0\0", 6);
    const QByteArray head("MM\0*\0\0\0\x08", 8);
    const QByteArray entry = QByteArray("\0\x01\x01\x12\0\x03\0\0\0\x01", 10) + bigEndian(orientation);
    return marker + head + entry + QByteArray(2 + 4, '\0');
}

QByteArray progressiveJpeg(const QImage &image, qsizetype scans)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setProgressiveScanWrite(true);
    if (!writer.write(image))
        return {};
    const QByteArray jpeg = buffer.data();
    const QByteArray start("\xff\xda");
    const QByteArray end = jpeg.last(2);
    const QByteArray lastScan = jpeg.sliced(jpeg.lastIndexOf(start)).chopped(2);
    return jpeg.chopped(2) + lastScan.repeated(scans - jpeg.count(start)) + end;
}

QByteArray animatedWebp(const QList<QImage> &frames)
{
    const QSize size = frames.first().size();
    QByteArray chunks = extendedHeader(quint32(size.width()), quint32(size.height()), true) +
                        riffChunk("ANIM", QByteArray(6, '\0'));
    for (const QImage &frame : frames)
        chunks += animationFrame(frame);
    return webpFile(chunks);
}

QByteArray webpClaiming(quint32 width, quint32 height, const QImage &frame)
{
    return webpFile(extendedHeader(width, height, false) + webpPixels(frame));
}

QByteArray padded(const QByteArray &jpeg, qsizetype size)
{
    return jpeg + QByteArray(size - jpeg.size(), '\0');
}

} // namespace quillmar::test
