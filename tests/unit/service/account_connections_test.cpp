#include "account_fixture.h"
#include "service/routes.h"

#include <QTest>

using namespace quillmar::test;

/// What a sign-in does to the connections to the service, and they to it.
class AccountConnectionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unreachable();
    void connectionOfTheLoginIsClosedAfterwards();
    void requestUnderWayIsNotStranded();
};

void AccountConnectionsTest::unreachable()
{
    AccountFixture f;
    f.answerWell();
    f.service.setUnreachable(true);
    f.account->signIn();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Status.LoginFailed"));
    QVERIFY(f.view->signInEnabled);
    QVERIFY(!f.session.isSignedIn());
    QCOMPARE(f.log.size(), 1);
    QVERIFY(f.log.first().contains(QStringLiteral("HTTP 0")));
    f.service.setUnreachable(false);
    f.network->clearConnectionCache();
    f.account->signIn();
    QTRY_COMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
}

void AccountConnectionsTest::connectionOfTheLoginIsClosedAfterwards()
{
    AccountFixture f;
    f.answerWell();
    std::optional<WireConnection> login;
    f.service.handleRoute("login", [&login](const WireRequest &, WireConnection &connection) {
        login = connection;
        connection.send(goodLogin());
    });
    f.account->signIn();
    QTRY_COMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
    QVERIFY(login);
    QTRY_VERIFY(!login->isOpen());
}

void AccountConnectionsTest::requestUnderWayIsNotStranded()
{
    AccountFixture f;
    f.answerWell();
    f.hold("download-file");
    const std::unique_ptr<QNetworkReply> file(
        f.network->post(quillmar::routes::downloadFile(QStringLiteral("ticket")), QByteArray()));
    QTRY_COMPARE(f.held.size(), 1);
    f.account->signIn();
    QTRY_COMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
    f.held.first().send(TlsService::json(200, {}));
    QTRY_VERIFY(file->isFinished());
    QCOMPARE(file->error(), QNetworkReply::NoError);
}

QTEST_GUILESS_MAIN(AccountConnectionsTest)
#include "account_connections_test.moc"
