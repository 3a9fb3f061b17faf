#pragma once

#include "packages/zip_index.h"

#include <QByteArrayView>

#include <memory>

namespace quillmar
{

/// Whether the data of an entry are what its headers declare.
enum class ZipDataVerdict {
    Sound,
    Damaged,     ///< unreadable, or another length or checksum than declared
    OutOfMemory, ///< says nothing about the archive
};

/// The plain bytes of one inflated entry.
class InflatedEntry
{
public:
    /// Inflates `entry`, which is deflated, from the archive in the open `file`.
    ///
    /// Takes exactly the declared size and a piece of bounded size of the compressed bytes at a time; a stream that holds
    /// more or less than declared is damaged, whatever it would grow to.
    static InflatedEntry read(QFile &file, const ZipEntry &entry);

    ZipDataVerdict verdict() const { return verdict_; }

    /// Valid while this object lives; empty unless sound.
    QByteArrayView bytes() const { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<char[]> bytes_;
    qsizetype size_ = 0;
    ZipDataVerdict verdict_ = ZipDataVerdict::Damaged;
};

/// Compares length and checksum of the stored `entry` with its declaration, in pieces of bounded size.
ZipDataVerdict checkStoredEntry(QFile &file, const ZipEntry &entry);

} // namespace quillmar
