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

/// Reads status, error and whole body of a finished reply. A body that is not JSON yields an empty object.
/// Does not keep or delete `reply`.
ServiceReply readServiceReply(QNetworkReply &reply);

/// A reply of the service in JSON is never larger: some sixty thousand products with everything that they may
/// carry.
inline constexpr qint64 MaximumJsonReplySize = qint64(64) * 1024 * 1024;

/// Aborts `reply` as soon as more than `maximum` bytes wait to be read; its handlers then see a network
/// error. For replies that are read once, at their end.
void limitBody(QNetworkReply *reply, qint64 maximum = MaximumJsonReplySize);

/// Takes every connection of `reply` away, then aborts it and leaves its deletion to the event loop; null is
/// ignored.
///
/// Aborting a reply emits its signals before abort() returns, so an owner who has lost interest uses this.
/// Only who wants the handlers to run calls abort() itself: limitBody() and the sign-out, which ends the
/// requests of others.
void dropReply(QNetworkReply *reply);

} // namespace quillmar
