#include "tests/host/driver/process_report.h"

#include "tests/host/driver/event_keeper.h"

#include <QCoreApplication>
#include <QFile>

#include <dlfcn.h>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

QJsonValue reportProcessId()
{
    return QCoreApplication::applicationPid();
}

QJsonObject reportMemory()
{
    QJsonObject report;
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return report;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        const QByteArray name = line.left(line.indexOf(':'));
        if (name == "VmRSS" || name == "VmHWM" || name == "RssAnon" || name == "RssFile" || name == "VmSize")
            report[QString::fromLatin1(name)] =
                line.mid(name.size() + 1).simplified().split(' ').first().toInt();
    }
    return report;
}

QJsonValue resetPeakMemory()
{
    QFile clear(u"/proc/self/clear_refs"_s);
    return clear.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && clear.write("5") == 1;
}

QJsonValue reportRefusedPolls()
{
    using Count = decltype(quillmar_refused_polls);
    auto *const count = reinterpret_cast<Count *>(dlsym(RTLD_DEFAULT, "quillmar_refused_polls"));
    return count ? count() : -1;
}

} // namespace quillmar::test
