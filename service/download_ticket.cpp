#include "service/download_ticket.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace quillmar
{

using namespace Qt::StringLiterals;

namespace
{

constexpr int HttpTooManyRequests = 429;

} // namespace

QByteArray ticketRequestBody(const QString &productKey)
{
    return QJsonDocument(QJsonObject{{u"product_key"_s, productKey}}).toJson(QJsonDocument::Indented);
}

bool isUsableTicket(const QString &ticket)
{
    const auto isControl = [](QChar c) { return c < u' ' || c == u'\x7f'; };
    return !ticket.isEmpty() && std::ranges::none_of(ticket, isControl);
}

bool saysQuotaReached(int status, const QJsonObject &reason)
{
    return status == HttpTooManyRequests && reason.value("code"_L1).toString() == "download_quota_reached"_L1;
}

} // namespace quillmar
