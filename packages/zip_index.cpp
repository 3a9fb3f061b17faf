#include "packages/zip_index.h"

#include "packages/path_safety.h"

#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace quillmar
{
namespace
{

constexpr quint32 kEndSignature = 0x06054b50;
constexpr quint32 kCentralSignature = 0x02014b50;
constexpr quint32 kLocalSignature = 0x04034b50;
constexpr qint64 kEndLength = 22;
constexpr qint64 kCentralLength = 46;
constexpr qint64 kLocalLength = 30;
constexpr qint64 kLongestComment = 0xffff;

constexpr int kMostEntries = 10000;
constexpr quint32 kLargestDirectory = 0x1000000;
constexpr quint32 kLargestEntry = 0x20000000;
constexpr qint64 kLargestTotal = 2147483648;

constexpr quint16 kFlagEncrypted = 1U << 0;
constexpr quint16 kFlagDescriptor = 1U << 3;
constexpr quint16 kMethodStored = 0;
constexpr quint16 kMethodDeflated = 8;

quint16 u16(const char *at)
{
    return qFromLittleEndian<quint16>(at);
}
quint32 u32(const char *at)
{
    return qFromLittleEndian<quint32>(at);
}

bool readAt(QFile &file, qint64 offset, char *to, qint64 length)
{
    return file.seek(offset) && file.read(to, length) == length;
}

QByteArray bytesAt(QFile &file, qint64 offset, qint64 length)
{
    QByteArray bytes(length, Qt::Uninitialized);
    if (!readAt(file, offset, bytes.data(), length))
        bytes.clear();
    return bytes;
}

struct EndRecord {
    qint64 position = 0;
    int entries = 0;
    qint64 directory_offset = 0;
};

struct CentralRecord {
    quint8 host = 0;
    quint16 flags = 0;
    quint16 method = 0;
    quint32 crc32 = 0;
    quint32 compressed_size = 0;
    quint32 size = 0;
    quint32 attributes = 0;
    qint64 local_offset = 0;
    QByteArray name;
    qint64 length = 0; ///< of the whole record
};

struct Range {
    qint64 begin = 0;
    qint64 end = 0;
};

/// The last place whose comment ends exactly with the file; an earlier one is not looked for, whatever this
/// one says.
std::optional<qsizetype> endRecordIn(const QByteArray &tail)
{
    for (qsizetype at = tail.size() - kEndLength; at >= 0; --at) {
        const char *record = tail.constData() + at;
        if (u32(record) == kEndSignature && at + kEndLength + u16(record + 20) == tail.size())
            return at;
    }
    return std::nullopt;
}

std::optional<EndRecord> readEndRecord(QFile &file)
{
    const qint64 tailLength = std::min(file.size(), kEndLength + kLongestComment);
    if (tailLength < kEndLength)
        return std::nullopt;
    const qint64 tailOffset = file.size() - tailLength;
    const QByteArray tail = bytesAt(file, tailOffset, tailLength);
    const std::optional<qsizetype> at = endRecordIn(tail);
    if (!at)
        return std::nullopt;

    const char *record = tail.constData() + *at;
    const quint16 entries = u16(record + 10);
    const quint32 directorySize = u32(record + 12);
    const EndRecord end{tailOffset + *at, entries, u32(record + 16)};
    const bool oneDisk = u16(record + 4) == 0 && u16(record + 6) == 0 && u16(record + 8) == entries;
    const bool withinLimits = entries >= 1 && entries <= kMostEntries && directorySize <= kLargestDirectory;
    const bool adjacent = end.directory_offset + directorySize == end.position;
    return oneDisk && withinLimits && adjacent ? std::optional(end) : std::nullopt;
}

std::optional<CentralRecord> readCentralRecord(QFile &file, qint64 position, qint64 directoryEnd)
{
    std::array<char, kCentralLength> fixed;
    const char *record = fixed.data();
    if (position + kCentralLength > directoryEnd || !readAt(file, position, fixed.data(), kCentralLength) ||
        u32(record) != kCentralSignature || u16(record + 34) != 0)
        return std::nullopt;
    const quint16 nameLength = u16(record + 28);
    CentralRecord central{.host = qFromLittleEndian<quint8>(record + 5),
                          .flags = u16(record + 8),
                          .method = u16(record + 10),
                          .crc32 = u32(record + 16),
                          .compressed_size = u32(record + 20),
                          .size = u32(record + 24),
                          .attributes = u32(record + 38),
                          .local_offset = u32(record + 42),
                          .name = {},
                          .length = kCentralLength + nameLength + u16(record + 30) + u16(record + 32)};
    if (position + central.length > directoryEnd)
        return std::nullopt;
    central.name = bytesAt(file, position + kCentralLength, nameLength);
    return central.name.size() == nameLength ? std::optional(central) : std::nullopt;
}

bool isSupported(const CentralRecord &central)
{
    return (central.flags & kFlagEncrypted) == 0 && central.size <= kLargestEntry &&
           (central.method == kMethodStored || central.method == kMethodDeflated);
}

bool localAgrees(const char *local, const CentralRecord &central)
{
    if (u32(local) != kLocalSignature || u16(local + 6) != central.flags ||
        u16(local + 8) != central.method || u16(local + 26) != central.name.size())
        return false;
    return (central.flags & kFlagDescriptor) != 0 ||
           (u32(local + 14) == central.crc32 && u32(local + 18) == central.compressed_size &&
            u32(local + 22) == central.size);
}

/// Where the data of the entry begin; nothing when the local header does not agree or the data reach the
/// directory.
std::optional<qint64> findData(QFile &file, const CentralRecord &central, qint64 directoryOffset)
{
    std::array<char, kLocalLength> fixed;
    const char *local = fixed.data();
    if (central.local_offset + kLocalLength > directoryOffset ||
        !readAt(file, central.local_offset, fixed.data(), kLocalLength) || !localAgrees(local, central))
        return std::nullopt;
    const qint64 nameEnd = central.local_offset + kLocalLength + central.name.size();
    const qint64 data = nameEnd + u16(local + 28);
    if (data + central.compressed_size > directoryOffset)
        return std::nullopt;
    const QByteArray name = bytesAt(file, central.local_offset + kLocalLength, central.name.size());
    return name == central.name ? std::optional(data) : std::nullopt;
}

/// Nothing stands before the first entry, and no byte belongs to two.
bool areDisjointFromStart(std::vector<Range> ranges)
{
    std::sort(ranges.begin(), ranges.end(),
              [](const Range &left, const Range &right) { return left.begin < right.begin; });
    const auto overlap = [](const Range &left, const Range &right) { return right.begin < left.end; };
    return ranges.front().begin == 0 &&
           std::adjacent_find(ranges.cbegin(), ranges.cend(), overlap) == ranges.cend();
}

bool isDosHost(quint8 host)
{
    // FAT, HPFS, NTFS (10 in the format's description, 11 in Info-ZIP's programs), VFAT
    return host == 0 || host == 6 || host == 10 || host == 11 || host == 14;
}

/// Nothing for a link and for what cannot be told.
std::optional<ZipEntry::Kind> kindOf(const CentralRecord &central)
{
    constexpr quint8 unixHost = 3;
    constexpr quint32 typeMask = 0170000;
    constexpr quint32 link = 0120000;
    constexpr quint32 directory = 0040000;
    constexpr quint32 dosDirectory = 0x10;
    const quint32 type = (central.attributes >> 16) & typeMask;
    if (central.host == unixHost && type == link)
        return std::nullopt;
    if (central.name.endsWith('/') || central.name.endsWith('\\'))
        return ZipEntry::Kind::Directory;
    if (central.host == unixHost)
        return type == directory ? ZipEntry::Kind::Directory : ZipEntry::Kind::File;
    if (isDosHost(central.host))
        return (central.attributes & dosDirectory) != 0 ? ZipEntry::Kind::Directory : ZipEntry::Kind::File;
    return std::nullopt;
}

/// Remembers folded names by their hash and shares the names themselves: ten thousand long names are not kept
/// twice.
class SeenNames
{
public:
    bool insert(const QString &path)
    {
        const QString folded = path.toCaseFolded();
        const size_t key = qHash(folded, QHashSeed::globalSeed());
        const auto [begin, end] = std::as_const(paths_).equal_range(key);
        if (std::any_of(begin, end, [&](const QString &seen) { return seen.toCaseFolded() == folded; }))
            return false;
        paths_.insert(key, path);
        return true;
    }

private:
    QMultiHash<size_t, QString> paths_;
};

class Reader
{
public:
    explicit Reader(QFile &file) : file_(file) {}

    ZipIndex read()
    {
        if (!readDirectory())
            return {ZipIndex::Verdict::Malformed, {}};
        if (hasUnsafeEntry_)
            return {ZipIndex::Verdict::UnsafeEntry, {}};
        return {ZipIndex::Verdict::Sound, entries_};
    }

private:
    bool readDirectory()
    {
        const std::optional<EndRecord> end = readEndRecord(file_);
        if (!end)
            return false;
        qint64 position = end->directory_offset;
        for (int i = 0; i < end->entries; ++i) {
            const std::optional<CentralRecord> central = readCentralRecord(file_, position, end->position);
            if (!central || !addEntry(*central, end->directory_offset))
                return false;
            position += central->length;
        }
        return position == end->position && areDisjointFromStart(std::move(ranges_));
    }

    bool addEntry(const CentralRecord &central, qint64 directoryOffset)
    {
        total_ += central.size;
        if (!isSupported(central) || total_ > kLargestTotal)
            return false;
        const std::optional<qint64> data = findData(file_, central, directoryOffset);
        if (!data)
            return false;
        ranges_.push_back({central.local_offset, *data + central.compressed_size});
        judge(central, *data);
        return true;
    }

    /// An unsafe entry is noted, not reported at once: a flaw of the structure further on weighs more.
    void judge(const CentralRecord &central, qint64 data)
    {
        if (hasUnsafeEntry_)
            return;
        const QString path = safeRelativePath(QString::fromUtf8(central.name));
        const std::optional<ZipEntry::Kind> kind = kindOf(central);
        hasUnsafeEntry_ = path.isEmpty() || !kind || !names_.insert(path);
        if (hasUnsafeEntry_)
            return;
        const bool stored = central.method == kMethodStored;
        entries_.append({.path = path,
                         .kind = *kind,
                         .method = stored ? ZipEntry::Method::Stored : ZipEntry::Method::Deflated,
                         .crc32 = central.crc32,
                         .compressed_size = central.compressed_size,
                         .size = central.size,
                         .data_offset = data});
    }

    QFile &file_;
    QList<ZipEntry> entries_;
    std::vector<Range> ranges_;
    SeenNames names_;
    qint64 total_ = 0;
    bool hasUnsafeEntry_ = false;
};

} // namespace

ZipIndex readZipIndex(QFile &file)
{
    return Reader(file).read();
}

} // namespace quillmar
