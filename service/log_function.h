#pragma once

#include <QString>

#include <functional>

namespace quillmar
{

/// Severity of a log line; the values are those of the OBS log.
enum class LogLevel : int { Error = 100, Warning = 200, Info = 300, Debug = 400 };

/// Takes one complete line, without prefix and without line break. Called on the user-interface thread.
using LogFunction = std::function<void(LogLevel level, const QString &line)>;

} // namespace quillmar
