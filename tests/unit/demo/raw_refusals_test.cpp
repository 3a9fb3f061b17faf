#include "tests/unit/demo/service_fixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

/// Requests that a network library would not send.
class RawRefusalsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QCOMPARE(service_.error(), QString()); }
    void refusals_data();
    void refusals();
    void hugeBodyIsRefused();
    void serviceSurvives();

private:
    ServiceFixture service_;
};

void RawRefusalsTest::refusals_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("headers");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("code");
    const QByteArray bearer = "Authorization: Bearer TOKEN\r\n";
    const QByteArray json = "Content-Type: application/json\r\n";
    QTest::newRow("logout with a body") << QByteArray("POST logout") << bearer << 400 << u"unexpected_body"_s;
    QTest::newRow("download-file with a body")
        << QByteArray("POST download-file") << QByteArray("X-Quillmar-Ticket: TICKET\r\n") << 400
        << u"unexpected_body"_s;
    QTest::newRow("products with a body")
        << QByteArray("GET products") << bearer << 400 << u"unexpected_body"_s;
    QTest::newRow("plugin-version with a body")
        << QByteArray("GET plugin-version") << QByteArray("") << 400 << u"unexpected_body"_s;
    QTest::newRow("login without content type")
        << QByteArray("POST login") << QByteArray("") << 415 << u"wrong_content_type"_s;
    QTest::newRow("token twice") << QByteArray("GET products") << QByteArray(bearer + bearer) << 400
                                 << u"duplicate_header"_s;
    QTest::newRow("ticket twice") << QByteArray("POST download-file")
                                  << QByteArray("X-Quillmar-Ticket: TICKET\r\nX-Quillmar-Ticket: TICKET\r\n")
                                  << 400 << u"duplicate_header"_s;
    QTest::newRow("content type twice")
        << QByteArray("POST login") << QByteArray(json + json) << 400 << u"duplicate_header"_s;
    QTest::newRow("empty ticket") << QByteArray("POST download-file") << QByteArray("X-Quillmar-Ticket: \r\n")
                                  << 400 << u"missing_ticket"_s;
}

void RawRefusalsTest::refusals()
{
    QFETCH(const QByteArray, line);
    QFETCH(QByteArray, headers);
    QFETCH(const int, status);
    QFETCH(const QString, code);
    const QByteArray token = service_.token();
    headers.replace("TOKEN", token).replace("TICKET", service_.ticket(token));
    const QByteArray bytes = line.split(' ').at(0) + " /wp-json/quillmar/v1/" + line.split(' ').at(1) +
                             " HTTP/1.1\r\nHost: localhost\r\nContent-Length: 2\r\n" + headers + "\r\n{}";
    const Answered answered = service_.sendRaw(bytes);
    QCOMPARE(answered.status, status);
    QCOMPARE(answered.code(), code);
}

void RawRefusalsTest::hugeBodyIsRefused()
{
    const QByteArray body = "{\"username\": \"" + QByteArray(100'000, 'x') + "\"}";
    const Answered answered =
        service_.sendRaw("POST /wp-json/quillmar/v1/login HTTP/1.1\r\nHost: localhost\r\n"
                         "Content-Type: application/json\r\nContent-Length: " +
                         QByteArray::number(body.size()) + "\r\n\r\n" + body);
    QVERIFY2(answered.status != 200 && answered.code().isEmpty(), "the body must not be read at all");
}

void RawRefusalsTest::serviceSurvives()
{
    QCOMPARE(service_.signIn(u"demo"_s).status, 200);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::RawRefusalsTest)
#include "raw_refusals_test.moc"
