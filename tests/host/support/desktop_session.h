#pragma once

#include "tests/support/keyring/gnome_keyring.h"
#include "tests/support/keyring/private_bus.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QSize>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace quillmar::test
{

/// What a program with windows needs to run: an X display, a window manager, a message bus and an open
/// keyring, all of its own, so that tests neither see nor touch the desktop of the person who runs them.
class DesktopSession
{
public:
    /// Null, with the reason in `*problem`, when a program is missing or does not answer in time.
    static std::unique_ptr<DesktopSession> start(QSize screen, QString *problem);

    ~DesktopSession();
    Q_DISABLE_COPY_MOVE(DesktopSession)

    /// The environment for programs on this desktop: software rendering, X11, no trace of the caller's own
    /// session.
    QProcessEnvironment environment() const;

    GnomeKeyring &keyring() { return *keyring_; }

private:
    DesktopSession() = default;
    bool startDisplay(QSize screen);
    bool startWindowManager();
    bool startBus();
    bool startKeyring();

    QTemporaryDir directory_;
    QProcess display_;
    QProcess windowManager_;
    PrivateBus bus_{QStringLiteral("/usr/share/dbus-1/services")};
    std::unique_ptr<GnomeKeyring> keyring_;
    QString displayName_;
};

/// The caller's environment without everything that ties a program to a desktop, a locale or a home of the
/// caller.
QProcessEnvironment neutralEnvironment();

} // namespace quillmar::test
