#pragma once

#include <QString>
#include <QStringList>

namespace quillmar::test
{

/// Runs a program to its end in `folder`; false when it fails.
bool runTool(const QString &folder, const QString &program, const QStringList &arguments);

} // namespace quillmar::test
