#include "tests/host/support/host_session.h"

#include "tests/support/processes/waiting.h"

namespace quillmar::test
{

using namespace Qt::StringLiterals;

std::unique_ptr<HostSession> HostSession::start(const HostSettings &settings, QString *problem)
{
    std::unique_ptr<HostSession> session(new HostSession(settings));
    if (!session->home_.isValid()) {
        *problem = u"the home cannot be made"_s;
        return nullptr;
    }
    session->desktop_ = DesktopSession::start(Screen, problem);
    if (!session->desktop_ || !session->startObs(problem))
        return nullptr;
    return session;
}

bool HostSession::startObs(QString *problem)
{
    obs_.reset();
    QProcessEnvironment environment = desktop_->environment();
    // The C library's per-thread cache of freed blocks would be left out of it.
    if (settings_.wipeFreedMemory)
        environment.insert(u"GLIBC_TUNABLES"_s, u"glibc.malloc.perturb=170:glibc.malloc.tcache_count=0"_s);
    obs_ = ObsProcess::start(home_, environment, problem);
    if (!obs_)
        return false;
    hand_.emplace(desktop_->environment());
    robot_.emplace(obs_->driver(), *hand_);
    panel_.emplace(*robot_);
    if (!settings_.installModule || robot_->showDock(DockWidth))
        return true;
    *problem = robot_->problem();
    return false;
}

ObsExit HostSession::quit()
{
    driver().ask(u"keep-current-scene"_s);
    waitUntil([this] { return state().scenes().size() <= 1; });
    return obs_->quit();
}

bool HostSession::takeScreenshot(const QString &file)
{
    return driver().ask(u"screenshot"_s, {{u"file"_s, file}}).toBool();
}

} // namespace quillmar::test
