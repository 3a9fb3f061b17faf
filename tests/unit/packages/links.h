#pragma once

#include <QString>
#include <QtSystemDetection>

namespace quillmar::test
{

/// A link can lead nowhere, or to itself. Under Wine it is a link only while there is a folder that it leads
/// to.
#ifdef Q_OS_WIN
inline constexpr bool LinksMayDangle = false;
#else
inline constexpr bool LinksMayDangle = true;
#endif

/// Windows itself does not let a folder be moved in which a file is open; Wine does.
#ifdef Q_OS_WIN
inline constexpr bool SystemKeepsOpenFolders = true;
#else
inline constexpr bool SystemKeepsOpenFolders = false;
#endif

/// Makes `path` a link to `target`, which is absolute or relative to the folder of the link.
///
/// On Windows that is a junction. Only folders can have one, so a link to a file leads to a new folder beside
/// that file: what is in place of a file, and leads away from it, is a link all the same.
bool makeLink(const QString &target, const QString &path);

/// `path` itself is a link, wherever it leads.
bool isLink(const QString &path);

} // namespace quillmar::test
