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
    read.body = reply.readAll();
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
    reply->disconnect();
    reply->abort();
    reply->deleteLater();
}

} // namespace quillmar
