#pragma once

#include <QDateTime>

#include <functional>

namespace quillmar
{

/// Tells the wall-clock time in seconds since the Unix epoch. It may jump either way between two calls.
using Clock = std::function<qint64()>;

inline qint64 systemTime()
{
    return QDateTime::currentSecsSinceEpoch();
}

} // namespace quillmar
