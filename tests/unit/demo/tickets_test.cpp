#include "tests/unit/demo/service_fixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class TicketsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void singleUse();
    void eachTicketIsAnother();
    void expiry();
    void survivesLogout();
    void namesItsProduct();
    void lifetimeIsTold();
};

void TicketsTest::singleUse()
{
    ServiceFixture service;
    const QByteArray ticket = service.ticket(service.token());
    QCOMPARE(service.fetch(ticket).status, 200);
    const Answered second = service.fetch(ticket);
    QCOMPARE(second.status, 410);
    QCOMPARE(second.code(), u"ticket_unknown"_s);
}

void TicketsTest::eachTicketIsAnother()
{
    ServiceFixture service;
    const QByteArray token = service.token();
    const QByteArray first = service.ticket(token);
    const QByteArray second = service.ticket(token);
    QVERIFY(!first.isEmpty());
    QVERIFY(first != second);
    QCOMPARE(service.fetch(second).status, 200);
    QCOMPARE(service.fetch(first).status, 200);
}

void TicketsTest::expiry()
{
    ServiceFixture service([](demo::DemoServiceSettings &settings) { settings.ticketLifetime = {}; });
    const QByteArray token = service.token();
    const QByteArray ticket = service.ticket(token);
    const Answered late = service.fetch(ticket);
    QCOMPARE(late.status, 410);
    QCOMPARE(late.code(), u"ticket_expired"_s);
    QCOMPARE(service.fetch(ticket).code(), u"ticket_unknown"_s);
    QCOMPARE(service.get(u"download-quota"_s, token).json.value("used"_L1).toInt(), 0);
}

void TicketsTest::survivesLogout()
{
    ServiceFixture service;
    const QByteArray token = service.token();
    const QByteArray ticket = service.ticket(token);
    service.send("POST", ServiceFixture::route(u"logout"_s), {{"Authorization", "Bearer " + token}});
    QCOMPARE(service.fetch(ticket).status, 200);
}

void TicketsTest::namesItsProduct()
{
    ServiceFixture service;
    const QByteArray token = service.token();
    const QByteArray alpha = service.ticket(token, u"alpha"_s);
    const QByteArray beta = service.ticket(token, u"beta"_s);
    QCOMPARE(service.fetch(beta).body, service.package(u"beta"_s));
    QCOMPARE(service.fetch(alpha).body, service.package(u"alpha"_s));
}

void TicketsTest::lifetimeIsTold()
{
    ServiceFixture service;
    QCOMPARE(service.askForTicket(service.token()).json.value("expires_in"_L1).toInt(), 60);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::TicketsTest)
#include "tickets_test.moc"
