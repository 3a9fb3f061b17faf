#include "service/routes.h"

#include <QHttp1Configuration>
#include <QUrl>

#include <chrono>

using namespace std::chrono_literals;

namespace quillmar::routes
{

namespace
{

constexpr std::chrono::milliseconds AccountTimeout = 30s;
constexpr std::chrono::milliseconds FileTimeout = 120s;
constexpr std::chrono::milliseconds VersionTimeout = 15s;

/// Four packages and four direct downloads may be stuck at once, and the sign-out still finds a free one.
constexpr qsizetype ConnectionsToService = 10;

/// What requests have in common: nothing is followed, nothing is remembered for another request, and one
/// protocol version, so that connections behave alike wherever the service runs.
QNetworkRequest plainRequest(QLatin1StringView route)
{
    QUrl url;
    url.setScheme(QStringLiteral("https"));
    url.setHost(serviceHost());
    url.setPath(QLatin1StringView("/wp-json/quillmar/v1/") + route);
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    QHttp1Configuration connections;
    connections.setNumberOfConnectionsPerHost(ConnectionsToService);
    request.setHttp1Configuration(connections);
    return request;
}

QNetworkRequest bearerRequest(QLatin1StringView route, const QString &token)
{
    QNetworkRequest request = plainRequest(route);
    request.setRawHeader("Authorization", "Bearer " + token.toUtf8());
    request.setTransferTimeout(AccountTimeout);
    return request;
}

void sendsJson(QNetworkRequest &request)
{
    request.setRawHeader("Content-Type", "application/json");
}

} // namespace

QString serviceHost()
{
    return QStringLiteral(QUILLMAR_SERVICE_HOST);
}

QNetworkRequest login()
{
    QNetworkRequest request = plainRequest(QLatin1StringView("login"));
    sendsJson(request);
    return request;
}

QNetworkRequest logout(const QString &token)
{
    return bearerRequest(QLatin1StringView("logout"), token);
}

QNetworkRequest products(const QString &token)
{
    return bearerRequest(QLatin1StringView("products"), token);
}

QNetworkRequest downloadQuota(const QString &token)
{
    return bearerRequest(QLatin1StringView("download-quota"), token);
}

QNetworkRequest downloadTicket(const QString &token)
{
    QNetworkRequest request = bearerRequest(QLatin1StringView("download-ticket"), token);
    sendsJson(request);
    return request;
}

QNetworkRequest downloadFile(const QString &ticket)
{
    QNetworkRequest request = plainRequest(QLatin1StringView("download-file"));
    request.setRawHeader("X-Quillmar-Ticket", ticket.toUtf8());
    request.setRawHeader("Accept-Encoding", "identity");
    request.setTransferTimeout(FileTimeout);
    return request;
}

QNetworkRequest pluginVersion()
{
    QNetworkRequest request = plainRequest(QLatin1StringView("plugin-version"));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::SameOriginRedirectPolicy);
    request.setTransferTimeout(VersionTimeout);
    return request;
}

} // namespace quillmar::routes
