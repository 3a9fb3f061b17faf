#include "demo/service/giant_package.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QSaveFile>
#include <QtEndian>

#include <libdeflate.h>
#include <openssl/evp.h>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

constexpr qint64 kSmallest = 4096;
constexpr qint64 kLargest = qint64(2) << 30;
constexpr qint64 kLargestEntry = qint64(256) << 20;
constexpr qint64 kBlock = qint64(1) << 20;
constexpr qint64 kLocalHeader = 30;
constexpr qint64 kDirectoryHeader = 46;
constexpr qint64 kEndRecord = 22;
constexpr qint64 kNameLength = 13; // "giant/00.webm"

struct Entry {
    QByteArray name;
    qint64 offset = 0;
    qint64 size = 0;
    quint32 crc = 0;
};

class LittleEndian
{
public:
    LittleEndian &u16(qint64 value) { return append(static_cast<quint16>(value)); }
    LittleEndian &u32(qint64 value) { return append(static_cast<quint32>(value)); }
    const QByteArray &bytes() const { return bytes_; }

private:
    template <typename T>
    LittleEndian &append(T value)
    {
        const T little = qToLittleEndian(value);
        bytes_.append(reinterpret_cast<const char *>(&little), sizeof(little));
        return *this;
    }
    QByteArray bytes_;
};

/// Version, flags, method, time and date, then CRC, sizes and name length: common to both kinds of header.
void addCommonFields(LittleEndian &header, const Entry &entry)
{
    header.u16(20).u16(0).u16(0).u16(0).u16(0x5a21);
    header.u32(entry.crc).u32(entry.size).u32(entry.size).u16(entry.name.size()).u16(0);
}

QByteArray localHeader(const Entry &entry)
{
    LittleEndian header;
    header.u32(0x04034b50);
    addCommonFields(header, entry);
    return header.bytes() + entry.name;
}

QByteArray directoryHeader(const Entry &entry)
{
    LittleEndian header;
    header.u32(0x02014b50).u16(20);
    addCommonFields(header, entry);
    header.u16(0).u16(0).u16(0).u32(0).u32(entry.offset);
    return header.bytes() + entry.name;
}

QByteArray endRecord(qsizetype entries, qint64 directoryOffset, qint64 directorySize)
{
    LittleEndian record;
    record.u32(0x06054b50).u16(0).u16(0).u16(entries).u16(entries);
    record.u32(directorySize).u32(directoryOffset).u16(0);
    return record.bytes();
}

/// Entries, equal but for the last, that together with their headers make up exactly `bytes`.
std::vector<Entry> plan(qint64 bytes)
{
    constexpr qint64 overhead = kLocalHeader + kDirectoryHeader + 2 * kNameLength;
    const qint64 count = (bytes - kEndRecord + kLargestEntry + overhead - 1) / (kLargestEntry + overhead);
    const qint64 payload = bytes - kEndRecord - count * overhead;
    std::vector<Entry> entries;
    for (qint64 i = 0; i < count; ++i) {
        Entry entry;
        entry.name = "giant/" + QByteArray::number(i).rightJustified(2, '0') + ".webm";
        entry.size = payload / count + (i == count - 1 ? payload % count : 0);
        entries.push_back(entry);
    }
    return entries;
}

/// Incompressible bytes without end, always the same ones.
class ByteStream
{
public:
    void fill(QByteArray &block)
    {
        for (qsizetype i = 0; i < block.size(); i += qsizetype(sizeof(state_))) {
            state_ ^= state_ << 13;
            state_ ^= state_ >> 7;
            state_ ^= state_ << 17;
            memcpy(block.data() + i, &state_, size_t(qMin(qsizetype(sizeof(state_)), block.size() - i)));
        }
    }

private:
    quint64 state_ = 0x9e3779b97f4a7c15;
};

bool writeEntry(QIODevice &file, ByteStream &stream, Entry &entry)
{
    entry.offset = file.pos();
    bool good = file.write(localHeader(entry)) > 0;
    quint32 crc = 0;
    for (qint64 left = entry.size; good && left > 0;) {
        QByteArray block(qMin(left, kBlock), Qt::Uninitialized);
        stream.fill(block);
        crc = libdeflate_crc32(crc, block.constData(), size_t(block.size()));
        good = file.write(block) == block.size();
        left -= block.size();
    }
    entry.crc = crc;
    const qint64 end = file.pos();
    return good && file.seek(entry.offset) && file.write(localHeader(entry)) > 0 && file.seek(end);
}

bool writeArchive(const QString &path, qint64 bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    ByteStream stream;
    std::vector<Entry> entries = plan(bytes);
    for (Entry &entry : entries) {
        if (!writeEntry(file, stream, entry))
            return false;
    }
    const qint64 directory = file.pos();
    QByteArray tail;
    for (const Entry &entry : entries)
        tail += directoryHeader(entry);
    tail += endRecord(qsizetype(entries.size()), directory, tail.size());
    return file.write(tail) == tail.size() && file.commit();
}

QString sha256Of(const QString &path)
{
    QFile file(path);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> hash(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    if (!file.open(QIODevice::ReadOnly) || !EVP_DigestInit_ex(hash.get(), EVP_sha256(), nullptr))
        return {};
    QByteArray block(kBlock, Qt::Uninitialized);
    for (qint64 got = 0; (got = file.read(block.data(), block.size())) > 0;)
        EVP_DigestUpdate(hash.get(), block.constData(), size_t(got));
    QByteArray digest(32, Qt::Uninitialized);
    EVP_DigestFinal_ex(hash.get(), reinterpret_cast<unsigned char *>(digest.data()), nullptr);
    return QString::fromLatin1(digest.toHex());
}

QJsonObject describe(const QString &path, qint64 bytes)
{
    const QJsonObject component{{u"component_key"_s, u"giant-clip"_s}, {u"component_name"_s, u"Giant clip"_s},
                                {u"component_type"_s, u"media"_s},     {u"asset_path"_s, u"giant/00.webm"_s},
                                {u"asset_kind"_s, u"file"_s},          {u"file_mime"_s, u"video/webm"_s},
                                {u"insert_mode"_s, u"overlay"_s},      {u"source_type"_s, u"media"_s},
                                {u"auto_insert_enabled"_s, true}};
    return {{u"product_key"_s, u"giant-package"_s},
            {u"product_version"_s, u"1.0.0"_s},
            {u"product_name"_s, u"Giant package"_s},
            {u"description"_s, u"One very large archive, for measuring."_s},
            {u"category"_s, u"Benchmarks"_s},
            {u"file_name"_s, u"giant.zip"_s},
            {u"file_mime"_s, u"application/zip"_s},
            {u"file_size"_s, bytes},
            {u"sha256"_s, sha256Of(path)},
            {u"components"_s, QJsonArray{component}}};
}

} // namespace

GiantPackage makeGiantPackage(const QString &folder, qint64 bytes)
{
    if (bytes < kSmallest || bytes > kLargest)
        return {{}, {}, u"a giant package has 4096 to 2147483648 bytes"_s};
    const QDir dir(folder + u"/giant"_s);
    const QString path = dir.filePath(u"giant-%1.zip"_s.arg(bytes));
    const bool exists = QFileInfo(path).size() == bytes;
    if (!exists && !(dir.mkpath(u"."_s) && writeArchive(path, bytes)))
        return {{}, {}, u"%1 cannot be written"_s.arg(path)};
    return {path, describe(path, bytes), {}};
}

} // namespace quillmar::demo
