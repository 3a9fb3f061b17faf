#include "tests/windows_host/module_folder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

void copy(const QString &from, const QString &to)
{
    if (!QDir().mkpath(QFileInfo(to).path()) || !QFile::copy(from, to))
        qFatal("%ls cannot be copied to %ls", qUtf16Printable(from), qUtf16Printable(to));
}

} // namespace

ModuleFolder::ModuleFolder(const QString &name, const QStringList &plugins)
{
    const QDir stage(QFileInfo(QStringLiteral(QUILLMAR_STAGE)).absoluteFilePath() + u'/' + name);
    QDir(stage).removeRecursively();
    folder_ = stage.filePath(u"quillmar-obs-plugin/bin/64bit"_s);
    copy(QStringLiteral(QUILLMAR_MODULE), module());
    for (const QString &plugin : plugins)
        copy(QStringLiteral(QUILLMAR_QT_PLUGINS) + u'/' + plugin, folder_ + u'/' + plugin);
}

} // namespace quillmar::test
