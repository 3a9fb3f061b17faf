#include "tests/unit/demo/service_fixture.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class RequestLogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLineIsAnObject();
    void secretsStayOut();

private:
    static QList<QJsonObject> lines(const ServiceFixture &service)
    {
        QList<QJsonObject> objects;
        for (const QByteArray &line : service.log().trimmed().split('\n'))
            objects.append(QJsonDocument::fromJson(line).object());
        return objects;
    }
};

void RequestLogTest::everyLineIsAnObject()
{
    ServiceFixture service;
    const QByteArray token = service.token();
    service.fetch(service.ticket(token));
    service.get(u"products"_s, "nobody");
    const QList<QJsonObject> log = lines(service);
    QCOMPARE(log.size(), 4);
    const QStringList paths{u"login"_s, u"download-ticket"_s, u"download-file"_s, u"products"_s};
    for (qsizetype i = 0; i < log.size(); ++i) {
        QCOMPARE(log.at(i).value("path"_L1).toString(), ServiceFixture::route(paths.at(i)));
        QCOMPARE(log.at(i).value("method"_L1).toString(), i == 3 ? u"GET"_s : u"POST"_s);
        QCOMPARE(log.at(i).value("status"_L1).toInt(), i == 3 ? 401 : 200);
        QCOMPARE(log.at(i).value("account"_L1).toString(), i == 3 ? QString() : u"demo"_s);
        QCOMPARE(log.at(i).value("reason"_L1).toString(), i == 3 ? u"invalid_token"_s : QString());
        QVERIFY(QDateTime::fromString(log.at(i).value("time"_L1).toString(), Qt::ISODateWithMs).isValid());
    }
}

void RequestLogTest::secretsStayOut()
{
    ServiceFixture service;
    const QByteArray token = service.token();
    const QByteArray ticket = service.ticket(token);
    service.fetch(ticket);
    service.send("POST", ServiceFixture::route(u"login"_s), {{"Content-Type", "application/json"}},
                 R"({"username": "demo", "password": "hunter2"})");
    service.send("GET", u"/previews/one.png?token="_s + QString::fromLatin1(token));
    const QByteArray log = service.log();
    QVERIFY(log.contains("unexpected_query"));
    for (const QByteArray &secret : {token, ticket, QByteArray("hunter2")})
        QVERIFY2(!log.contains(secret), secret.constData());
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::RequestLogTest)
#include "request_log_test.moc"
