#pragma once

#include "packages/inflater.h"
#include "packages/zip_index.h"

namespace quillmar
{

/// Reads the plain bytes of entries and compares them with what their headers declare.
///
/// Memory is a fixed, small amount whatever the size of an entry. Any one thread at a time.
class ZipEntryReader
{
public:
    /// Hands the bytes of `entry`, out of the archive in the open `file`, to `sink` piece by piece.
    ///
    /// True when length and checksum are as declared. When the answer is false, what `sink` got is worth
    /// nothing; it never gets more than the declared size.
    bool read(QFile &file, const ZipEntry &entry, const Inflater::Sink &sink);

private:
    Inflater inflater_;
};

} // namespace quillmar
