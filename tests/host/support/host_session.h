#pragma once

#include "tests/host/support/dock_robot.h"
#include "tests/host/support/obs_process.h"
#include "tests/host/support/obs_state.h"
#include "tests/host/support/quillmar_panel.h"
#include "tests/host/support/robot_hand.h"

#include <memory>
#include <optional>

namespace quillmar::test
{

/// A user at a desktop of their own with OBS open: home, display, OBS and everything to look at it and to
/// operate it.
class HostSession
{
public:
    static constexpr QSize Screen{1600, 1000};
    static constexpr int DockWidth = 400;

    /// A new user whose OBS is running and, when the module is installed, whose dock is shown at the right
    /// side. Null, with the reason in `*problem`, on failure.
    static std::unique_ptr<HostSession> start(const HostSettings &settings, QString *problem);

    HostHome &home() { return home_; }
    ObsProcess &obs() { return *obs_; }
    DriverClient &driver() { return obs_->driver(); }
    QuillmarPanel &panel() { return *panel_; }
    ObsState state() { return ObsState(obs_->driver()); }
    QProcessEnvironment desktop() const { return desktop_->environment(); }
    GnomeKeyring &keyring() { return desktop_->keyring(); }

    /// Starts OBS again in the same home, after it has ended.
    bool startObs(QString *problem);
    /// Closes OBS with one scene left, the current one: at exit OBS 32.2 loses count of the sources of
    /// further scenes, with or without modules, and then reports leaks or crashes in one run of five.
    ObsExit quit();
    bool takeScreenshot(const QString &file);

private:
    explicit HostSession(const HostSettings &settings) : settings_(settings), home_(settings) {}

    HostSettings settings_;
    HostHome home_;
    std::unique_ptr<DesktopSession> desktop_;
    std::unique_ptr<ObsProcess> obs_;
    std::optional<RobotHand> hand_;
    std::optional<DockRobot> robot_;
    std::optional<QuillmarPanel> panel_;
};

} // namespace quillmar::test
