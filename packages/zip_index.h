#pragma once

#include <QList>
#include <QString>

class QFile;

namespace quillmar
{

/// One entry of a ZIP archive whose structure has been checked.
struct ZipEntry {
    enum class Kind { File, Directory };
    enum class Method { Stored, Deflated };

    QString path; ///< safe relative path, '/' separators, no trailing one
    Kind kind = Kind::File;
    Method method = Method::Stored;
    quint32 crc32 = 0;           ///< of the plain bytes, as declared
    quint32 compressed_size = 0; ///< bytes in the archive
    quint32 size = 0;            ///< plain bytes, as declared; at most 512 MiB
    qint64 data_offset = 0;      ///< of the first compressed byte, from the start of the file
};

/// Table of entries in the order of the central directory, or the reason why there is none.
struct ZipIndex {
    enum class Verdict {
        Sound,
        Malformed,   ///< the structure of the archive is refused
        UnsafeEntry, ///< the structure is sound, but a name is unsafe or a duplicate, or an entry no file or
                     ///< directory
    };

    Verdict verdict = Verdict::Malformed;
    QList<ZipEntry> entries; ///< empty unless the verdict is `Sound`
};

/// Checks the structure of the archive in the open `file` and lists its entries.
///
/// Nothing is repaired and nothing is searched for: one end record at the end of the file, one directory
/// directly before it, local headers that repeat the directory's words, ranges that do not overlap and that
/// start at the first byte. Refused besides: several disks, ZIP64, encryption, methods other than stored and
/// deflated, more than 10,000 entries, a directory over 16 MiB, an entry over 512 MiB, over 2 GiB in all.
///
/// Names are read as UTF-8 whatever their flag says; bytes that are none become U+FFFD and a leading byte
/// order mark is dropped, so names that differ only there are duplicates of each other. Duplicates are found
/// after case folding. Reads headers only, never data. Any thread; moves the position of `file`, which is
/// best opened unbuffered.
ZipIndex readZipIndex(QFile &file);

} // namespace quillmar
