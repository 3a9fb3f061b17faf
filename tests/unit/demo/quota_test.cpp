#include "demo/service/accounts.h"
#include "service/quota_info.h"
#include "tests/unit/demo/service_fixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class QuotaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFileSpendsOne();
    void ticketAloneSpendsNothing();
    void lastOneThenNone();
    void outstandingTicketMeetsAnEmptyQuota();
    void exhaustedAccount();
    void accountsSpendApart();
    void newDayBeginsAfresh();
    void newDayLeavesTheExhaustedExhausted();
    void moduleUnderstandsEveryAccount_data();
    void moduleUnderstandsEveryAccount();

private:
    static int remaining(ServiceFixture &service, const QByteArray &token)
    {
        return service.get(u"download-quota"_s, token).json.value("remaining"_L1).toInt(-1);
    }
};

void QuotaTest::everyFileSpendsOne()
{
    ServiceFixture service;
    const QByteArray token = service.token();
    QCOMPARE(remaining(service, token), 25);
    QCOMPARE(service.fetch(service.ticket(token)).status, 200);
    QCOMPARE(remaining(service, token), 24);
    QCOMPARE(service.fetch(service.ticket(token)).status, 200);
    QCOMPARE(remaining(service, token), 23);
}

void QuotaTest::ticketAloneSpendsNothing()
{
    ServiceFixture service;
    const QByteArray token = service.token();
    QVERIFY(!service.ticket(token).isEmpty());
    QCOMPARE(remaining(service, token), 25);
}

void QuotaTest::lastOneThenNone()
{
    ServiceFixture service;
    const QByteArray token = service.token();
    for (int i = 0; i < 25; ++i)
        QCOMPARE(service.fetch(service.ticket(token, u"beta"_s)).status, 200);
    QCOMPARE(remaining(service, token), 0);
    const Answered refused = service.askForTicket(token);
    QCOMPARE(refused.status, 429);
    QCOMPARE(refused.code(), u"download_quota_reached"_s);
}

void QuotaTest::outstandingTicketMeetsAnEmptyQuota()
{
    ServiceFixture service;
    const QByteArray token = service.token();
    const QByteArray spare = service.ticket(token);
    for (int i = 0; i < 25; ++i)
        service.fetch(service.ticket(token, u"beta"_s));
    const Answered refused = service.fetch(spare);
    QCOMPARE(refused.status, 429);
    QCOMPARE(refused.code(), u"download_quota_reached"_s);
    QCOMPARE(remaining(service, token), 0);
}

void QuotaTest::exhaustedAccount()
{
    ServiceFixture service;
    const QByteArray token = service.token(u"quota"_s);
    QCOMPARE(remaining(service, token), 0);
    QCOMPARE(service.askForTicket(token).status, 429);
    QCOMPARE(service.askForTicket(token).code(), u"download_quota_reached"_s);
}

void QuotaTest::accountsSpendApart()
{
    ServiceFixture service;
    const QByteArray demo = service.token();
    const QByteArray again = service.token();
    service.fetch(service.ticket(demo));
    QCOMPARE(remaining(service, again), 24);
    QCOMPARE(remaining(service, service.token(u"expired"_s)), 25);
}

void QuotaTest::newDayBeginsAfresh()
{
    demo::Quota quota;
    quota.renew(QDate(2026, 5, 1));
    quota.spend();
    quota.renew(QDate(2026, 5, 1));
    QCOMPARE(quota.used, 1);
    quota.renew(QDate(2026, 5, 2));
    QCOMPARE(quota.used, 0);
    QCOMPARE(quota.toJson().value("reset_at"_L1).toString(), u"2026-05-03T00:00:00.000Z"_s);
}

void QuotaTest::newDayLeavesTheExhaustedExhausted()
{
    demo::Accounts accounts;
    demo::Account *account = accounts.find(u"quota"_s, u"quota"_s);
    QVERIFY(account);
    account->quota.renew(account->quota.day.addDays(1));
    QVERIFY(account->quota.isExhausted());
}

void QuotaTest::moduleUnderstandsEveryAccount_data()
{
    QTest::addColumn<qint64>("remaining");
    QTest::addColumn<bool>("unlimited");
    QTest::newRow("demo") << qint64(25) << false;
    QTest::newRow("quota") << qint64(0) << false;
    QTest::newRow("empty") << qint64(0) << true;
    QTest::newRow("expired") << qint64(25) << false;
}

void QuotaTest::moduleUnderstandsEveryAccount()
{
    QFETCH(const qint64, remaining);
    QFETCH(const bool, unlimited);
    ServiceFixture service;
    const QByteArray token = service.token(QString::fromLatin1(QTest::currentDataTag()));
    const QuotaInfo info = parseQuota(service.get(u"download-quota"_s, token).json);
    QCOMPARE(info.state, QuotaInfo::State::Loaded);
    QVERIFY(info.enabled);
    QCOMPARE(info.unlimited, unlimited);
    QCOMPARE(info.remaining, remaining);
    QCOMPARE(info.resetAt.isValid(), !unlimited);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::QuotaTest)
#include "quota_test.moc"
