#pragma once

#include <QNetworkRequest>
#include <QString>

/// Requests of the web service, complete with address, method-independent headers, transfer time-out and
/// policies.
///
/// Redirects are never followed where a token, a ticket or a password travels: Qt would carry the
/// Authorization header to another host and repeat a POST body there. No request brings or keeps cookies or
/// stored credentials. The host is the build-time constant QUILLMAR_SERVICE_HOST. `token` and `ticket` are
/// sent as their UTF-8 bytes, read by the caller at the moment it builds the request.
namespace quillmar::routes
{

/// Host name of the service, without scheme or port.
QString serviceHost();

/// POST, JSON body, no transfer time-out: how long a sign-in takes is the service's affair.
QNetworkRequest login();

/// POST with an empty body and no content type; 30 s.
QNetworkRequest logout(const QString &token);

/// GET; 30 s.
QNetworkRequest products(const QString &token);

/// GET; 30 s.
QNetworkRequest downloadQuota(const QString &token);

/// POST, JSON body; 30 s.
QNetworkRequest downloadTicket(const QString &token);

/// POST with an empty body, no content type and no bearer token; 120 s without a byte. Asks for the bytes as
/// they are, so that sizes and digests speak of what is on the wire.
QNetworkRequest downloadFile(const QString &ticket);

/// GET without any sign of who asks; 15 s. Follows redirects within the service's own origin.
QNetworkRequest pluginVersion();

} // namespace quillmar::routes
