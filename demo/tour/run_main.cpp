#include "tests/host/support/obs_process.h"
#include "tests/host/support/quillmar_panel.h"
#include "tests/host/support/service_process.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QTextStream>

using namespace Qt::StringLiterals;
using namespace quillmar::test;

namespace
{

constexpr int DockWidth = 400;

int fail(const QString &problem)
{
    QTextStream(stderr) << "quillmar-demo-run: " << problem << Qt::endl;
    return 1;
}

// The user's own desktop, but none of the user's own OBS and keyring: home, settings and session are those of
// the demo.
QProcessEnvironment desktopOfTheUser(const QString &busAddress)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"XDG_CONFIG_HOME"_s, u"XDG_DATA_HOME"_s, u"XDG_CACHE_HOME"_s,
                                u"XDG_STATE_HOME"_s, u"QT_QPA_PLATFORM"_s})
        environment.remove(name);
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, busAddress);
    if (!environment.contains(u"XAUTHORITY"_s))
        environment.insert(u"XAUTHORITY"_s, QDir::home().filePath(u".Xauthority"_s));
    return environment;
}

bool hasDisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Opens OBS Studio with the module on your display, with a service to play with."_s);
    parser.addHelpOption();
    parser.process(application);
    if (!hasDisplay())
        return fail(u"there is no display; the tour of the demo needs none"_s);

    QString problem;
    const auto service = ServiceProcess::start(QStringLiteral(QUILLMAR_DEMO_CATALOGUE), 0, &problem);
    if (!service)
        return fail(problem);
    const HostHome home;
    if (!home.isValid())
        return fail(u"the home of the demo cannot be made"_s);
    PrivateBus bus(u"/usr/share/dbus-1/services"_s);
    GnomeKeyring keyring(bus.address());
    if (!bus.start() || !keyring.start())
        return fail(u"the keyring of the demo does not start"_s);
    const QProcessEnvironment desktop = desktopOfTheUser(bus.address());
    const auto obs = ObsProcess::start(home, desktop, &problem);
    if (!obs)
        return fail(problem);
    RobotHand hand(desktop);
    if (DockRobot robot(obs->driver(), hand); !robot.showDock(DockWidth))
        return fail(robot.problem());
    QTextStream(stdout) << "The dock is at the right side; OBS lists it under Docks > Quillmar.\n"
                           "Sign in with user name demo and password demo. Close OBS to end.\n"
                           "Its home is "
                        << home.path() << " and goes away with it." << Qt::endl;
    while (obs->isRunning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return 0;
}
