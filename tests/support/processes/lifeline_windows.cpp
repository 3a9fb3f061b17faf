#include "tests/support/processes/lifeline.h"

#include <qt_windows.h>

namespace quillmar::test
{

namespace
{

/// Ends whatever is in it when its last handle is closed, which is when this program ends.
HANDLE makeJob()
{
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

} // namespace

void tieBeforeStart(QProcess &) {}

bool tieAfterStart(const QProcess &process)
{
    static const HANDLE job = makeJob();
    const HANDLE handle =
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(process.processId()));
    const bool isInJob = AssignProcessToJobObject(job, handle) != FALSE;
    CloseHandle(handle);
    return isInJob;
}

} // namespace quillmar::test
