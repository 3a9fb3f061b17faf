#pragma once

#include "service/log_function.h"

namespace quillmar
{

/// Name of the shared library, which also begins every log line of the module.
inline constexpr char ModuleName[] = "quillmar-obs-plugin";

/// Writes one printf-style line to the OBS log, preceded by the module's name in square brackets. Any thread.
#if defined(__GNUC__)
__attribute__((format(printf, 2, 3)))
#endif
void pluginLog(LogLevel level, const char *format, ...);

} // namespace quillmar
