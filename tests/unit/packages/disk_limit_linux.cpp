#include "tests/unit/packages/disk_limit.h"

#include <QtLogging>

#include <csignal>
#include <sys/resource.h>

namespace quillmar::test
{

namespace
{

void setFileLimit(rlim_t bytes)
{
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
        qFatal("cannot limit the size of files");
}

rlim_t hardLimit()
{
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    return limit.rlim_max;
}

} // namespace

DiskLimit::DiskLimit(qint64 bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    setFileLimit(static_cast<rlim_t>(bytes));
}

DiskLimit::~DiskLimit()
{
    setFileLimit(hardLimit());
    std::signal(SIGXFSZ, SIG_DFL);
}

} // namespace quillmar::test
