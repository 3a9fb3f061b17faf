#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace quillmar::test
{

/// This is Wine, not Windows.
bool isWine();

/// The path by which Unix programs know `path`. Under Wine only.
QString unixPath(const QString &path);

/// Runs a program of the Unix side until `isDone` says that it has done its work: Wine tells nothing of it.
/// False when that never happens. Under Wine only.
bool runUnixProgram(const QString &name, const QStringList &arguments, const std::function<bool()> &isDone);

/// Makes `path` a link to `target`, an existing folder. Wine knows no junctions, but shows what links to a
/// folder, or carries another file system, as one. Under Wine only.
bool makeUnixLink(const QString &target, const QString &path);

} // namespace quillmar::test
