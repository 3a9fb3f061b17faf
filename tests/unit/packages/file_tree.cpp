#include "tests/unit/packages/file_tree.h"

#include "tests/unit/packages/links.h"

#include <QDir>
#include <QFile>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QByteArray describe(const QFileInfo &info)
{
    if (isLink(info.filePath()))
        return "link to " + info.readSymLink().toUtf8();
    if (info.isDir())
        return "folder";
    return info.isFile() ? "file " + fileContent(info.filePath()) : QByteArray("special");
}

void addEntries(const QDir &folder, const QString &prefix, QMap<QString, QByteArray> &tree)
{
    const QFileInfoList entries =
        folder.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &info : entries) {
        const QString path = prefix + info.fileName();
        const QByteArray described = describe(info);
        tree.insert(path, described);
        if (isFolder(described))
            addEntries(QDir(info.filePath()), path + u'/', tree);
    }
}

} // namespace

QMap<QString, QByteArray> treeBelow(const QString &top)
{
    QMap<QString, QByteArray> tree;
    addEntries(QDir(top), {}, tree);
    return tree;
}

QByteArray fileContent(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void putFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    const bool put = QDir().mkpath(QFileInfo(path).absolutePath()) && file.open(QIODevice::WriteOnly) &&
                     file.write(bytes) == bytes.size() && file.flush();
    if (!put)
        qFatal("cannot put %s", qPrintable(path));
}

} // namespace quillmar::test
