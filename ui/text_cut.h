#pragma once

#include <QString>

namespace quillmar
{

/// The first `maximum` UTF-16 units of `text`, one fewer where the cut would split a surrogate pair.
inline QString leftWithoutSplitting(const QString &text, qsizetype maximum)
{
    if (text.size() <= maximum)
        return text;
    const bool splits = maximum > 0 && text[maximum - 1].isHighSurrogate() && text[maximum].isLowSurrogate();
    return text.left(splits ? maximum - 1 : maximum);
}

} // namespace quillmar
