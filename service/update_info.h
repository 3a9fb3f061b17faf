#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <array>
#include <optional>

namespace quillmar
{

/// What the service says about the newest version of the module.
struct UpdateInfo {
    QString latestVersion;
    QUrl downloadUrl; ///< empty unless isSafeDownloadUrl() accepts it
    bool required = false;
    QString releaseNotes; ///< at most 2000 UTF-16 units

    bool operator==(const UpdateInfo &) const = default;
};

/// Largest reply about versions that is read, in bytes.
inline constexpr qint64 MaximumUpdateReplySize = 65536;

/// Major, minor and patch; compares in that order.
using Version = std::array<quint64, 3>;

/// Nothing unless `text` is exactly three decimal numbers without leading zeros, separated by points, each of
/// which fits 64 bits.
std::optional<Version> parseVersion(const QString &text);

/// Reads a reply of the version route: nothing when it is too large, no JSON object or without a valid
/// `latest_version`. An address that the user may not be sent to is dropped, release notes are cut.
std::optional<UpdateInfo> parseUpdateReply(const QByteArray &body);

/// Whether the user may be sent to `url`: valid, https, exactly the service host, no user information, and no
/// port other than 443.
bool isSafeDownloadUrl(const QUrl &url);

} // namespace quillmar
