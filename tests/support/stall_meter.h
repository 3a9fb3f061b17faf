#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>

namespace quillmar::test
{

/// Measures how long the thread that owns it was busy without turning its event loop: a precise timer of 1 ms
/// whose longest gap between two calls is kept.
class StallMeter
{
public:
    StallMeter()
    {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(1);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { tick(); });
    }

    /// Forgets what was measured and starts to measure.
    void restart()
    {
        longest_ = 0;
        overFrame_ = 0;
        ticks_ = 0;
        sinceLast_.start();
        timer_.start();
    }

    double longestMilliseconds() const { return static_cast<double>(longest_) / 1e6; }

    /// Number of gaps of more than 16 ms.
    int gapsOverFrame() const { return overFrame_; }
    int ticks() const { return ticks_; }

private:
    void tick()
    {
        constexpr qint64 frameNanoseconds = 16'000'000;
        const qint64 gap = sinceLast_.nsecsElapsed();
        sinceLast_.start();
        longest_ = std::max(longest_, gap);
        overFrame_ += gap > frameNanoseconds ? 1 : 0;
        ++ticks_;
    }

    QTimer timer_;
    QElapsedTimer sinceLast_;
    qint64 longest_ = 0;
    int overFrame_ = 0;
    int ticks_ = 0;
};

} // namespace quillmar::test
