#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <algorithm>

namespace quillmar::bench
{

/// Longest time for which the thread that owns it did not come back to its event loop, seen by a 1 ms timer.
class StallMeter : public QObject
{
public:
    StallMeter()
    {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(1);
        connect(&timer_, &QTimer::timeout, this, [this] {
            longest_ = std::max(longest_, sinceLast_.nsecsElapsed());
            sinceLast_.restart();
        });
        reset();
        timer_.start();
    }

    void reset()
    {
        longest_ = 0;
        sinceLast_.start();
    }

    double longestMilliseconds() const { return static_cast<double>(longest_) / 1e6; }

private:
    QTimer timer_;
    QElapsedTimer sinceLast_;
    qint64 longest_ = 0;
};

} // namespace quillmar::bench
