#pragma once

#include <QString>
#include <QUrl>

namespace quillmar
{

/// What the service says about the newest version of the module.
struct UpdateInfo {
    QString latestVersion;
    QUrl downloadUrl; ///< empty unless isSafeDownloadUrl() accepts it
    bool required = false;
    QString releaseNotes;
};

/// Whether the user may be sent to `url`: valid, https, exactly the service host, no user information, and no
/// port other than 443.
bool isSafeDownloadUrl(const QUrl &url);

} // namespace quillmar
