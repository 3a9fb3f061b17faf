#include "demo/service/request_log.h"

#include <QDateTime>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{

bool RequestLog::open(const QString &path)
{
    if (path.isEmpty())
        return true;
    file_.setFileName(path);
    return file_.open(QIODevice::WriteOnly | QIODevice::Append);
}

void RequestLog::add(const QByteArray &method, const QString &path, const Answer &answer)
{
    if (!file_.isOpen())
        return;
    QJsonObject line{{u"time"_s, QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)},
                     {u"method"_s, QString::fromLatin1(method)},
                     {u"path"_s, path},
                     {u"status"_s, answer.status}};
    if (!answer.account.isEmpty())
        line.insert(u"account"_s, answer.account);
    if (!answer.reason.isEmpty())
        line.insert(u"reason"_s, answer.reason);
    file_.write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
    file_.flush();
}

} // namespace quillmar::demo
