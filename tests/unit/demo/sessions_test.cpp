#include "tests/unit/demo/service_fixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class SessionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tokensDiffer();
    void logoutEndsOneSession();
    void expiringAccount_data();
    void expiringAccount();
    void emptyAccountGetsNoTicket();
    void startErrors_data();
    void startErrors();
};

void SessionsTest::tokensDiffer()
{
    ServiceFixture service;
    const QByteArray first = service.token();
    const QByteArray second = service.token();
    QVERIFY(first != second);
    QCOMPARE(service.get(u"products"_s, first).status, 200);
    QCOMPARE(service.get(u"products"_s, second).status, 200);
}

void SessionsTest::logoutEndsOneSession()
{
    ServiceFixture service;
    const QByteArray first = service.token();
    const QByteArray second = service.token();
    const HeaderList bearer{{"Authorization", "Bearer " + first}};
    QCOMPARE(service.send("POST", ServiceFixture::route(u"logout"_s), bearer).status, 200);
    QCOMPARE(service.get(u"products"_s, first).code(), u"invalid_token"_s);
    QCOMPARE(service.send("POST", ServiceFixture::route(u"logout"_s), bearer).status, 401);
    QCOMPARE(service.get(u"products"_s, second).status, 200);
}

void SessionsTest::expiringAccount_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::newRow("quota, then products") << u"download-quota"_s << u"products"_s;
    QTest::newRow("products, then quota") << u"products"_s << u"download-quota"_s;
}

void SessionsTest::expiringAccount()
{
    QFETCH(const QString, first);
    QFETCH(const QString, second);
    ServiceFixture service;
    const QByteArray token = service.token(u"expired"_s);
    QCOMPARE(service.get(first, token).status, 200);
    QCOMPARE(service.get(second, token).status, 200);
    QCOMPARE(service.get(first, token).status, 401);
    QCOMPARE(service.get(second, token).status, 401);
}

void SessionsTest::emptyAccountGetsNoTicket()
{
    ServiceFixture service;
    const Answered refused = service.askForTicket(service.token(u"empty"_s));
    QCOMPARE(refused.status, 404);
    QCOMPARE(refused.code(), u"product_not_found"_s);
}

void SessionsTest::startErrors_data()
{
    QTest::addColumn<QString>("field");
    for (const char *field : {"certificate", "key", "catalogue", "log", "giant"})
        QTest::newRow(field) << QString::fromLatin1(field);
}

void SessionsTest::startErrors()
{
    QFETCH(const QString, field);
    const ServiceFixture service([&](demo::DemoServiceSettings &settings) {
        const QString nowhere = settings.catalogueFolder + u"/no/where"_s;
        if (field == "certificate"_L1)
            settings.certificateFile = nowhere;
        else if (field == "key"_L1)
            settings.keyFile = nowhere;
        else if (field == "catalogue"_L1)
            settings.catalogueFolder = nowhere;
        else if (field == "log"_L1)
            settings.logFile = nowhere;
        else
            settings.giantPackageBytes = 1;
    });
    QVERIFY(!service.error().isEmpty());
    QCOMPARE(service.port(), 0);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::SessionsTest)
#include "sessions_test.moc"
