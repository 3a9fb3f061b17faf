#pragma once

#include <QByteArray>
#include <QString>

class QJsonObject;

/// What every download of a product's file has in common: a ticket is asked for first, then handed in for the
/// file.
namespace quillmar
{

/// A reply to a request for a ticket is never larger.
inline constexpr qint64 MaximumTicketReplySize = qint64(1024) * 1024;

/// Body of the request for a ticket.
QByteArray ticketRequestBody(const QString &productKey);

/// `ticket` can be sent in a header: not empty, and without control characters, which would leave the request
/// without its header.
bool isUsableTicket(const QString &ticket);

/// The service has refused because the quota of the account is exhausted. `reason` is the body of the reply.
bool saysQuotaReached(int status, const QJsonObject &reason);

} // namespace quillmar
