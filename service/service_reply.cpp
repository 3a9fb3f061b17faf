#include "service/service_reply.h"

#include <QJsonDocument>

namespace quillmar
{

int httpStatus(const QNetworkReply &reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

ServiceReply readServiceReply(QNetworkReply &reply)
{
    ServiceReply read;
    read.status = httpStatus(reply);
    read.error = reply.error();
    read.body = reply.isOpen() ? reply.readAll() : QByteArray();
    const QJsonDocument document = QJsonDocument::fromJson(read.body);
    read.isObject = document.isObject();
    read.object = document.object();
    return read;
}

void limitBody(QNetworkReply *reply, qint64 maximum)
{
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, maximum] {
        if (reply->bytesAvailable() > maximum) {
            reply->abort();
        }
    });
}

void dropReply(QNetworkReply *reply)
{
    if (!reply) {
        return;
    }
    // Signal by signal: the reply tells its own network thread of the abort by a signal too, and a wildcard
    // would leave the transfer running to its end.
    QObject::disconnect(reply, &QNetworkReply::finished, nullptr, nullptr);
    QObject::disconnect(reply, &QNetworkReply::errorOccurred, nullptr, nullptr);
    QObject::disconnect(reply, &QNetworkReply::readyRead, nullptr, nullptr);
    QObject::disconnect(reply, &QNetworkReply::metaDataChanged, nullptr, nullptr);
    QObject::disconnect(reply, &QNetworkReply::downloadProgress, nullptr, nullptr);
    reply->abort();
    reply->deleteLater();
}

} // namespace quillmar
