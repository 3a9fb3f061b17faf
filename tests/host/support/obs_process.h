#pragma once

#include "tests/host/support/desktop_session.h"
#include "tests/host/support/driver_client.h"
#include "tests/host/support/host_home.h"
#include "tests/host/support/obs_log.h"

#include <QProcess>

#include <memory>

namespace quillmar::test
{

/// How a run of OBS ended.
struct ObsExit {
    bool inTime = false;
    bool crashed = false;
    int code = -1;
    qint64 milliseconds = 0;
    ObsLog log;
};

/// One run of the real OBS Studio in a home and on a desktop of its own. Killed when the object dies.
class ObsProcess
{
public:
    /// Null, with the reason in `*problem`, when OBS is not there or did not finish loading in time.
    static std::unique_ptr<ObsProcess> start(const HostHome &home, const QProcessEnvironment &desktop,
                                             QString *problem);

    ~ObsProcess();
    Q_DISABLE_COPY_MOVE(ObsProcess)

    DriverClient &driver() { return driver_; }
    bool isRunning() const { return process_.state() == QProcess::Running; }
    qint64 processId() const { return process_.processId(); }

    /// Closes the main window and waits for the process to end.
    ObsExit quit();

    /// Waits for the process to end by itself, as when the user closes the window.
    ObsExit waitForExit();

    /// Ends the process at once, as a crash or a power cut would.
    void kill();

private:
    explicit ObsProcess(const HostHome &home) : home_(home) {}
    bool connectDriver();

    const HostHome &home_;
    QProcess process_;
    DriverClient driver_;
};

} // namespace quillmar::test
