#pragma once

#include <QString>

namespace quillmar::test
{

/// How often the 8-bit form of the ASCII text `text` lies in writable memory of this process. Makes no such
/// copy itself.
int copiesInMemory(const QString &text);

} // namespace quillmar::test
