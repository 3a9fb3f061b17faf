#pragma once

#include <QString>

namespace quillmar
{

/// `text` fit for a log line, whoever wrote it: at most 120 characters and then an ellipsis. A question mark
/// stands for everything that could break the line or change how it reads: control and formatting characters,
/// line and paragraph separators. Half of a surrogate pair becomes U+FFFD.
QString logText(const QString &text);

} // namespace quillmar
