#include "process_memory.h"

#include <QByteArray>
#include <QFile>
#include <QList>

#include <algorithm>

namespace quillmar::test
{

namespace
{

/// Larger ones are address space that sanitizers reserve.
constexpr quint64 MaximumMapping = quint64(256) * 1024 * 1024;
constexpr qint64 Piece = 1024 * 1024;

struct Mapping {
    quint64 begin = 0;
    quint64 end = 0;
};

QList<Mapping> writableMappings()
{
    QList<Mapping> mappings;
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly)) {
        return mappings;
    }
    const QList<QByteArray> lines = maps.readAll().split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype dash = line.indexOf('-');
        const qsizetype blank = line.indexOf(' ');
        if (dash < 0 || !line.mid(blank + 1).startsWith("rw")) {
            continue;
        }
        const Mapping mapping{line.first(dash).toULongLong(nullptr, 16),
                              line.sliced(dash + 1, blank - dash - 1).toULongLong(nullptr, 16)};
        if (mapping.end - mapping.begin <= MaximumMapping) {
            mappings.append(mapping);
        }
    }
    return mappings;
}

int occurrences(QByteArrayView bytes, const QString &text)
{
    int count = 0;
    const auto isSame = [](char byte, QChar character) { return QLatin1Char(byte) == character; };
    auto from = bytes.begin();
    while ((from = std::search(from, bytes.end(), text.begin(), text.end(), isSame)) != bytes.end()) {
        ++count;
        ++from;
    }
    return count;
}

} // namespace

int copiesInMemory(const QString &text)
{
    QFile memory(QStringLiteral("/proc/self/mem"));
    if (!memory.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return -1;
    }
    int count = 0;
    QByteArray piece(Piece, '\0');
    for (const Mapping &mapping : writableMappings()) {
        for (quint64 at = mapping.begin; at < mapping.end; at += Piece - quint64(text.size())) {
            const qint64 wanted = std::min<qint64>(Piece, qint64(mapping.end - at));
            memory.seek(qint64(at));
            const qint64 got = memory.read(piece.data(), wanted);
            count += got > 0 ? occurrences(QByteArrayView(piece).first(got), text) : 0;
            piece.fill('\0');
        }
    }
    return count;
}

} // namespace quillmar::test
