#pragma once

#include <chrono>
#include <functional>

namespace quillmar::test
{

using namespace std::chrono_literals;

/// How long a step of a real program may take before a test calls it hung. Generous: a busy machine is no
/// failure.
inline constexpr std::chrono::milliseconds StepDeadline = 60s;

/// Turns the event loop until `condition` holds; false when it still does not after `deadline`.
bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds deadline = StepDeadline);

} // namespace quillmar::test
