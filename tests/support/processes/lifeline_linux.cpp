#include "tests/support/processes/lifeline.h"

#include <csignal>

#include <sys/prctl.h>

namespace quillmar::test
{

void tieBeforeStart(QProcess &process)
{
    process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

bool tieAfterStart(const QProcess &)
{
    return true;
}

} // namespace quillmar::test
