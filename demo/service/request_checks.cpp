#include "demo/service/request_checks.h"

#include <QHttpHeaders>
#include <QJsonDocument>
#include <QMetaEnum>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

using Credential = RequestRules::Credential;
using Body = RequestRules::Body;

std::optional<Answer> wrongHost(const QHttpServerRequest &request, const QString &host)
{
    const QByteArray given = request.value("Host");
    const QByteArray name = given.first(given.contains(':') ? given.indexOf(':') : given.size());
    if (QString::fromLatin1(name) == host)
        return std::nullopt;
    return refusal(421, u"wrong_host"_s, u"This service answers for %1 only."_s.arg(host));
}

std::optional<Answer> wrongMethod(const QHttpServerRequest &request, const RequestRules &rules)
{
    if (request.method() == rules.method)
        return std::nullopt;
    const QByteArray allowed = methodName(rules.method);
    Answer answer = refusal(405, u"method_not_allowed"_s, u"Use %1."_s.arg(QString::fromLatin1(allowed)));
    answer.allowedMethod = allowed;
    return answer;
}

std::optional<Answer> strayQuery(const QHttpServerRequest &request)
{
    if (!request.url().hasQuery())
        return std::nullopt;
    return refusal(400, u"unexpected_query"_s, u"This route takes no query."_s);
}

std::optional<Answer> repeatedHeader(const QHttpServerRequest &request)
{
    for (const QByteArrayView name : {QByteArrayView("Authorization"), QByteArrayView("Content-Type"),
                                      QByteArrayView("Host"), kTicketHeader}) {
        if (request.headers().values(name).size() > 1)
            return refusal(400, u"duplicate_header"_s,
                           u"%1 is given twice."_s.arg(QString::fromLatin1(name)));
    }
    return std::nullopt;
}

std::optional<Answer> wrongBearer(const QHttpServerRequest &request, Credential wanted)
{
    const bool given = request.headers().contains("Authorization");
    if (wanted != Credential::Bearer) {
        if (given)
            return refusal(400, u"unexpected_authorization"_s,
                           u"This route takes no Authorization header."_s);
        return std::nullopt;
    }
    if (!given)
        return refusal(401, u"missing_token"_s, u"The Authorization header is missing."_s);
    if (bearerToken(request).isEmpty())
        return refusal(401, u"malformed_token"_s, u"Authorization must be \"Bearer \" and a token."_s);
    return std::nullopt;
}

std::optional<Answer> wrongTicket(const QHttpServerRequest &request, Credential wanted)
{
    const bool given = request.headers().contains(kTicketHeader);
    if (wanted != Credential::Ticket) {
        if (given)
            return refusal(400, u"unexpected_ticket"_s, u"This route takes no ticket."_s);
        return std::nullopt;
    }
    if (request.headers().value(kTicketHeader).isEmpty())
        return refusal(400, u"missing_ticket"_s, u"The X-Quillmar-Ticket header is missing."_s);
    return std::nullopt;
}

std::optional<Answer> wrongBody(const QHttpServerRequest &request, Body wanted)
{
    const QByteArray type = request.value("Content-Type");
    if (wanted == Body::Json) {
        if (type != "application/json")
            return refusal(415, u"wrong_content_type"_s, u"Content-Type must be application/json."_s);
        return std::nullopt;
    }
    if (request.headers().contains("Content-Type"))
        return refusal(400, u"unexpected_content_type"_s, u"This route takes no Content-Type."_s);
    if (!request.body().isEmpty())
        return refusal(400, u"unexpected_body"_s, u"This route takes no body."_s);
    return std::nullopt;
}

JsonBody badBody(const QString &code, const QString &message)
{
    return {{}, refusal(400, code, message)};
}

} // namespace

std::optional<Answer> violation(const QHttpServerRequest &request, const RequestRules &rules,
                                const QString &host)
{
    if (auto refused = wrongHost(request, host))
        return refused;
    if (auto refused = wrongMethod(request, rules))
        return refused;
    if (auto refused = strayQuery(request))
        return refused;
    if (auto refused = repeatedHeader(request))
        return refused;
    if (auto refused = wrongBearer(request, rules.credential))
        return refused;
    if (auto refused = wrongTicket(request, rules.credential))
        return refused;
    return wrongBody(request, rules.body);
}

QByteArray bearerToken(const QHttpServerRequest &request)
{
    constexpr QByteArrayView prefix = "Bearer ";
    const QByteArray value = request.value("Authorization");
    return value.startsWith(prefix) ? value.sliced(prefix.size()) : QByteArray();
}

JsonBody readJsonBody(const QHttpServerRequest &request, const QStringList &keys)
{
    const QJsonDocument document = QJsonDocument::fromJson(request.body());
    if (!document.isObject())
        return badBody(u"malformed_json"_s, u"The body must be a JSON object."_s);
    const QJsonObject object = document.object();
    for (const QString &key : keys) {
        if (object.value(key).toString().isEmpty())
            return badBody(u"missing_key"_s, u"\"%1\" must be a non-empty string."_s.arg(key));
    }
    for (const QString &key : object.keys()) {
        if (!keys.contains(key))
            return badBody(u"unexpected_key"_s, u"\"%1\" is not known here."_s.arg(key));
    }
    return {object, std::nullopt};
}

QByteArray methodName(QHttpServerRequest::Method method)
{
    const auto names = QMetaEnum::fromType<QHttpServerRequest::Method>();
    return QByteArray(names.valueToKey(static_cast<int>(method))).toUpper();
}

} // namespace quillmar::demo
