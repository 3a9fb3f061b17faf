#include "tests/unit/packages/memory.h"

#include <qt_windows.h>

#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace quillmar::test
{

namespace
{

PROCESS_MEMORY_COUNTERS memory()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters;
}

qint64 residentMemory()
{
    return static_cast<qint64>(memory().WorkingSetSize);
}

} // namespace

qint64 peakMemory()
{
    return static_cast<qint64>(memory().PeakWorkingSetSize);
}

/// The system's own peak cannot be reset, so another thread looks all the time.
qint64 memoryGrowth(const std::function<void()> &work)
{
    const qint64 before = residentMemory();
    std::atomic<qint64> peak = before;
    std::atomic_bool isOver = false;
    std::thread watcher([&] {
        while (!isOver) {
            peak = std::max<qint64>(peak, residentMemory());
            std::this_thread::yield();
        }
    });
    work();
    isOver = true;
    watcher.join();
    return before > 0 ? peak - before : -1;
}

} // namespace quillmar::test
