#include "tests/unit/catalogue/preview_fixture.h"

#include "service/routes.h"

#include <QTimer>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr char Head[] = "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nConnection: close\r\n";

} // namespace

QUrl addressOf(const QString &path)
{
    return path.isEmpty() ? QUrl() : QUrl(u"https://"_s + routes::serviceHost() + path);
}

PreviewEntry entryFor(const QString &path, const QString &fallbackPath)
{
    return {addressOf(path), addressOf(fallbackPath), u"1"_s, u"label"_s};
}

QByteArray responseWithoutLength(const QByteArray &body)
{
    return QByteArray(Head) + "\r\n" + body;
}

QByteArray chunkedResponse(const QByteArray &body, qsizetype pieceSize)
{
    QByteArray response = QByteArray(Head) + "Transfer-Encoding: chunked\r\n\r\n";
    for (qsizetype start = 0; start < body.size(); start += pieceSize) {
        const QByteArray piece = body.sliced(start, qMin(pieceSize, body.size() - start));
        response += QByteArray::number(piece.size(), 16) + "\r\n" + piece + "\r\n";
    }
    return response + "0\r\n\r\n";
}

TlsService::Handler once(const QByteArray &bytes)
{
    return [bytes](const WireRequest &, WireConnection &connection) {
        connection.send(bytes);
        connection.close();
    };
}

TlsService::Handler hold(QList<WireConnection> &held)
{
    return [&held](const WireRequest &, WireConnection &connection) { held.append(connection); };
}

TlsService::Handler endless(QObject *context, qint64 &sent, const QByteArray &firstBytes)
{
    return [context, &sent, firstBytes](const WireRequest &, WireConnection &connection) {
        connection.send(responseWithoutLength(firstBytes));
        auto *feeder = new QTimer(context);
        QObject::connect(feeder, &QTimer::timeout, feeder, [feeder, &sent, wire = connection]() mutable {
            static const QByteArray piece(256 * 1024, '\0');
            if (!wire.isOpen()) {
                feeder->deleteLater();
            } else if (wire.bytesToWrite() < piece.size()) {
                wire.send(piece);
                sent += piece.size();
            }
        });
        feeder->start(0);
    };
}

TlsService::Handler drip(QObject *context, int milliseconds)
{
    return [context, milliseconds](const WireRequest &, WireConnection &connection) {
        connection.send(QByteArray(Head) + "Content-Length: 100000\r\n\r\n");
        auto *timer = new QTimer(context);
        QObject::connect(timer, &QTimer::timeout, timer,
                         [wire = connection]() mutable { wire.send(QByteArray(1, '\0')); });
        timer->start(milliseconds);
    };
}

} // namespace quillmar::test
