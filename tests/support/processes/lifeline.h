#pragma once

#include <QProcess>

namespace quillmar::test
{

/// Has the system end `process` with this program, however that ends. Both are called, before and after the
/// start; the second is false when it could not be done.
void tieBeforeStart(QProcess &process);
bool tieAfterStart(const QProcess &process);

} // namespace quillmar::test
