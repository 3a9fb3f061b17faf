#include "tests/unit/packages/file_tree.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <sys/stat.h>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QByteArray describe(const QFileInfo &info)
{
    if (info.isSymLink())
        return "link to " + info.readSymLink().toUtf8();
    if (info.isDir())
        return "folder";
    return info.isFile() ? "file " + fileContent(info.filePath()) : QByteArray("special");
}

} // namespace

QMap<QString, QByteArray> treeBelow(const QString &top)
{
    QMap<QString, QByteArray> tree;
    QDirIterator walk(top, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QFileInfo info = walk.nextFileInfo();
        tree.insert(QDir(top).relativeFilePath(info.filePath()), describe(info));
    }
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

QByteArray fileStamp(const QString &path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return QByteArray::number(qulonglong(status.st_ino)) + ' ' +
           QByteArray::number(qlonglong(status.st_mtim.tv_sec)) + ' ' +
           QByteArray::number(qlonglong(status.st_mtim.tv_nsec));
}

} // namespace quillmar::test
