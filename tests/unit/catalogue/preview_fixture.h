#pragma once

#include "packages/component_product.h"
#include "tests/support/tls_service/tls_service.h"

#include <QImage>
#include <QList>

namespace quillmar::test
{

inline constexpr int LongDeadlineMs = 60'000;

/// What became of one request.
struct Outcome {
    int calls = 0;
    QImage image;
};

/// Address of `path` on the service; empty for an empty path.
QUrl addressOf(const QString &path);

PreviewEntry entryFor(const QString &path, const QString &fallbackPath = {});

/// A response with status 200 and no length, which ends with the connection.
QByteArray responseWithoutLength(const QByteArray &body);

/// The same in pieces that say how long they are.
QByteArray chunkedResponse(const QByteArray &body, qsizetype pieceSize = 65536);

/// Answers with `bytes` and ends the connection.
TlsService::Handler once(const QByteArray &bytes);

/// Keeps every request waiting in `held`.
TlsService::Handler hold(QList<WireConnection> &held);

/// Sends a head without length and then zeros for as long as somebody reads; adds what was sent to `sent`.
TlsService::Handler endless(QObject *context, qint64 &sent, const QByteArray &firstBytes = {});

/// Sends a head and then one byte every `milliseconds`.
TlsService::Handler drip(QObject *context, int milliseconds);

} // namespace quillmar::test
