#include "account_fixture.h"

#include <QTest>

using namespace quillmar::test;

class AccountExpiryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void steps();
    void fileCannotBeRemoved();
    void duringASignOut();
    void duringARefresh();
    void twice();
    void signInAgainAfterwards();
};

void AccountExpiryTest::steps()
{
    AccountFixture f;
    f.signInWell();
    f.view->passwordText = QStringLiteral("left over");
    f.account->expireSession();
    const QStringList expected{QStringLiteral("clear quota"),  QStringLiteral("products 0"),
                               QStringLiteral("sign-in view"), QStringLiteral("red Session.Expired"),
                               QStringLiteral("logout on"),    QStringLiteral("list on")};
    QCOMPARE(f.view->calls, expected);
    QVERIFY(!f.session.isSignedIn());
    QCOMPARE(f.session.generation(), 2U);
    QVERIFY(f.store.token.isEmpty());
    QVERIFY(f.view->passwordText.isEmpty());
    QCOMPARE(f.view->usernameText, QStringLiteral("sara"));
    QVERIFY(f.isQuiet());
}

void AccountExpiryTest::fileCannotBeRemoved()
{
    AccountFixture f;
    f.signInWell();
    f.store.removes = false;
    f.account->expireSession();
    QCOMPARE(f.view->status, QStringLiteral("red Session.RemoveFailed"));
    QVERIFY(!f.session.isSignedIn());
}

void AccountExpiryTest::duringASignOut()
{
    AccountFixture f;
    f.signInWell();
    f.hold("logout");
    f.account->signOut();
    QTRY_COMPARE(f.held.size(), 1);
    f.account->expireSession();
    QVERIFY(f.view->logoutEnabled);
    QVERIFY(f.view->productListEnabled);
    QVERIFY(f.view->signInEnabled);
    f.view->calls.clear();
    f.held.first().send(TlsService::response(204, {}, {}));
    QVERIFY(f.settles());
    QCOMPARE(f.view->calls, QStringList());
    QCOMPARE(f.view->status, QStringLiteral("red Session.Expired"));
    f.signInWell();
    QVERIFY(f.view->refreshEnabled);
}

void AccountExpiryTest::duringARefresh()
{
    AccountFixture f;
    f.signInWell();
    f.hold("products");
    f.account->refreshProducts();
    QTRY_COMPARE(f.held.size(), 1);
    f.account->expireSession();
    f.view->calls.clear();
    f.held.first().send(goodProducts());
    QVERIFY(f.settles());
    QCOMPARE(f.view->calls, QStringList());
    f.signInWell();
    QVERIFY(f.view->refreshEnabled);
}

void AccountExpiryTest::twice()
{
    AccountFixture f;
    f.signInWell();
    f.account->expireSession();
    f.account->expireSession();
    QCOMPARE(f.view->status, QStringLiteral("red Session.Expired"));
    QCOMPARE(f.session.generation(), 3U);
}

void AccountExpiryTest::signInAgainAfterwards()
{
    AccountFixture f;
    f.signInWell();
    f.account->expireSession();
    f.signInWell();
    QCOMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
    QCOMPARE(f.store.token, QStringLiteral("t0ken"));
}

QTEST_GUILESS_MAIN(AccountExpiryTest)
#include "account_expiry_test.moc"
