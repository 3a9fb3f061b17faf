#include "tests/host/support/obs_process.h"

#include "tests/support/processes/child_process.h"
#include "tests/support/processes/waiting.h"

#include <QElapsedTimer>
#include <QFile>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr std::chrono::milliseconds StartDeadline = 60s;
constexpr std::chrono::milliseconds ExitDeadline = 60s;

} // namespace

std::unique_ptr<ObsProcess> ObsProcess::start(const HostHome &home, const QProcessEnvironment &desktop,
                                              QString *problem)
{
    std::unique_ptr<ObsProcess> obs(new ObsProcess(home));
    QProcessEnvironment environment = desktop;
    environment.insert(u"HOME"_s, home.path());
    environment.insert(u"QUILLMAR_DRIVER_SOCKET"_s, home.driverSocket());
    environment.insert(u"LD_PRELOAD"_s, QStringLiteral(QUILLMAR_EVENT_KEEPER));
    QFile::remove(home.driverSocket());
    const QStringList arguments{u"--multi"_s, u"--disable-shutdown-check"_s, u"--disable-updater"_s};
    if (!startChild(obs->process_, u"obs"_s, arguments, environment, home.output())) {
        *problem = u"OBS cannot be started"_s;
        return nullptr;
    }
    if (!obs->connectDriver()) {
        *problem = u"OBS did not finish loading; see "_s + home.output();
        return nullptr;
    }
    return obs;
}

ObsProcess::~ObsProcess()
{
    kill();
}

bool ObsProcess::connectDriver()
{
    const auto connectedOrDead = [this] { return driver_.connectTo(home_.driverSocket()) || !isRunning(); };
    return waitUntil(connectedOrDead, StartDeadline) && driver_.isConnected();
}

ObsExit ObsProcess::quit()
{
    driver_.ask(u"quit"_s);
    return waitForExit();
}

ObsExit ObsProcess::waitForExit()
{
    QElapsedTimer clock;
    clock.start();
    ObsExit exit;
    exit.inTime = waitUntil([this] { return !isRunning(); }, ExitDeadline);
    exit.milliseconds = clock.elapsed();
    exit.crashed = exit.inTime && process_.exitStatus() == QProcess::CrashExit;
    exit.code = exit.inTime ? process_.exitCode() : -1;
    exit.log = ObsLog::read(home_.newestLog(), home_.output());
    return exit;
}

void ObsProcess::kill()
{
    if (!isRunning())
        return;
    process_.kill();
    process_.waitForFinished();
}

} // namespace quillmar::test
