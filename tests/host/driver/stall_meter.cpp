#include "tests/host/driver/stall_meter.h"

#include <algorithm>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 FrameNanoseconds = 16'000'000;
constexpr double NanosecondsPerMillisecond = 1e6;

} // namespace

StallMeter::StallMeter()
{
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.setInterval(1);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { tick(); });
}

void StallMeter::restart()
{
    longestGap_ = 0;
    gapsOverFrame_ = 0;
    ticks_ = 0;
    clock_.start();
    lastTick_ = 0;
    timer_.start();
}

QJsonObject StallMeter::report() const
{
    return {{u"longest_ms"_s, static_cast<double>(longestGap_) / NanosecondsPerMillisecond},
            {u"over_16_ms"_s, gapsOverFrame_},
            {u"ticks"_s, ticks_}};
}

void StallMeter::tick()
{
    const qint64 now = clock_.nsecsElapsed();
    const qint64 gap = now - lastTick_;
    lastTick_ = now;
    longestGap_ = std::max(longestGap_, gap);
    if (gap > FrameNanoseconds)
        ++gapsOverFrame_;
    ++ticks_;
}

} // namespace quillmar::test
