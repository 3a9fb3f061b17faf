#include "service/session.h"

#include <QTest>

class SessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsSignedOut();
    void everyChangeIsANewGeneration();
};

void SessionTest::startsSignedOut()
{
    const quillmar::Session session;
    QVERIFY(!session.isSignedIn());
    QVERIFY(session.token().isEmpty());
    QCOMPARE(session.generation(), 0U);
}

void SessionTest::everyChangeIsANewGeneration()
{
    quillmar::Session session;
    session.replace(QStringLiteral(" t "));
    QCOMPARE(session.token(), QStringLiteral(" t "));
    QVERIFY(session.isSignedIn());
    QCOMPARE(session.generation(), 1U);
    session.replace(QStringLiteral(" t "));
    QCOMPARE(session.generation(), 2U);
    session.clear();
    QVERIFY(!session.isSignedIn());
    QCOMPARE(session.generation(), 3U);
    session.clear();
    QCOMPARE(session.generation(), 4U);
}

QTEST_GUILESS_MAIN(SessionTest)
#include "session_test.moc"
