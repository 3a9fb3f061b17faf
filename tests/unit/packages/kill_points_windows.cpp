#include "tests/unit/packages/kill_points.h"

#include "tests/unit/packages/sudden_end.h"

#include <QProcess>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

QList<KillPoint> killPoints()
{
    return {{"opening", u"CreateFileW"_s},
            {"writing", u"WriteFile"_s},
            {"syncing", u"FlushFileBuffers"_s},
            {"putting in place", u"SetFileInformationByHandle"_s},
            {"closing", u"CloseHandle"_s}};
}

KillPoint makingFolders()
{
    return {"making folders", u"CreateDirectoryW"_s};
}

std::optional<bool> runUntilKilled(const QStringList &command, const QString &calls, int count)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(SuddenEndCall, calls);
    environment.insert(SuddenEndCount, QString::number(count));
    process.setProcessEnvironment(environment);
    process.start(command.first(), command.mid(1));
    if (!process.waitForFinished(60'000))
        return std::nullopt;
    if (process.exitCode() == SuddenEndCode)
        return false;
    return process.exitCode() == 0 ? std::optional(true) : std::nullopt;
}

} // namespace quillmar::test
