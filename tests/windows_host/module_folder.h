#pragma once

#include <QString>
#include <QStringList>

namespace quillmar::test
{

/// The module laid out as an installation does, beside it plug-ins of Qt that OBS does not bring.
class ModuleFolder
{
public:
    /// Makes the folder `name` anew. `plugins` are named by their path below Qt's own folder of plug-ins
    /// ("tls/qschannelbackend.dll"). Ends the program when a file cannot be copied.
    explicit ModuleFolder(const QString &name, const QStringList &plugins = {});

    /// The module's DLL, with '/' as OBS has it.
    QString module() const { return folder_ + QStringLiteral("/quillmar-obs-plugin.dll"); }

    /// The folder of that DLL.
    const QString &path() const { return folder_; }

private:
    QString folder_;
};

} // namespace quillmar::test
