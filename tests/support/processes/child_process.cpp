#include "tests/support/processes/child_process.h"

#include "tests/support/processes/lifeline.h"

namespace quillmar::test
{

bool startChild(QProcess &process, const QString &program, const QStringList &arguments,
                const QProcessEnvironment &environment, const QString &log, const QString &input)
{
    process.setProgram(program);
    process.setArguments(arguments);
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(input);
    if (process.readChannel() == QProcess::StandardOutput && !log.isEmpty()) {
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.setStandardOutputFile(log, QIODevice::Append);
    }
    tieBeforeStart(process);
    process.start();
    return process.waitForStarted() && tieAfterStart(process);
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
