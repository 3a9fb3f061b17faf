#pragma once

#include "demo/service/answer.h"

#include <QHttpServerRequest>
#include <QStringList>

#include <optional>

namespace quillmar::demo
{

/// What a route demands of every request before it looks at the content.
struct RequestRules {
    enum class Credential { None, Bearer, Ticket };
    enum class Body { None, Json };

    QHttpServerRequest::Method method = QHttpServerRequest::Method::Get;
    Credential credential = Credential::None;
    Body body = Body::None;
};

/// Why the request is refused, or nothing. Looks at host, method, query, headers and whether there is a body.
std::optional<Answer> violation(const QHttpServerRequest &request, const RequestRules &rules,
                                const QString &host);

/// The token of the Authorization header, or empty when the header is absent or of another form.
QByteArray bearerToken(const QHttpServerRequest &request);

/// A JSON body with exactly the wanted keys, each a non-empty string; `refused` says why otherwise.
struct JsonBody {
    QJsonObject object;
    std::optional<Answer> refused;
};
JsonBody readJsonBody(const QHttpServerRequest &request, const QStringList &keys);

/// "GET", "POST" …
QByteArray methodName(QHttpServerRequest::Method method);

/// Header that carries a download ticket.
inline constexpr QByteArrayView kTicketHeader = "X-Quillmar-Ticket";

} // namespace quillmar::demo
