#include "packages/sha256.h"

#include <QIODevice>

namespace quillmar
{

namespace
{

constexpr qsizetype kPieceBytes = 256 * 1024;

} // namespace

QByteArray sha256Hex(QByteArrayView bytes)
{
    Sha256 hash;
    hash.add(bytes);
    return hash.hexDigest();
}

QByteArray sha256Hex(QIODevice &device)
{
    Sha256 hash;
    QByteArray piece(kPieceBytes, Qt::Uninitialized);
    for (;;) {
        const qint64 count = device.read(piece.data(), piece.size());
        if (count < 0)
            return {};
        if (count == 0)
            return hash.hexDigest();
        hash.add(QByteArrayView(piece).first(count));
    }
}

} // namespace quillmar
