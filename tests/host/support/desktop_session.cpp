#include "tests/host/support/desktop_session.h"

#include "tests/support/processes/child_process.h"
#include "tests/support/processes/waiting.h"

#include <QDir>
#include <QFile>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

// The first line that the program prints, which tells that it is ready.
QString firstLine(QProcess &process)
{
    const bool ready =
        waitUntil([&process] { return process.canReadLine() || process.state() == QProcess::NotRunning; },
                  StepDeadline);
    return ready ? QString::fromLocal8Bit(process.readLine()).trimmed() : QString();
}

} // namespace

QProcessEnvironment neutralEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QStringList names = environment.keys();
    for (const QString &name : names) {
        if (name.startsWith("XDG_"_L1) || name.startsWith("QT_"_L1) || name.startsWith("LC_"_L1) ||
            name.startsWith("DBUS_"_L1))
            environment.remove(name);
    }
    environment.remove(u"WAYLAND_DISPLAY"_s);
    environment.remove(u"XAUTHORITY"_s);
    environment.remove(u"LANGUAGE"_s);
    environment.insert(u"LANG"_s, u"C.UTF-8"_s);
    return environment;
}

std::unique_ptr<DesktopSession> DesktopSession::start(QSize screen, QString *problem)
{
    std::unique_ptr<DesktopSession> session(new DesktopSession);
    if (!session->directory_.isValid())
        *problem = u"no temporary directory"_s;
    else if (!session->startDisplay(screen))
        *problem = u"Xvfb does not start"_s;
    else if (!session->startWindowManager())
        *problem = u"openbox does not start"_s;
    else if (!session->startBus())
        *problem = u"dbus-daemon does not start"_s;
    else if (!session->startKeyring())
        *problem = u"gnome-keyring-daemon does not start"_s;
    else
        return session;
    return nullptr;
}

DesktopSession::~DesktopSession()
{
    keyring_.reset();
    bus_.stop();
    stopChild(windowManager_, 2s);
    stopChild(display_, 2s);
}

QProcessEnvironment DesktopSession::environment() const
{
    QProcessEnvironment environment = neutralEnvironment();
    environment.insert(u"DISPLAY"_s, displayName_);
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus_.address());
    environment.insert(u"XDG_RUNTIME_DIR"_s, directory_.path());
    environment.insert(u"XDG_SESSION_TYPE"_s, u"x11"_s);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    environment.insert(u"LIBGL_ALWAYS_SOFTWARE"_s, u"1"_s);
    return environment;
}

bool DesktopSession::startDisplay(QSize screen)
{
    const QString geometry = u"%1x%2x24"_s.arg(screen.width()).arg(screen.height());
    const QStringList arguments{u"-displayfd"_s, u"1"_s,         u"-screen"_s, u"0"_s,
                                geometry,        u"-nolisten"_s, u"tcp"_s,     u"-noreset"_s};
    if (!startChild(display_, u"Xvfb"_s, arguments, neutralEnvironment(), {}))
        return false;
    const QString number = firstLine(display_);
    displayName_ = u":"_s + number;
    return !number.isEmpty();
}

bool DesktopSession::startWindowManager()
{
    QProcessEnvironment environment = neutralEnvironment();
    environment.insert(u"DISPLAY"_s, displayName_);
    environment.insert(u"HOME"_s, directory_.path());
    const QString log = directory_.filePath(u"openbox.log"_s);
    return startChild(windowManager_, u"openbox"_s, {u"--sm-disable"_s}, environment, log);
}

bool DesktopSession::startBus()
{
    QFile::setPermissions(directory_.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return bus_.start();
}

bool DesktopSession::startKeyring()
{
    keyring_ = std::make_unique<GnomeKeyring>(bus_.address());
    return keyring_->start();
}

} // namespace quillmar::test
