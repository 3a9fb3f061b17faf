#include "tests/host/support/host_home.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

bool writeFile(const QString &path, const QString &content)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(content.toUtf8()) >= 0 && file.flush();
}

bool copyTree(const QString &from, const QString &to)
{
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString source = files.next();
        const QString target = to + source.mid(from.size());
        if (!QDir().mkpath(QFileInfo(target).path()) || !QFile::copy(source, target))
            return false;
    }
    return true;
}

} // namespace

HostHome::HostHome(const HostSettings &settings)
{
    valid_ = directory_.isValid() && QDir(path()).mkpath(u"Downloads"_s) && writeObsSettings(settings) &&
             writeFile(path() + u"/.config/user-dirs.dirs"_s, u"XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"_s) &&
             installModule(u"quillmar-host-driver"_s, QStringLiteral(QUILLMAR_HOST_DRIVER), {});
    if (valid_ && settings.installModule)
        valid_ = installModule(u"quillmar-obs-plugin"_s, QStringLiteral(QUILLMAR_MODULE),
                               QStringLiteral(QUILLMAR_MODULE_DATA));
}

bool HostHome::writeObsSettings(const HostSettings &settings) const
{
    QString general = u"[General]\nFirstRun=true\n"_s;
    if (!settings.hostLanguage.isEmpty())
        general += u"Language=%1\n"_s.arg(settings.hostLanguage);
    const QString basic =
        u"[Basic]\nProfile=Host\nProfileDir=Host\nSceneCollection=Host\nSceneCollectionFile=Host\n"_s;
    const QString profile =
        u"[General]\nName=Host\n[Video]\nBaseCX=%1\nBaseCY=%2\nOutputCX=%1\nOutputCY=%2\n"_s
            .arg(settings.canvas.width())
            .arg(settings.canvas.height());
    return writeFile(obsConfiguration() + u"/global.ini"_s, general) &&
           writeFile(obsConfiguration() + u"/user.ini"_s, general + basic) &&
           writeFile(obsConfiguration() + u"/basic/profiles/Host/basic.ini"_s, profile);
}

bool HostHome::installModule(const QString &name, const QString &binary, const QString &data) const
{
    const QString folder = obsConfiguration() + u"/plugins/"_s + name;
    const QString target = folder + u"/bin/64bit/"_s + name + u".so"_s;
    return QDir().mkpath(QFileInfo(target).path()) && QFile::copy(binary, target) &&
           (data.isEmpty() || copyTree(data, folder + u"/data"_s));
}

QString HostHome::moduleSettings() const
{
    return obsConfiguration() + u"/plugin_config/quillmar-obs-plugin/settings.ini"_s;
}

QString HostHome::sessionFile() const
{
    return obsConfiguration() + u"/plugin_config/quillmar-obs-plugin/session.dpapi"_s;
}

QString HostHome::newestLog() const
{
    const QDir logs(obsConfiguration() + u"/logs"_s);
    const QFileInfoList files = logs.entryInfoList({u"*.txt"_s}, QDir::Files, QDir::Name | QDir::Reversed);
    return files.isEmpty() ? QString() : files.first().filePath();
}

QJsonObject HostHome::savedSceneCollection() const
{
    const QDir scenes(obsConfiguration() + u"/basic/scenes"_s);
    const QFileInfoList files = scenes.entryInfoList({u"*.json"_s}, QDir::Files, QDir::Time);
    QFile file(files.isEmpty() ? QString() : files.first().filePath());
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

QStringList HostHome::packageFiles() const
{
    QStringList files;
    QDirIterator iterator(packageRoot(), QDir::Files | QDir::Hidden | QDir::System,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext())
        files.append(iterator.next().mid(packageRoot().size() + 1));
    files.sort();
    return files;
}

} // namespace quillmar::test
