#pragma once

#include <QByteArray>
#include <QList>

#include <functional>
#include <optional>

namespace quillmar::test
{

/// The records of a ZIP archive, field by field. The builder fills them in; a test then changes what it
/// likes.
struct LocalHeader {
    quint32 signature = 0x04034b50;
    quint16 version_needed = 20;
    quint16 flags = 0;
    quint16 method = 0;
    quint16 time = 0;
    quint16 date = 0x21;
    quint32 crc32 = 0;
    quint32 compressed_size = 0;
    quint32 size = 0;
    quint16 name_length = 0;
    quint16 extra_length = 0;
    QByteArray name;
    QByteArray extra;
};

struct CentralHeader {
    quint32 signature = 0x02014b50;
    quint8 version_made_by = 20;
    quint8 host = 3;
    quint16 version_needed = 20;
    quint16 flags = 0;
    quint16 method = 0;
    quint16 time = 0;
    quint16 date = 0x21;
    quint32 crc32 = 0;
    quint32 compressed_size = 0;
    quint32 size = 0;
    quint16 name_length = 0;
    quint16 extra_length = 0;
    quint16 comment_length = 0;
    quint16 disk = 0;
    quint16 internal_attributes = 0;
    quint32 external_attributes = 0;
    quint32 local_offset = 0;
    QByteArray name;
    QByteArray extra;
    QByteArray comment;
};

struct EndHeader {
    quint32 signature = 0x06054b50;
    quint16 disk = 0;
    quint16 directory_disk = 0;
    quint16 entries_here = 0;
    quint16 entries = 0;
    quint32 directory_size = 0;
    quint32 directory_offset = 0;
    quint16 comment_length = 0;
    QByteArray comment;
};

/// One entry as a good archive would hold it, and what to spoil about it.
struct ZipItem {
    QByteArray name = {};
    QByteArray content = {};
    bool deflated = false;
    quint32 mode = 0100644; ///< type and permissions as a Unix host stores them
    quint16 flags = 0;
    QByteArray local_extra = {};
    QByteArray central_extra = {};
    QByteArray comment = {};
    QByteArray gap = {};                           ///< bytes before the local header
    QByteArray trailer = {};                       ///< bytes after the data, such as a data descriptor
    std::optional<QByteArray> data = {};           ///< what stands in the archive instead of the right data
    std::function<void(LocalHeader &)> local = {}; ///< last word on the local header
    std::function<void(CentralHeader &)> central = {}; ///< last word on the record in the directory
};

/// An archive, byte by byte.
struct ZipBuilder {
    QList<ZipItem> items = {};
    QByteArray comment = {};
    QByteArray prefix = {};          ///< bytes before the first entry; offsets count them
    QByteArray after_directory = {}; ///< bytes between the directory and the end record
    bool directory_reversed = false; ///< the directory lists the entries from the last one on
    std::function<void(QByteArray &)> directory_bytes = {}; ///< last word on the bytes of the directory
    std::function<void(EndHeader &)> end = {};              ///< last word on the end record

    QByteArray build() const;
};

/// Raw deflate of `bytes`; level 0 gives stored blocks.
QByteArray deflated(const QByteArray &bytes, int level = 6);

quint32 crc32(const QByteArray &bytes);

/// Checksum and sizes as they follow the data of an entry with flag bit 3.
QByteArray dataDescriptor(const QByteArray &content, qsizetype compressedSize, bool withSignature);

/// A stored file, a deflated file, a folder and a symbolic link, as a Unix host stores them.
ZipItem fileItem(const QByteArray &name, const QByteArray &content = "content");
ZipItem deflatedItem(const QByteArray &name, const QByteArray &content);
ZipItem folderItem(const QByteArray &name);
ZipItem linkItem(const QByteArray &name, const QByteArray &to);

/// The good archive of these items.
QByteArray zipOf(const QList<ZipItem> &items);

/// `length` bytes without a pattern, the same in every run.
QByteArray noise(qsizetype length, quint32 seed = 1);

} // namespace quillmar::test
