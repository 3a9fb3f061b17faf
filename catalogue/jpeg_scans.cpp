#include "catalogue/jpeg_scans.h"

#include <QByteArrayView>
#include <QtEndian>

namespace quillmar
{

namespace
{

constexpr QByteArrayView Signature{"\xff\xd8"};
constexpr char MarkerPrefix = '\xff';
constexpr uchar StartOfScan = 0xda;
constexpr uchar EndOfImage = 0xd9;

/// Markers with a length and contents; all others, and a byte that only fills, stand for themselves.
bool hasContents(uchar marker)
{
    const bool isRestart = marker >= 0xd0 && marker <= 0xd7;
    const bool isFill = marker == 0xff;
    return marker >= 0xc0 && !isRestart && !isFill && marker != 0xd8;
}

/// Position of the byte after the marker at `position`, including its contents.
qsizetype endOfMarker(const QByteArray &jpeg, qsizetype position)
{
    const qsizetype contents = position + 2;
    if (contents + 2 > jpeg.size())
        return jpeg.size();
    return contents + qFromBigEndian<quint16>(jpeg.constData() + contents);
}

} // namespace

bool hasJpegSignature(const QByteArray &data)
{
    return data.startsWith(Signature);
}

qsizetype countJpegScans(const QByteArray &jpeg)
{
    qsizetype scans = 0;
    qsizetype position = Signature.size();
    while ((position = jpeg.indexOf(MarkerPrefix, position)) >= 0 && position + 1 < jpeg.size()) {
        const uchar marker = uchar(jpeg.at(position + 1));
        if (marker == EndOfImage)
            break;
        if (marker == StartOfScan)
            ++scans;
        if (hasContents(marker))
            position = endOfMarker(jpeg, position);
        else
            position += marker == 0xff ? 1 : 2;
    }
    return scans;
}

} // namespace quillmar
