#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

#include <chrono>

namespace quillmar::test
{

/// Starts a program that dies with this one, its output going to the file `log` (or nowhere when that is
/// empty), its input coming from the file `input`. False when it could not be started.
bool startChild(QProcess &process, const QString &program, const QStringList &arguments,
                const QProcessEnvironment &environment, const QString &log,
                const QString &input = QProcess::nullDevice());

/// Asks the program to end, and kills it when it does not within `deadline`. Does nothing when it is not
/// running.
void stopChild(QProcess &process, std::chrono::milliseconds deadline);

} // namespace quillmar::test
