#pragma once

#include <QJsonObject>
#include <QJsonValue>

namespace quillmar::test
{

/// Number of the OBS process.
QJsonValue reportProcessId();

/// {"VmRSS", "VmHWM", "RssAnon", "RssFile", "VmSize"} in KiB, as the kernel counts them.
QJsonObject reportMemory();

/// How often the keeper of events was of use; -1 when it is not loaded.
QJsonValue reportRefusedPolls();

/// Starts a new peak ("VmHWM"); false where the kernel refuses.
QJsonValue resetPeakMemory();

} // namespace quillmar::test
