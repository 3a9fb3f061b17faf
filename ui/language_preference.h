#pragma once

#include <QString>

namespace quillmar
{

/// The language chosen by the user, kept under the key `language` of an INI file (the module's settings.ini).
/// Threads: the user-interface thread.

/// EnglishCode when exactly that is saved at `path`, else PersianCode; also for an empty path or an
/// unreadable file.
QString loadLanguage(const QString &path);

/// Saves `code` and leaves every other setting alone. False when it could not be written. An empty path is
/// the caller's affair: there is nowhere to save then.
bool saveLanguage(const QString &path, const QString &code);

} // namespace quillmar
