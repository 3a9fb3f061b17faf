#include "tests/unit/packages/kill_points.h"

#include <QProcess>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

QList<KillPoint> killPoints()
{
    return {{"opening", u"openat,openat2"_s},
            {"writing", u"write,pwrite64,writev"_s},
            {"syncing", u"fsync,fdatasync"_s},
            {"putting in place", u"link,linkat,rename,renameat,renameat2"_s},
            {"closing", u"close"_s}};
}

KillPoint makingFolders()
{
    return {"making folders", u"mkdir,mkdirat"_s};
}

std::optional<bool> runUntilKilled(const QStringList &command, const QString &calls, int count)
{
    QProcess strace;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // A leak check cannot look into a process that is traced.
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
    strace.setProcessEnvironment(environment);
    const QString fault = u"inject=%1:signal=KILL:when=%2"_s.arg(calls).arg(count);
    strace.start(u"strace"_s, QStringList{u"-f"_s, u"-o"_s, u"/dev/null"_s, u"-e"_s, fault} + command);
    if (!strace.waitForFinished(60'000))
        return std::nullopt;
    if (strace.exitStatus() == QProcess::CrashExit)
        return false;
    return strace.exitCode() == 0 ? std::optional(true) : std::nullopt;
}

} // namespace quillmar::test
