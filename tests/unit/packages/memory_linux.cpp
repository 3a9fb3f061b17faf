#include "tests/unit/packages/memory.h"

#include <QByteArray>
#include <QFile>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 kKibi = 1024;

qint64 statusBytes(QByteArrayView name)
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray all = status.readAll();
    const qsizetype at = all.indexOf(name);
    return all.mid(at + name.size()).trimmed().split(' ').constFirst().toLongLong() * kKibi;
}

} // namespace

qint64 peakMemory()
{
    return statusBytes("VmHWM:");
}

qint64 memoryGrowth(const std::function<void()> &work)
{
    QFile references(u"/proc/self/clear_refs"_s);
    if (!references.open(QIODevice::WriteOnly) || references.write("5") != 1)
        return -1;
    references.close();
    const qint64 before = statusBytes("VmRSS:");
    work();
    return peakMemory() - before;
}

} // namespace quillmar::test
