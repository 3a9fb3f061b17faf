#include "tests/host/support/memory_image.h"

#include <QFile>

#include <csignal>

#include <sys/wait.h>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype ContextLength = 24;

/// Holds a child process still as long as it lives.
class Standstill
{
public:
    explicit Standstill(pid_t process) : process_(process)
    {
        stopped_ = kill(process_, SIGSTOP) == 0 && waitpid(process_, nullptr, WUNTRACED) == process_;
    }
    ~Standstill() { kill(process_, SIGCONT); }
    Q_DISABLE_COPY_MOVE(Standstill)

    bool isStopped() const { return stopped_; }

private:
    pid_t process_;
    bool stopped_ = false;
};

struct Mapping {
    qint64 begin = 0;
    qint64 end = 0;
    bool writable = false;
    QString name;
};

// A line of the table reads "begin-end rights offset device inode name".
Mapping parseMapping(const QByteArray &line)
{
    const QList<QByteArray> fields = line.simplified().split(' ');
    const QList<QByteArray> range = fields.value(0).split('-');
    Mapping mapping;
    mapping.begin = range.value(0).toLongLong(nullptr, 16);
    mapping.end = range.value(1).toLongLong(nullptr, 16);
    mapping.writable = fields.value(1).startsWith("rw");
    mapping.name = QString::fromLocal8Bit(fields.mid(5).join(' '));
    return mapping;
}

QByteArray readRange(QFile &memory, const Mapping &mapping)
{
    if (!memory.seek(mapping.begin))
        return {};
    return memory.read(mapping.end - mapping.begin);
}

QByteArray utf16(const QString &text)
{
    return {reinterpret_cast<const char *>(text.utf16()), text.size() * qsizetype(sizeof(char16_t))};
}

QByteArray printable(QByteArray bytes)
{
    for (char &byte : bytes) {
        if (byte < 0x20 || byte > 0x7e)
            byte = '.';
    }
    return bytes;
}

bool isWordByte(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '-' || byte == '_';
}

QByteArray wordAt(const QByteArray &bytes, qsizetype begin)
{
    qsizetype end = begin;
    while (end < bytes.size() && isWordByte(bytes.at(end)))
        ++end;
    return bytes.sliced(begin, end - begin);
}

} // namespace

std::optional<MemoryImage> MemoryImage::of(qint64 processId)
{
    const Standstill standstill(static_cast<pid_t>(processId));
    const QString folder = u"/proc/%1/"_s.arg(processId);
    QFile maps(folder + u"maps"_s);
    QFile memory(folder + u"mem"_s);
    if (!standstill.isStopped() || !maps.open(QIODevice::ReadOnly) ||
        !memory.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    MemoryImage image;
    const QList<QByteArray> lines = maps.readAll().split('\n');
    for (const QByteArray &line : lines) {
        const Mapping mapping = parseMapping(line);
        if (mapping.writable)
            image.regions_.append({mapping.name, readRange(memory, mapping)});
    }
    return image;
}

QList<MemoryImage::Place> MemoryImage::find(const QString &text) const
{
    QList<Place> places;
    for (const QByteArray &pattern : {text.toUtf8(), utf16(text)}) {
        for (const Region &region : regions_) {
            for (qsizetype at = region.bytes.indexOf(pattern); at >= 0;
                 at = region.bytes.indexOf(pattern, at + 1)) {
                const qsizetype begin = qMax<qsizetype>(at - ContextLength, 0);
                const QByteArray around = region.bytes.mid(begin, pattern.size() + 2 * ContextLength);
                places.append({region.name, printable(around)});
            }
        }
    }
    return places;
}

QByteArray MemoryImage::wordAfter(QByteArrayView prefix, qsizetype length) const
{
    for (const Region &region : regions_) {
        for (qsizetype at = region.bytes.indexOf(prefix); at >= 0;
             at = region.bytes.indexOf(prefix, at + 1)) {
            const QByteArray word = wordAt(region.bytes, at + prefix.size());
            if (word.size() >= length)
                return word;
        }
    }
    return {};
}

qsizetype MemoryImage::size() const
{
    qsizetype sum = 0;
    for (const Region &region : regions_)
        sum += region.bytes.size();
    return sum;
}

} // namespace quillmar::test
