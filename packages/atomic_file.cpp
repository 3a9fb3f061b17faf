#include "packages/atomic_file.h"

#include "packages/path_safety.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstring>

namespace quillmar
{

namespace
{

constexpr qint64 kPieceBytes = 256 * 1024;

/// Hands `length` bytes of `source` from `offset` on to `take`, piece by piece. False when bytes are missing
/// or `take` says so.
template <typename Take>
bool forEachPiece(QFile &source, qint64 offset, qint64 length, Take take)
{
    if (length < 0 || !source.seek(offset))
        return false;
    QByteArray piece(static_cast<qsizetype>(std::min(length, kPieceBytes)), Qt::Uninitialized);
    for (qint64 left = length; left > 0;) {
        const qint64 count = source.read(piece.data(), std::min<qint64>(left, piece.size()));
        if (count <= 0 || !take(QByteArrayView(piece).first(count)))
            return false;
        left -= count;
    }
    return true;
}

/// `file` continues with exactly `bytes`. `file` is open.
bool continuesWith(QFile &file, QByteArrayView bytes)
{
    QByteArray piece(static_cast<qsizetype>(std::min<qint64>(bytes.size(), kPieceBytes)), Qt::Uninitialized);
    while (!bytes.isEmpty()) {
        const qint64 count = file.read(piece.data(), std::min<qint64>(bytes.size(), piece.size()));
        if (count <= 0 || std::memcmp(piece.constData(), bytes.data(), static_cast<std::size_t>(count)) != 0)
            return false;
        bytes = bytes.sliced(count);
    }
    return true;
}

/// Opens `file` when it is a regular file of `size` bytes. Anything else is never opened: a FIFO would block.
bool openIfRegular(QFile &file, qint64 size)
{
    const QFileInfo info(file);
    return info.isFile() && info.size() == size && file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool holdsBytes(const QString &target, QByteArrayView bytes)
{
    QFile file(target);
    return openIfRegular(file, bytes.size()) && continuesWith(file, bytes);
}

bool holdsRange(const QString &target, QFile &source, qint64 offset, qint64 length)
{
    QFile file(target);
    return openIfRegular(file, length) && forEachPiece(source, offset, length, [&file](QByteArrayView piece) {
               return continuesWith(file, piece);
           });
}

} // namespace

PendingFile::PendingFile(const QString &root, const QString &target) : file_(root, target) {}

PendingFile::~PendingFile()
{
    discard();
}

bool PendingFile::open()
{
    if (prepareFolder() && file_.open())
        return true;
    discard();
    return false;
}

bool PendingFile::write(QByteArrayView bytes)
{
    if (file_.isOpen() && file_.write(bytes))
        return true;
    discard();
    return false;
}

bool PendingFile::commit()
{
    if (file_.isOpen() && prepareFolder() && file_.replaceTarget()) {
        createdFolders_.clear();
        return true;
    }
    discard();
    return false;
}

/// Only empty folders go; one that something else has moved into stays.
void PendingFile::discard()
{
    file_.remove();
    for (const QString &folder : std::as_const(createdFolders_))
        removeEmptyFolder(folder);
    createdFolders_.clear();
}

bool PendingFile::prepareFolder()
{
    return file_.prepareFolder(createdFolders_);
}

bool writeFileAtomically(const QString &root, const QString &target, QByteArrayView bytes)
{
    PendingFile file(root, target);
    if (!file.prepareFolder())
        return false;
    if (holdsBytes(target, bytes))
        return true;
    // Another worker may have put the same there meanwhile, and may hold it right now.
    return (file.open() && file.write(bytes) && file.commit()) ||
           (isInsideRoot(root, target) && holdsBytes(target, bytes));
}

bool copyRangeAtomically(const QString &root, const QString &target, QFile &source, qint64 offset,
                         qint64 length)
{
    PendingFile file(root, target);
    if (!file.prepareFolder())
        return false;
    if (holdsRange(target, source, offset, length))
        return true;
    const auto write = [&file](QByteArrayView piece) { return file.write(piece); };
    return (file.open() && forEachPiece(source, offset, length, write) && file.commit()) ||
           (isInsideRoot(root, target) && holdsRange(target, source, offset, length));
}

} // namespace quillmar
