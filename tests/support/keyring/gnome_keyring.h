#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace quillmar::test
{

/// The GNOME keyring of one imagined user, on a bus of the tests. What it keeps survives its process.
class GnomeKeyring
{
public:
    /// Whose name answers on the bus `busAddress`.
    explicit GnomeKeyring(QString busAddress) : busAddress_(std::move(busAddress)) {}
    ~GnomeKeyring();
    Q_DISABLE_COPY_MOVE(GnomeKeyring)

    /// Starts with the keyring open, as after a log-in. False when it is not open in time.
    bool start();

    /// Starts with the keyring that an earlier run left, closed.
    bool startLocked();

    /// Ends at once, as in a crash. Waits until its name is gone from the bus, if the bus still runs.
    void stop();

    /// Keeps the process alive but has it do nothing, and the reverse.
    void freeze();
    void thaw();

    /// Closes the keyring; only a new start() opens it again.
    bool lock();

    /// Deletes what was stored with the attribute application=quillmar-obs-plugin.
    bool deleteKeys();

    /// How many of those there are.
    int keyCount() const;

    /// Stores `secret` as somebody who knows the attributes would.
    bool storeKey(const QString &secret);

private:
    bool startDaemon(const QStringList &options);
    bool isNameOwned() const;
    bool isOpen() const;
    bool runTool(const QStringList &arguments, QByteArray *output = nullptr,
                 const QString &input = QProcess::nullDevice()) const;
    QProcessEnvironment environment() const;

    QString busAddress_;
    QTemporaryDir home_;
    QProcess process_;
};

} // namespace quillmar::test
