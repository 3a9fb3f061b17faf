#include "tests/unit/demo/service_fixture.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{
namespace
{

/// "TOKEN" and "TICKET" in a header stand for good ones.
struct Request {
    QByteArray method;
    QString target;
    HeaderList headers;
    QByteArray body;
};

const QByteArray kJsonType = "application/json";
const QByteArray kLoginBody = R"({"username": "demo", "password": "demo"})";
const QByteArray kTicketBody = R"({"product_key": "alpha"})";

/// One good request for every address that the service has, by name.
QList<std::pair<QByteArray, Request>> goodRequests()
{
    const auto route = [](const char16_t *name) { return ServiceFixture::route(QString::fromUtf16(name)); };
    const std::pair<QByteArray, QByteArray> bearer{"Authorization", "Bearer TOKEN"};
    const std::pair<QByteArray, QByteArray> json{"Content-Type", kJsonType};
    return {{"login", {"POST", route(u"login"), {json}, kLoginBody}},
            {"logout", {"POST", route(u"logout"), {bearer}, {}}},
            {"products", {"GET", route(u"products"), {bearer}, {}}},
            {"download-quota", {"GET", route(u"download-quota"), {bearer}, {}}},
            {"download-ticket", {"POST", route(u"download-ticket"), {bearer, json}, kTicketBody}},
            {"download-file", {"POST", route(u"download-file"), {{"X-Quillmar-Ticket", "TICKET"}}, {}}},
            {"plugin-version", {"GET", route(u"plugin-version"), {}, {}}},
            {"preview", {"GET", u"/previews/one.png"_s, {}, {}}},
            {"plugin page", {"GET", u"/obs-plugin/0.2.0"_s, {}, {}}}};
}

Request good(const QByteArray &name)
{
    for (const auto &[known, request] : goodRequests()) {
        if (known == name)
            return request;
    }
    qFatal("no such request");
}

void setHeader(Request &request, const QByteArray &name, const QByteArray &value)
{
    request.headers.removeIf([&](const auto &header) { return header.first == name; });
    if (!value.isNull())
        request.headers.append({name, value});
}

void addRow(const QByteArray &name, const Request &request, int status, const QString &code)
{
    QTest::newRow(name.constData()) << request.method << request.target << request.headers << request.body
                                    << status << code;
}

void addHeaderRow(const QByteArray &route, const QByteArray &header, const QByteArray &value,
                  const QByteArray &what, int status, const QString &code)
{
    Request request = good(route);
    setHeader(request, header, value);
    addRow(route + ": " + what, request, status, code);
}

void addBodyRow(const QByteArray &route, const QByteArray &body, const QByteArray &what, const QString &code)
{
    Request request = good(route);
    request.body = body;
    addRow(route + ": " + what, request, 400, code);
}

void addWireRows()
{
    for (const auto &[name, request] : goodRequests()) {
        Request other = request;
        other.method = request.method == "GET" ? "POST" : "GET";
        addRow(name + ": other method", other, 405, u"method_not_allowed"_s);
        other.method = "DELETE";
        addRow(name + ": DELETE", other, 405, u"method_not_allowed"_s);
        other = request;
        other.target += u"?lang=en"_s;
        addRow(name + ": query", other, 400, u"unexpected_query"_s);
        addHeaderRow(name, "Host", "elsewhere.example", "another host", 421, u"wrong_host"_s);
        if (name != "download-file")
            addHeaderRow(name, "X-Quillmar-Ticket", "abc", "stray ticket", 400, u"unexpected_ticket"_s);
    }
}

void addCredentialRows()
{
    for (const char *const route : {"logout", "products", "download-quota", "download-ticket"}) {
        addHeaderRow(route, "Authorization", {}, "no token", 401, u"missing_token"_s);
        addHeaderRow(route, "Authorization", "TOKEN", "token without scheme", 401, u"malformed_token"_s);
        addHeaderRow(route, "Authorization", "bearer TOKEN", "scheme in lower case", 401,
                     u"malformed_token"_s);
        addHeaderRow(route, "Authorization", "Bearer nobody", "unknown token", 401, u"invalid_token"_s);
    }
    for (const char *const route : {"login", "download-file", "plugin-version", "preview", "plugin page"})
        addHeaderRow(route, "Authorization", "Bearer TOKEN", "stray token", 400,
                     u"unexpected_authorization"_s);
    addHeaderRow("download-file", "X-Quillmar-Ticket", {}, "no ticket", 400, u"missing_ticket"_s);
    addHeaderRow("download-file", "X-Quillmar-Ticket", "abc", "unknown ticket", 410, u"ticket_unknown"_s);
}

void addBodyRows()
{
    for (const char *const route :
         {"logout", "products", "download-quota", "download-file", "plugin-version"})
        addHeaderRow(route, "Content-Type", kJsonType, "content type", 400, u"unexpected_content_type"_s);
    for (const char *const route : {"login", "download-ticket"}) {
        addHeaderRow(route, "Content-Type", "text/plain", "other content type", 415, u"wrong_content_type"_s);
        addHeaderRow(route, "Content-Type", "application/json; charset=utf-8", "content type with parameter",
                     415, u"wrong_content_type"_s);
        addBodyRow(route, "", "empty body", u"malformed_json"_s);
        addBodyRow(route, "username=demo", "form body", u"malformed_json"_s);
        addBodyRow(route, "[]", "array", u"malformed_json"_s);
        addBodyRow(route, "{}", "no key", u"missing_key"_s);
    }
    addBodyRow("login", R"({"username": "demo"})", "no password", u"missing_key"_s);
    addBodyRow("login", R"({"username": "demo", "password": 7})", "password is a number", u"missing_key"_s);
    addBodyRow("login", R"({"username": "", "password": "demo"})", "empty name", u"missing_key"_s);
    addBodyRow("login", R"({"username": "demo", "password": "demo", "remember": true})", "one key too many",
               u"unexpected_key"_s);
    addBodyRow("download-ticket", R"({"product_key": 7})", "key is a number", u"missing_key"_s);
    addBodyRow("download-ticket", R"({"product_key": "alpha", "version": "1"})", "one key too many",
               u"unexpected_key"_s);
}

void addContentRows()
{
    Request request = good("login");
    request.body = R"({"username": "demo", "password": "Demo"})";
    addRow("login: wrong password", request, 401, u"invalid_credentials"_s);
    request.body = R"({"username": "nobody", "password": "demo"})";
    addRow("login: unknown name", request, 401, u"invalid_credentials"_s);
    request.body = R"({"username": "country", "password": "country"})";
    addRow("login: country", request, 403, u"country_not_allowed"_s);
    request = good("download-ticket");
    request.body = R"({"product_key": "gamma"})";
    addRow("download-ticket: unknown product", request, 404, u"product_not_found"_s);
    for (const QString &target : {u"/"_s, u"/wp-json/quillmar/v1/"_s, u"/wp-json/quillmar/v1/Products"_s,
                                  u"/wp-json/quillmar/v1/products/"_s, u"/wp-json/quillmar/v2/products"_s,
                                  u"/products"_s, u"/previews/two.png"_s, u"/previews/"_s,
                                  u"/previews/..%2Fproducts.json"_s, u"/previews/..%2Fserver.key"_s})
        addRow("no such address: " + target.toLatin1(), {"GET", target, {}, {}}, 404, u"not_found"_s);
}

} // namespace

/// Everything that a careless client might do, route by route.
class RefusalsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QCOMPARE(service_.error(), QString()); }
    void goodRequestsPass_data();
    void goodRequestsPass();
    void refusals_data();
    void refusals();
    void methodIsNamed();

private:
    Answered send(Request request);

    ServiceFixture service_;
};

void RefusalsTest::goodRequestsPass_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const auto &[name, request] : goodRequests())
        QTest::newRow(name.constData()) << name;
}

void RefusalsTest::goodRequestsPass()
{
    QFETCH(const QByteArray, name);
    QCOMPARE(send(good(name)).status, 200);
}

void RefusalsTest::refusals_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QString>("target");
    QTest::addColumn<HeaderList>("headers");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("code");
    addWireRows();
    addCredentialRows();
    addBodyRows();
    addContentRows();
}

void RefusalsTest::refusals()
{
    QFETCH(const QByteArray, method);
    QFETCH(const QString, target);
    QFETCH(const HeaderList, headers);
    QFETCH(const QByteArray, body);
    QFETCH(const int, status);
    QFETCH(const QString, code);
    const Answered answered = send({method, target, headers, body});
    QCOMPARE(answered.status, status);
    QCOMPARE(answered.code(), code);
    QVERIFY(!answered.json.value("message"_L1).toString().isEmpty());
    QCOMPARE(answered.headers.value("Content-Type"), "application/json");
    const QByteArray lastLine = service_.log().trimmed().split('\n').last();
    const QJsonObject logged = QJsonDocument::fromJson(lastLine).object();
    QCOMPARE(logged.value("reason"_L1).toString(), code);
    QCOMPARE(logged.value("status"_L1).toInt(), status);
}

void RefusalsTest::methodIsNamed()
{
    QCOMPARE(service_.send("PUT", ServiceFixture::route(u"login"_s)).headers.value("Allow"), "POST");
    QCOMPARE(service_.send("PUT", ServiceFixture::route(u"products"_s)).headers.value("Allow"), "GET");
}

Answered RefusalsTest::send(Request request)
{
    const QByteArray token = service_.token();
    for (auto &[name, value] : request.headers) {
        if (value.contains("TOKEN"))
            value.replace("TOKEN", token);
        else if (value == "TICKET")
            value = service_.ticket(service_.token(u"demo"_s));
    }
    return service_.send(request.method, request.target, request.headers, request.body);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::RefusalsTest)
#include "refusals_test.moc"
