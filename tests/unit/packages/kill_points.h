#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace quillmar::test
{

/// A step of the work on files, as the system calls that make it.
struct KillPoint {
    const char *name;
    QString calls; ///< with commas between them
};

/// Steps of storing and of extracting alike.
QList<KillPoint> killPoints();

/// The step that only storing has.
KillPoint makingFolders();

/// Runs the command until its `count`th call of these, at which it dies; true when it came to its end before.
/// Nothing when neither was the case.
std::optional<bool> runUntilKilled(const QStringList &command, const QString &calls, int count);

} // namespace quillmar::test
