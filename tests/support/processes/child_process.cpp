#include "tests/support/processes/child_process.h"

#include <csignal>

#include <sys/prctl.h>

namespace quillmar::test
{

bool startChild(QProcess &process, const QString &program, const QStringList &arguments,
                const QProcessEnvironment &environment, const QString &log, const QString &input)
{
    process.setProgram(program);
    process.setArguments(arguments);
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(input);
    process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    if (process.readChannel() == QProcess::StandardOutput && !log.isEmpty()) {
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.setStandardOutputFile(log, QIODevice::Append);
    }
    process.start();
    return process.waitForStarted();
}

void stopChild(QProcess &process, std::chrono::milliseconds deadline)
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    if (process.waitForFinished(static_cast<int>(deadline.count())))
        return;
    process.kill();
    process.waitForFinished();
}

} // namespace quillmar::test
