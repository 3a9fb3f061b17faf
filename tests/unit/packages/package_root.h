#pragma once

#include <QString>

namespace quillmar::test
{

/// Everything that is done in a package root works there: a package comes, is found, and is taken out.
void worksIn(const QString &root);

/// Everything is refused in a package root behind a link: nothing is written, nothing is found.
void refusesAllIn(const QString &root);

} // namespace quillmar::test
