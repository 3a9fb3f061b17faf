#include "account_fixture.h"
#include "bad_replies.h"

#include <QTest>

using namespace quillmar::test;

class AccountRestoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stepsOfASuccess();
    void tokenIsNotTheSessionBeforeTheServiceAcceptsIt();
    void offline();
    void brokenOffIsOffline();
    void serverError();
    void badReply_data();
    void badReply();
    void refused_data();
    void refused();
    void refusedAndFileStuck();
    void emptyCatalogue();
    void retryWithAKeptToken();
    void retryWithoutAKeptToken();
    void retryAgainAndAgain();
};

void AccountRestoreTest::stepsOfASuccess()
{
    AccountFixture f;
    f.answerWell();
    f.account->requestProducts(QStringLiteral("kept"), true);
    QVERIFY(f.view->retryVisible);
    QVERIFY(!f.view->retryEnabled);
    QTRY_COMPARE(f.view->products.size(), 2);
    const QStringList expected{QStringLiteral("refresh off"),    QStringLiteral("clear quota"),
                               QStringLiteral("restoring view"), QStringLiteral("white Session.Restoring"),
                               QStringLiteral("refresh on"),     QStringLiteral("sign-in on"),
                               QStringLiteral("retry on"),       QStringLiteral("home view"),
                               QStringLiteral("refresh quota"),  QStringLiteral("green Status.LoginSuccess"),
                               QStringLiteral("products 2"),     QStringLiteral("hide message")};
    QCOMPARE(f.view->calls, expected);
    QCOMPARE(f.session.token(), QStringLiteral("kept"));
    QCOMPARE(f.session.generation(), 1U);
    QCOMPARE(f.service.requests().first().header("authorization"), QByteArray("Bearer kept"));
    QVERIFY(f.log.isEmpty());
}

void AccountRestoreTest::tokenIsNotTheSessionBeforeTheServiceAcceptsIt()
{
    AccountFixture f;
    f.hold("products");
    f.account->requestProducts(QStringLiteral("kept"), true);
    QTRY_COMPARE(f.held.size(), 1);
    QVERIFY(!f.session.isSignedIn());
    QCOMPARE(f.session.generation(), 0U);
    f.held.first().send(goodProducts());
    QTRY_VERIFY(f.session.isSignedIn());
}

void AccountRestoreTest::offline()
{
    AccountFixture f;
    f.store.token = QStringLiteral("kept");
    f.service.setUnreachable(true);
    f.account->requestProducts(QStringLiteral("kept"), true);
    QTRY_COMPARE(f.view->status, QStringLiteral("red Session.Offline"));
    QVERIFY(f.view->retryVisible);
    QVERIFY(f.view->retryEnabled);
    QVERIFY(f.view->signInEnabled);
    QCOMPARE(f.view->screen, RecordingView::Screen::Restoring);
    QCOMPARE(f.store.token, QStringLiteral("kept"));
    QVERIFY(!f.session.isSignedIn());
}

void AccountRestoreTest::brokenOffIsOffline()
{
    AccountFixture f;
    f.service.handleRoute("products",
                          [](const WireRequest &, WireConnection &connection) { connection.reset(); });
    f.account->requestProducts(QStringLiteral("kept"), true);
    QTRY_COMPARE(f.view->status, QStringLiteral("red Session.Offline"));
}

void AccountRestoreTest::serverError()
{
    AccountFixture f;
    f.answer("products", TlsService::response(500, "oops", "text/plain"));
    f.account->requestProducts(QStringLiteral("kept"), true);
    QTRY_COMPARE(f.view->status, QStringLiteral("red Session.RestoreFailed"));
    QVERIFY(f.view->retryEnabled);
    QVERIFY(f.view->refreshEnabled);
    QVERIFY(!f.session.isSignedIn());
}

void AccountRestoreTest::badReply_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("thenClose");
    for (const BadReply &reply : badReplies(R"({"products": []})")) {
        QTest::newRow(reply.name) << reply.bytes << reply.thenClose;
    }
}

void AccountRestoreTest::badReply()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, thenClose);
    AccountFixture f;
    f.store.token = QStringLiteral("kept");
    f.answer("products", bytes, thenClose);
    f.account->requestProducts(f.store.token, true);
    QVERIFY(f.settles());
    QVERIFY(f.view->retryEnabled);
    const bool hasStatus = bytes.startsWith("HTTP/1.1 ") && bytes.contains("\r\n\r\n");
    QCOMPARE(f.view->status,
             hasStatus ? QStringLiteral("red Session.RestoreFailed") : QStringLiteral("red Session.Offline"));
    QVERIFY(f.view->retryVisible);
    QCOMPARE(f.view->screen, RecordingView::Screen::Restoring);
    QCOMPARE(f.store.token, QStringLiteral("kept"));
    QCOMPARE(f.session.generation(), 0U);

    f.answerWell();
    f.account->retryRestore();
    QVERIFY(f.settles());
    QCOMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
}

void AccountRestoreTest::refused_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("401") << 401;
    QTest::newRow("403") << 403;
}

void AccountRestoreTest::refused()
{
    QFETCH(const int, status);
    AccountFixture f;
    f.store.token = QStringLiteral("kept");
    f.answer("products", TlsService::response(status, "{}"));
    f.account->requestProducts(f.store.token, true);
    QTRY_COMPARE(f.view->status, QStringLiteral("red Session.Expired"));
    QCOMPARE(f.view->screen, RecordingView::Screen::SignIn);
    QVERIFY(!f.view->retryVisible);
    QVERIFY(f.view->signInEnabled);
    QVERIFY(f.store.token.isEmpty());
}

void AccountRestoreTest::refusedAndFileStuck()
{
    AccountFixture f;
    f.store.token = QStringLiteral("kept");
    f.store.removes = false;
    f.answer("products", TlsService::response(401, "{}"));
    f.account->requestProducts(f.store.token, true);
    QTRY_COMPARE(f.view->status, QStringLiteral("red Session.RemoveFailed"));
    QCOMPARE(f.view->screen, RecordingView::Screen::SignIn);
}

void AccountRestoreTest::emptyCatalogue()
{
    AccountFixture f;
    f.answer("products", TlsService::response(200, R"({"products": []})"));
    f.account->requestProducts(QStringLiteral("kept"), true);
    QTRY_COMPARE(f.view->productsMessage, QStringLiteral("Products.Empty"));
    QCOMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
}

void AccountRestoreTest::retryWithAKeptToken()
{
    AccountFixture f;
    f.answerWell();
    f.store.token = QStringLiteral("kept");
    f.account->retryRestore();
    QCOMPARE(f.view->status, QStringLiteral("white Session.Restoring"));
    QVERIFY(!f.view->retryEnabled);
    QTRY_COMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
    QCOMPARE(f.session.token(), QStringLiteral("kept"));
}

void AccountRestoreTest::retryWithoutAKeptToken()
{
    AccountFixture f;
    f.view->screen = RecordingView::Screen::Restoring;
    f.view->retryVisible = true;
    f.view->signInEnabled = false;
    f.account->retryRestore();
    QVERIFY(f.isQuiet());
    QCOMPARE(f.view->calls,
             (QStringList{QStringLiteral("sign-in view"), QStringLiteral("red Session.Expired")}));
    QVERIFY(!f.view->retryVisible);
    QVERIFY(f.view->signInEnabled);
    QVERIFY(f.view->passwordText.isEmpty());
}

void AccountRestoreTest::retryAgainAndAgain()
{
    AccountFixture f;
    f.store.token = QStringLiteral("kept");
    f.answer("products", TlsService::response(503, {}));
    for (int i = 1; i <= 3; ++i) {
        f.account->retryRestore();
        QTRY_VERIFY(f.view->retryEnabled);
        QCOMPARE(f.view->status, QStringLiteral("red Session.RestoreFailed"));
        QCOMPARE(f.service.count("products"), i);
    }
    f.answerWell();
    f.account->retryRestore();
    QTRY_COMPARE(f.view->screen, RecordingView::Screen::Home);
    QVERIFY(!f.view->retryVisible);
}

QTEST_GUILESS_MAIN(AccountRestoreTest)
#include "account_restore_test.moc"
