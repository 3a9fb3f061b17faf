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
    /// Lines that begin with "error:" after the time stamp, whoever wrote them.
    QStringList errors;

    static ObsLog read(const QString &path);
};

} // namespace quillmar::test
