#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QTimer>

namespace quillmar::test
{

/// Measures how long the user-interface thread was busy without turning its event loop: a precise timer of 1
/// ms whose longest gap between two calls is kept.
class StallMeter
{
public:
    StallMeter();

    /// Forgets what was measured and starts to measure.
    void restart();

    /// {"longest_ms", "over_16_ms" (number of gaps), "ticks"} since the last restart.
    QJsonObject report() const;

private:
    void tick();

    QTimer timer_;
    QElapsedTimer clock_;
    qint64 lastTick_ = 0;
    qint64 longestGap_ = 0;
    int gapsOverFrame_ = 0;
    int ticks_ = 0;
};

} // namespace quillmar::test
