#pragma once

#include <QString>

namespace quillmar
{

/// The native form of the absolute `path` that the system takes beyond 260 characters, and in which it reads
/// nothing into a name.
QString extendedLengthPath(const QString &path);

} // namespace quillmar
