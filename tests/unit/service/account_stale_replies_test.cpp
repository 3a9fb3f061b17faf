#include "account_fixture.h"

#include <QTest>

using namespace quillmar::test;

namespace
{

/// What a late answer to the product list may be; none of them may change anything.
void addLateAnswers()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("products") << goodProducts();
    QTest::newRow("401") << TlsService::response(401, "{}");
    QTest::newRow("500") << TlsService::response(500, {});
}

} // namespace

/// Replies that arrive after the session that they belong to.
class AccountStaleRepliesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void productsAfterSignOut_data() { addLateAnswers(); }
    void productsAfterSignOut();
    void productsAfterExpiry_data() { addLateAnswers(); }
    void productsAfterExpiry();
    void productsAfterNewLogin_data() { addLateAnswers(); }
    void productsAfterNewLogin();
    void productsAfterUnload_data() { addLateAnswers(); }
    void productsAfterUnload();
    void restoreAfterLogin_data() { addLateAnswers(); }
    void restoreAfterLogin();
    void signOutAfterNewLogin();
    void productsDuringSignOutAreCurrent();
    void refusalDuringSignOutEndsTheSessionOnce();
};

void AccountStaleRepliesTest::productsAfterSignOut()
{
    QFETCH(const QByteArray, answer);
    AccountFixture f;
    f.signInWell();
    f.hold("products");
    f.account->refreshProducts();
    QTRY_COMPARE(f.held.size(), 1);
    f.account->signOut();
    QTRY_COMPARE(f.view->status, QStringLiteral("green Logout.Success"));
    f.view->calls.clear();
    f.held.first().send(answer);
    QVERIFY(f.settles());
    QCOMPARE(f.view->calls, QStringList());
    QCOMPARE(f.session.generation(), 2U);
}

void AccountStaleRepliesTest::productsAfterExpiry()
{
    QFETCH(const QByteArray, answer);
    AccountFixture f;
    f.signInWell();
    f.hold("products");
    f.account->refreshProducts();
    QTRY_COMPARE(f.held.size(), 1);
    f.account->expireSession();
    f.view->calls.clear();
    f.held.first().send(answer);
    QVERIFY(f.settles());
    QCOMPARE(f.view->calls, QStringList());
    QCOMPARE(f.session.generation(), 2U);
    QCOMPARE(f.store.removals, 1);
}

void AccountStaleRepliesTest::productsAfterNewLogin()
{
    QFETCH(const QByteArray, answer);
    AccountFixture f;
    f.signInWell();
    f.hold("products");
    f.account->refreshProducts();
    QTRY_COMPARE(f.held.size(), 1);
    f.account->expireSession();
    f.view->passwordText = QStringLiteral("s3cret");
    f.account->signIn();
    QTRY_COMPARE(f.held.size(), 2);
    f.view->calls.clear();
    f.held[0].send(answer);
    QTRY_COMPARE(f.network->findChildren<QNetworkReply *>().size(), 1);
    QCOMPARE(f.view->calls, QStringList());
    QVERIFY(!f.view->refreshEnabled);
    f.held[1].send(goodProducts());
    QTRY_COMPARE(f.view->products.size(), 2);
    QVERIFY(f.view->refreshEnabled);
}

void AccountStaleRepliesTest::productsAfterUnload()
{
    QFETCH(const QByteArray, answer);
    AccountFixture f;
    f.hold("products");
    f.account->requestProducts(QStringLiteral("kept"), true);
    QTRY_COMPARE(f.held.size(), 1);
    f.session.clear();
    f.view->calls.clear();
    f.held.first().send(answer);
    QVERIFY(f.settles());
    QCOMPARE(f.view->calls, QStringList());
    QVERIFY(!f.session.isSignedIn());
}

void AccountStaleRepliesTest::restoreAfterLogin()
{
    QFETCH(const QByteArray, answer);
    AccountFixture f;
    f.answerWell();
    f.hold("products");
    f.account->requestProducts(QStringLiteral("kept"), true);
    QTRY_COMPARE(f.held.size(), 1);
    f.view->passwordText = QStringLiteral("s3cret");
    f.account->signIn();
    QTRY_COMPARE(f.held.size(), 2);
    f.view->calls.clear();
    f.held[0].send(answer);
    QTRY_COMPARE(f.network->findChildren<QNetworkReply *>().size(), 1);
    QCOMPARE(f.view->calls, QStringList());
    QCOMPARE(f.session.token(), QStringLiteral("t0ken"));
}

void AccountStaleRepliesTest::signOutAfterNewLogin()
{
    AccountFixture f;
    f.signInWell();
    f.hold("logout");
    f.account->signOut();
    QTRY_COMPARE(f.held.size(), 1);
    f.account->expireSession();
    f.view->passwordText = QStringLiteral("s3cret");
    f.account->signIn();
    QTRY_COMPARE(f.view->products.size(), 2);
    f.view->calls.clear();
    f.held.first().send(TlsService::response(204, {}, {}));
    QVERIFY(f.settles());
    QCOMPARE(f.view->calls, QStringList());
    QVERIFY(f.session.isSignedIn());
    QCOMPARE(f.store.token, QStringLiteral("t0ken"));
}

void AccountStaleRepliesTest::productsDuringSignOutAreCurrent()
{
    AccountFixture f;
    f.signInWell();
    f.hold("products");
    f.account->refreshProducts();
    QTRY_COMPARE(f.held.size(), 1);
    f.hold("logout");
    f.account->signOut();
    QTRY_COMPARE(f.held.size(), 2);
    f.view->products = {};
    f.held[0].send(goodProducts());
    QTRY_COMPARE(f.view->products.size(), 2);
    f.held[1].send(TlsService::response(500, {}));
    QTRY_COMPARE(f.view->status, QStringLiteral("red Logout.Failed"));
    QVERIFY(f.session.isSignedIn());
}

void AccountStaleRepliesTest::refusalDuringSignOutEndsTheSessionOnce()
{
    AccountFixture f;
    f.signInWell();
    f.hold("products");
    f.account->refreshProducts();
    QTRY_COMPARE(f.held.size(), 1);
    f.hold("logout");
    f.account->signOut();
    QTRY_COMPARE(f.held.size(), 2);
    f.held[0].send(TlsService::response(401, "{}"));
    QTRY_COMPARE(f.view->status, QStringLiteral("red Session.Expired"));
    f.held[1].send(TlsService::response(401, "{}"));
    QVERIFY(f.settles());
    QCOMPARE(f.session.generation(), 2U);
    QCOMPARE(f.store.removals, 1);
    QCOMPARE(f.view->status, QStringLiteral("red Session.Expired"));
}

QTEST_GUILESS_MAIN(AccountStaleRepliesTest)
#include "account_stale_replies_test.moc"
