#pragma once

#include <QtTypes>

#include <functional>

namespace quillmar::test
{

/// Largest resident memory of this process so far, in bytes.
qint64 peakMemory();

/// By how many bytes the resident memory of this process grew at most while `work` ran; negative when it
/// cannot be told.
qint64 memoryGrowth(const std::function<void()> &work);

} // namespace quillmar::test
