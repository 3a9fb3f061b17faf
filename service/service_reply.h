#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QNetworkReply>

namespace quillmar
{

/// What a handler reads of a finished reply, read once.
struct ServiceReply {
    int status = 0; ///< HTTP status; 0 when no HTTP response was received
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QByteArray body;
    bool isObject = false; ///< the body is a JSON object
    QJsonObject object;    ///< empty unless isObject

    bool hasError() const { return error != QNetworkReply::NoError; }

    /// Text value of `key`; empty when absent or not a string.
    QString text(QLatin1StringView key) const { return object.value(key).toString(); }

    /// The service no longer accepts the session.
    bool isRefused() const { return status == 401 || status == 403; }
};

/// Status of `reply`, 0 when no HTTP response was received.
int httpStatus(const QNetworkReply &reply);

/// Reads status, error and whole body of a finished reply. A body that is not JSON yields an empty object. Does not
/// keep or delete `reply`.
ServiceReply readServiceReply(QNetworkReply &reply);

/// Takes every connection of `reply` away, then aborts it and leaves its deletion to the event loop. Aborting a reply
/// emits its signals at once, so nothing else in the module calls abort() on a reply that still has handlers.
void dropReply(QNetworkReply *reply);

} // namespace quillmar
