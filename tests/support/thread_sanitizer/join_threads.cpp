// Qt waits for its threads with pthread_clockjoin_np, which the thread sanitizer does not know: it then takes
// an ended thread for a living one and stops the program when the next thread gets the same handle. It knows
// this other call.

#include <ctime>
#include <pthread.h>

namespace
{

constexpr long nanosecondsPerSecond = 1'000'000'000;

/// The moment on the wall clock that is as far away as `deadline` is on `clock`.
timespec onWallClock(clockid_t clock, const timespec &deadline)
{
    timespec now{};
    timespec wall{};
    clock_gettime(clock, &now);
    clock_gettime(CLOCK_REALTIME, &wall);
    wall.tv_sec += deadline.tv_sec - now.tv_sec;
    wall.tv_nsec += deadline.tv_nsec - now.tv_nsec;
    while (wall.tv_nsec < 0) {
        wall.tv_nsec += nanosecondsPerSecond;
        --wall.tv_sec;
    }
    wall.tv_sec += wall.tv_nsec / nanosecondsPerSecond;
    wall.tv_nsec %= nanosecondsPerSecond;
    return wall;
}

} // namespace

extern "C" __attribute__((visibility("default"))) int
pthread_clockjoin_np(pthread_t thread, void **result, clockid_t clock, const timespec *deadline)
{
    if (deadline == nullptr) {
        return pthread_join(thread, result);
    }
    const timespec wall = onWallClock(clock, *deadline);
    return pthread_timedjoin_np(thread, result, &wall);
}
