#pragma once

#include <QByteArray>
#include <QFile>

namespace quillmar::bench
{

/// A line of /proc/self/status in bytes, for example "VmHWM" (peak resident size) or "VmRSS".
inline qint64 processMemory(QByteArrayView name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(name) && line.size() > name.size() && line.at(name.size()) == ':') {
            return line.mid(name.size() + 1).trimmed().split(' ').constFirst().toLongLong() * 1024;
        }
    }
    return -1;
}

/// Makes the peak resident size start again from the current size.
inline bool resetPeak()
{
    QFile references(QStringLiteral("/proc/self/clear_refs"));
    return references.open(QIODevice::WriteOnly) && references.write("5") == 1;
}

} // namespace quillmar::bench
