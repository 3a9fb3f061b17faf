#pragma once

#include <QByteArray>
#include <QString>

namespace quillmar
{

/// What is kept of update checks from one run to the next: the group "Updates" of an INI file (the module's
/// settings.ini). Times are seconds since the Unix epoch, 0 for never. Threads: the user-interface thread.
///
/// Whatever the file says is taken as it stands: the caller judges whether a reply or a time can be true.
struct UpdateCache {
    QByteArray response;    ///< body of the last good reply
    qint64 lastSuccess = 0; ///< when it came
    qint64 lastAttempt = 0; ///< when the last request was sent
};

/// Values that are missing, or are no numbers where numbers belong, are those of an empty cache.
UpdateCache loadUpdateCache(const QString &path);

/// Leaves every other setting alone. What cannot be written is lost.
void saveUpdateAttempt(const QString &path, qint64 time);

/// Leaves every other setting alone. False when it could not be written.
bool saveUpdateSuccess(const QString &path, const QByteArray &response, qint64 time);

} // namespace quillmar
