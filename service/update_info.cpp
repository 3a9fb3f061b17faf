#include "service/update_info.h"

#include "service/routes.h"
#include "ui/text_cut.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr qsizetype LongestNotes = 2000;

QUrl safeUrl(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    return isSafeDownloadUrl(url) ? url : QUrl();
}

} // namespace

std::optional<Version> parseVersion(const QString &text)
{
    static const QRegularExpression form(uR"(\A(0|[1-9][0-9]*)\.(0|[1-9][0-9]*)\.(0|[1-9][0-9]*)\z)"_s);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    Version version{};
    for (int part = 0; part < 3; ++part) {
        bool fits = false;
        version.at(static_cast<std::size_t>(part)) = match.capturedView(part + 1).toULongLong(&fits);
        if (!fits)
            return std::nullopt;
    }
    return version;
}

std::optional<UpdateInfo> parseUpdateReply(const QByteArray &body)
{
    if (body.size() > MaximumUpdateReplySize)
        return std::nullopt;
    const QJsonObject object = QJsonDocument::fromJson(body).object();
    const QString version = object.value("latest_version"_L1).toString();
    if (!parseVersion(version))
        return std::nullopt;
    return UpdateInfo{.latestVersion = version,
                      .downloadUrl = safeUrl(object.value("download_url"_L1).toString()),
                      .required = object.value("required"_L1).toBool(),
                      .releaseNotes =
                          leftWithoutSplitting(object.value("release_notes"_L1).toString(), LongestNotes)};
}

bool isSafeDownloadUrl(const QUrl &url)
{
    if (!url.isValid() || url.scheme() != QLatin1StringView("https")) {
        return false;
    }
    if (url.host(QUrl::FullyDecoded) != routes::serviceHost() || !url.userInfo().isEmpty()) {
        return false;
    }
    return url.port(443) == 443;
}

} // namespace quillmar
