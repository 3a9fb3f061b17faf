#include "demo/catalogue/exif.h"

#include <QBuffer>
#include <QTransform>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

constexpr int kQuality = 88;
constexpr qsizetype kStartOfImageBytes = 2;

/// What undoes the turn that a viewer makes for `orientation`.
QTransform storedTurn(int orientation)
{
    switch (orientation) {
    case 2:
        return QTransform::fromScale(-1, 1);
    case 3:
        return QTransform().rotate(180);
    case 4:
        return QTransform::fromScale(1, -1);
    case 5:
        return {0, 1, 1, 0, 0, 0};
    case 6:
        return QTransform().rotate(-90);
    case 7:
        return {0, -1, -1, 0, 0, 0};
    case 8:
        return QTransform().rotate(90);
    default:
        return {};
    }
}

/// An EXIF segment with one entry: tag 0x0112, one short, in a big-endian TIFF header.
QByteArray orientationSegment(int orientation)
{
    QByteArray segment = QByteArray::fromHex("ffe10022457869660000"
                                             "4d4d002a00000008"
                                             "0001"
                                             "011200030000000100000000"
                                             "00000000");
    constexpr qsizetype valueOffset = 29;
    segment[valueOffset] = static_cast<char>(orientation);
    return segment;
}

} // namespace

QByteArray turnedJpeg(const QImage &upright, int orientation)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!upright.transformed(storedTurn(orientation)).save(&buffer, "JPEG", kQuality))
        return {};
    QByteArray file = buffer.data();
    return file.insert(kStartOfImageBytes, orientationSegment(orientation));
}

} // namespace quillmar::demo
