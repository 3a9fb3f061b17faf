#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace quillmar::test
{

/// A session bus of its own. It starts no service by itself, least of all a keyring.
class PrivateBus
{
public:
    /// `serviceFolders`: where descriptions of services lie that the bus may start after all, except for a
    /// keyring.
    explicit PrivateBus(QString serviceFolders = {}) : serviceFolders_(std::move(serviceFolders)) {}
    ~PrivateBus();
    Q_DISABLE_COPY_MOVE(PrivateBus)

    /// False when it does not start. After a stop() it is a new bus at the same address.
    bool start();

    /// Ends at once, as in a crash.
    void stop();

    /// Keeps the process alive but has it do nothing, and the reverse.
    void freeze();
    void thaw();

    /// In the form of DBUS_SESSION_BUS_ADDRESS.
    QString address() const;

private:
    bool writeConfiguration() const;

    QString serviceFolders_;
    QTemporaryDir directory_;
    QProcess process_;
};

} // namespace quillmar::test
