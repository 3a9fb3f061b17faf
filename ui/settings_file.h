#pragma once

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QString>

#include <functional>

namespace quillmar
{

/// Bytes of an INI file that is read at most. The module's own holds some 200 kB when everything in it is as
/// long as it may be; a hundred megabytes keep the user interface waiting for two seconds.
inline constexpr qint64 LargestSettingsFile = 1024 * 1024;

/// Whether `content` has the marks of values that QSettings reads as streamed objects. The module writes
/// none, and a stream of a few bytes can ask for more memory than there is, which QSettings does not survive.
inline bool hasStreamedValues(const QByteArray &content)
{
    return content.contains("@Variant(") || content.contains("@DateTime(");
}

/// Whether there is nothing at `path` yet, or a file that QSettings can read without harm.
inline bool isHarmlessSettingsFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return true;
    QFile file(path);
    return info.isFile() && info.size() <= LargestSettingsFile && file.open(QIODevice::ReadOnly) &&
           !hasStreamedValues(file.read(LargestSettingsFile));
}

/// Hands the settings of the INI file at `path` to `use`, then writes what it has changed. False, and a
/// harmful file untouched, when it cannot be read or written.
inline bool useSettings(const QString &path, const std::function<void(QSettings &)> &use)
{
    if (!isHarmlessSettingsFile(path))
        return false;
    QSettings settings(path, QSettings::IniFormat);
    use(settings);
    settings.sync();
    return settings.status() == QSettings::NoError;
}

} // namespace quillmar
