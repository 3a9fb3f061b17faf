#pragma once

#include <QJsonObject>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace quillmar::test
{

/// What the home of one imagined user holds before OBS is started for the first time.
struct HostSettings {
    bool installModule = true;
    QSize canvas{1920, 1080};
    /// Language of OBS itself, for example "fa-IR"; empty for OBS's own choice.
    QString hostLanguage{};
    /// Has the C library overwrite whatever OBS frees, so that only what is still in use can be found in its
    /// memory.
    bool wipeFreedMemory = false;
};

/// A home directory of its own in the temporary folder, with OBS set up as after its first run: no wizard,
/// one profile, the module and the driver installed where OBS looks for a user's modules. Several runs of OBS
/// may share one home.
class HostHome
{
public:
    explicit HostHome(const HostSettings &settings = {});

    bool isValid() const { return valid_; }
    QString path() const { return directory_.path(); }
    QString driverSocket() const { return directory_.filePath(QStringLiteral("driver.socket")); }
    QString output() const { return directory_.filePath(QStringLiteral("obs-output.log")); }
    /// Where the module keeps packages and components.
    QString packageRoot() const { return directory_.filePath(QStringLiteral("Downloads/Quillmar")); }
    /// settings.ini of the module.
    QString moduleSettings() const;
    /// Where the module keeps the session between runs.
    QString sessionFile() const;
    /// The newest log that OBS wrote.
    QString newestLog() const;
    /// The scene collection as OBS wrote it to disk.
    QJsonObject savedSceneCollection() const;
    /// Every file below the package root, relative to it, sorted.
    QStringList packageFiles() const;

private:
    QString obsConfiguration() const { return directory_.filePath(QStringLiteral(".config/obs-studio")); }
    bool writeObsSettings(const HostSettings &settings) const;
    bool installModule(const QString &name, const QString &binary, const QString &data) const;

    QTemporaryDir directory_;
    bool valid_ = false;
};

} // namespace quillmar::test
