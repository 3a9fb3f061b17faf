#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>

namespace quillmar::test
{

/// `image` in `format` of QImageWriter; quality 100 is lossless for WebP.
QByteArray encoded(const QImage &image, const char *format, int quality = 100);

/// One colour all over.
QImage plainPicture(QSize size, const QColor &colour = Qt::darkCyan);

/// Quarters in red and green above blue and white.
QImage quarteredPicture(QSize size = {64, 32});

/// Initials of the colours of the quarters, line by line: "RGBW" for quarteredPicture().
QByteArray quartersOf(const QImage &image);

/// A chunk with a correct checksum.
QByteArray pngChunk(const QByteArray &type, const QByteArray &data);

/// `png` with `chunks` after its header.
QByteArray withPngChunks(const QByteArray &png, const QByteArray &chunks);

/// The same file, whose header claims another size.
QByteArray pngClaiming(const QByteArray &png, quint32 width, quint32 height);
QByteArray jpegClaiming(const QByteArray &jpeg, quint16 width, quint16 height);

/// `data` as zlib compresses it.
QByteArray zlibStream(const QByteArray &data);

/// `jpeg` with an APP1 segment of `contents` after its first marker.
QByteArray withExif(const QByteArray &jpeg, const QByteArray &contents);

/// Contents of an EXIF segment that says nothing but the orientation.
QByteArray exifOrientation(quint16 orientation);

/// A progressive JPEG with the last scan repeated, `scans` scans in all.
QByteArray progressiveJpeg(const QImage &image, qsizetype scans);

/// An animation of `frames`, all of the same size.
QByteArray animatedWebp(const QList<QImage> &frames);

/// A WebP file whose extended header claims `width` x `height`, with `frame` inside.
QByteArray webpClaiming(quint32 width, quint32 height, const QImage &frame);

/// `picture` made `size` bytes long by what its decoder does not look at.
QByteArray padded(const QByteArray &jpeg, qsizetype size);

} // namespace quillmar::test
