#pragma once

#include <QString>
#include <QStringList>

namespace quillmar::test
{

/// What a log of OBS says about a run that has ended.
struct ObsLog {
    /// OBS's own count of memory that was never given back; -1 when the log has no such line.
    int leaks = -1;
    /// Lines of the module, without time stamp, in order: "[quillmar-obs-plugin] ...".
    QStringList ownLines;
    /// What stands behind "error: " on OBS's output, whoever wrote it.
    QStringList errors;

    /// `log` is the file that OBS keeps, `output` what it printed, of this run and of earlier ones.
    static ObsLog read(const QString &log, const QString &output);
};

} // namespace quillmar::test
