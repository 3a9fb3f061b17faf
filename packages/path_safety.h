#pragma once

#include <QString>

namespace quillmar
{

/// `key` may name a folder on every platform: 1 to 128 of letters, digits, '.', '_' and '-', first a letter
/// or digit, no
/// "..", no trailing '.', no Windows device name.
bool isSafeProductKey(const QString &key);

/// `path` with '/' separators and without one trailing separator, or empty when it is refused: absolute,
/// longer than 1024 UTF-16 units, or with a segment that is empty, "." or "..", ends with '.' or a blank, is
/// a Windows device name, or holds a control character or one of `:<>"|?*`. Never repaired.
QString safeRelativePath(const QString &path);

/// `candidate`, made absolute and cleaned, when that is `root` or below it; otherwise empty. Looks at the
/// text alone, the folders of the root in any case of letters.
QString pathBelowRoot(const QString &root, const QString &candidate);

/// `name` may name a file directly inside the module's download folder, and names the same file on every
/// platform: not empty, "." or "..", no separator of any platform, no ':', no control character, no '.' or
/// blank at its end, no Windows device name, and not the folder of the package cache. Other characters are
/// left to the system, which may refuse them.
bool isSafeFileName(const QString &name);

/// `candidate`, made absolute and cleaned, is `root` or below it, and neither it nor any folder above it, up
/// to the top of the volume, is a symbolic link or (Windows) a reparse point. Paths that do not exist yet
/// pass.
bool isInsideRoot(const QString &root, const QString &candidate);

} // namespace quillmar
