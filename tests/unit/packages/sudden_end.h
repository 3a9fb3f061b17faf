#pragma once

#include <QLatin1StringView>

namespace quillmar::test
{

/// Environment variables of a program that sudden_end_windows.cpp is linked into: it dies instead of making
/// this call to the system, itself or through Qt, for the so-many-th time.
inline constexpr QLatin1StringView SuddenEndCall{"QUILLMAR_SUDDEN_END_CALL"};
inline constexpr QLatin1StringView SuddenEndCount{"QUILLMAR_SUDDEN_END_COUNT"};

/// What the program ends with then.
inline constexpr int SuddenEndCode = 77;

} // namespace quillmar::test
