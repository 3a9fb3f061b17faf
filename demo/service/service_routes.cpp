#include "demo/service/service_routes.h"

#include <QFileInfo>
#include <QHttpHeaders>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

constexpr auto kPrefix = "/wp-json/quillmar/v1/"_L1;
constexpr auto kPreviews = "/previews/"_L1;
/// Previews of this name are out of order at their first request.
constexpr auto kUnsteady = "unsteady-"_L1;
constexpr auto kDownloadPage = "/obs-plugin/0.2.0"_L1;

Answer served(const QJsonObject &object)
{
    Answer answer;
    answer.json = object;
    return answer;
}

Answer notFound(const QString &what)
{
    return refusal(404, u"not_found"_s, what);
}

Answer quotaReached()
{
    return refusal(429, u"download_quota_reached"_s, u"No download is left for today."_s);
}

QByteArray pictureType(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix();
    return suffix == "jpg"_L1 ? QByteArray("image/jpeg") : "image/" + suffix.toLatin1();
}

} // namespace

ServiceRoutes::ServiceRoutes(QString host, std::chrono::milliseconds ticketLifetime)
    : host_(std::move(host)), tickets_(ticketLifetime)
{
    using enum QHttpServerRequest::Method;
    using enum RequestRules::Credential;
    using Body = RequestRules::Body;
    routes_ = {
        {u"login"_s, {{Post, None, Body::Json}, &ServiceRoutes::login}},
        {u"logout"_s, {{Post, Bearer, Body::None}, &ServiceRoutes::logout}},
        {u"products"_s, {{Get, Bearer, Body::None}, &ServiceRoutes::products}},
        {u"download-quota"_s, {{Get, Bearer, Body::None}, &ServiceRoutes::downloadQuota}},
        {u"download-ticket"_s, {{Post, Bearer, Body::Json}, &ServiceRoutes::downloadTicket}},
        {u"download-file"_s, {{Post, Ticket, Body::None}, &ServiceRoutes::downloadFile}},
        {u"plugin-version"_s, {{Get, None, Body::None}, &ServiceRoutes::pluginVersion}},
    };
}

Answer ServiceRoutes::answer(const QHttpServerRequest &request)
{
    const Route page{{}, &ServiceRoutes::downloadPage};
    const Route picture{{}, &ServiceRoutes::preview};
    const QString path = request.url().path();
    if (path.startsWith(kPreviews))
        return run(picture, request);
    if (path == kDownloadPage)
        return run(page, request);
    const auto route = routes_.constFind(path.startsWith(kPrefix) ? path.sliced(kPrefix.size()) : QString());
    if (route == routes_.constEnd())
        return notFound(u"There is no such route."_s);
    return run(*route, request);
}

Answer ServiceRoutes::run(const Route &route, const QHttpServerRequest &request)
{
    if (const auto refused = violation(request, route.rules, host_))
        return *refused;
    if (route.rules.credential != RequestRules::Credential::Bearer)
        return (this->*route.handler)(request, nullptr);
    Account *account = accounts_.authenticate(bearerToken(request));
    if (!account)
        return refusal(401, u"invalid_token"_s, u"The session is unknown or over."_s);
    Answer answer = (this->*route.handler)(request, account);
    answer.account = account->name;
    return answer;
}

Answer ServiceRoutes::login(const QHttpServerRequest &request, Account *)
{
    const JsonBody body = readJsonBody(request, {u"username"_s, u"password"_s});
    if (body.refused)
        return *body.refused;
    Account *account = accounts_.find(body.object.value("username"_L1).toString(),
                                      body.object.value("password"_L1).toString());
    if (!account)
        return refusal(401, u"invalid_credentials"_s, u"User name or password is wrong."_s);
    Answer answer = account->countryAllowed
                        ? served({{u"token"_s, QString::fromLatin1(accounts_.openSession(*account))}})
                        : refusal(403, u"country_not_allowed"_s, u"Not available in this country."_s);
    answer.account = account->name;
    return answer;
}

Answer ServiceRoutes::logout(const QHttpServerRequest &request, Account *)
{
    accounts_.closeSession(bearerToken(request));
    return served({{u"success"_s, true}});
}

Answer ServiceRoutes::products(const QHttpServerRequest &, Account *account)
{
    if (!account->hasProducts)
        return served({{u"products"_s, QJsonArray()}});
    return served({{u"products"_s, account->hasManyProducts ? catalogue_.crowd() : catalogue_.products()}});
}

Answer ServiceRoutes::downloadQuota(const QHttpServerRequest &, Account *account)
{
    return served(account->quota.toJson());
}

Answer ServiceRoutes::downloadTicket(const QHttpServerRequest &request, Account *account)
{
    const JsonBody body = readJsonBody(request, {u"product_key"_s});
    if (body.refused)
        return *body.refused;
    const QString key = body.object.value("product_key"_L1).toString();
    if (!account->hasProducts || catalogue_.package(key).path.isEmpty())
        return refusal(404, u"product_not_found"_s, u"This account has no such product."_s);
    if (account->quota.isExhausted())
        return quotaReached();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(tickets_.lifetime());
    return served({{u"ticket"_s, QString::fromLatin1(tickets_.issue(*account, key))},
                   {u"expires_in"_s, static_cast<qint64>(seconds.count())}});
}

Answer ServiceRoutes::downloadFile(const QHttpServerRequest &request, Account *)
{
    const auto redeemed = tickets_.redeem(request.headers().value(kTicketHeader).toByteArray());
    if (redeemed.state == Tickets::State::Unknown)
        return refusal(410, u"ticket_unknown"_s, u"The ticket was never issued or is used up."_s);
    if (redeemed.state == Tickets::State::Expired)
        return refusal(410, u"ticket_expired"_s, u"The ticket is too old."_s);
    Account &account = *redeemed.ticket.account;
    const CatalogueFolder::Package package = catalogue_.package(redeemed.ticket.productKey);
    Answer answer;
    if (account.quota.isExhausted()) {
        answer = quotaReached();
    } else {
        account.quota.spend();
        answer.file = package.path;
        answer.downloadName = package.fileName;
        answer.contentType = package.contentType;
    }
    answer.account = account.name;
    return answer;
}

Answer ServiceRoutes::pluginVersion(const QHttpServerRequest &, Account *)
{
    return served(
        {{u"latest_version"_s, u"0.2.0"_s},
         {u"download_url"_s, u"https://%1%2"_s.arg(host_, kDownloadPage)},
         {u"required"_s, false},
         {u"release_notes"_s, u"Faster downloads, a calmer gallery and new stinger controls.\n"
                              u"\u2067دانلود سریع‌تر و گالری آرام‌تر.\u2069"_s}});
}

Answer ServiceRoutes::preview(const QHttpServerRequest &request, Account *)
{
    const QString name = request.url().path().sliced(kPreviews.size());
    const QString path = catalogue_.preview(name);
    if (path.isEmpty())
        return notFound(u"There is no such picture."_s);
    if (name.startsWith(kUnsteady) && !steadied_.contains(name)) {
        steadied_.insert(name);
        return refusal(503, u"busy"_s, u"The picture is not to be had right now."_s);
    }
    Answer answer;
    answer.file = path;
    answer.contentType = pictureType(path);
    return answer;
}

Answer ServiceRoutes::downloadPage(const QHttpServerRequest &, Account *)
{
    Answer answer;
    answer.contentType = "text/html; charset=utf-8";
    answer.page = "<!doctype html><title>Quillmar 0.2.0</title>"
                  "<body style=\"background:#0b0f0d;color:#fff;font:18px sans-serif;padding:4em\">"
                  "<h1 style=\"color:#55ff22\">Quillmar 0.2.0</h1><p>The demo has nothing to install.</p>";
    return answer;
}

} // namespace quillmar::demo
