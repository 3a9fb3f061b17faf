#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace quillmar::demo
{

/// What one request gets back, before it goes on the wire. Exactly one of `json`, `page` and `file` is the
/// body.
struct Answer {
    int status = 200;
    QJsonObject json;
    QByteArray page;          ///< body of `contentType`; sent when not empty
    QString file;             ///< path of a file to stream as `contentType`; sent when not empty
    QString downloadName;     ///< goes into Content-Disposition when not empty
    QByteArray contentType;   ///< of `page` or `file`
    QByteArray allowedMethod; ///< goes into Allow when not empty
    QString account;          ///< for the log: who asked, when known
    QString reason;           ///< for the log: the refusal's code, empty when served
};

/// A refusal as the service reports it: {"code", "message"}.
Answer refusal(int status, const QString &code, const QString &message);

} // namespace quillmar::demo
