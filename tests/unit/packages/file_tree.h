#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

namespace quillmar::test
{

/// Everything below `top`, by relative path: files with content, folders, links with their target, special
/// files.
QMap<QString, QByteArray> treeBelow(const QString &top);

/// What a tree says of an entry: a regular file, or a folder.
inline bool isFile(const QByteArray &described)
{
    return described.startsWith("file ");
}
inline bool isFolder(const QByteArray &described)
{
    return described == "folder";
}

/// Content of a file; null when it cannot be opened.
QByteArray fileContent(const QString &path);

/// Writes a file, with its folders, without the code under test.
void putFile(const QString &path, const QByteArray &bytes);

/// Which file it is and when it was changed last: another value after it was written again.
QByteArray fileStamp(const QString &path);

} // namespace quillmar::test
