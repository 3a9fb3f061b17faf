#include "account_fixture.h"
#include "bad_replies.h"
#include "service/routes.h"
#include "tests/support/tls_service/hasty_network.h"

#include <QSignalSpy>
#include <QTest>

using namespace quillmar::test;

namespace
{

QByteArray answerWith(const QJsonValue &success)
{
    return TlsService::json(200, {{QStringLiteral("success"), success}});
}

const QStringList controlsOff{QStringLiteral("logout off"), QStringLiteral("refresh off"),
                              QStringLiteral("list off")};
const QStringList controlsOn{QStringLiteral("logout on"), QStringLiteral("refresh on"),
                             QStringLiteral("list on")};

} // namespace

class AccountSignOutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isNothingWhenSignedOut();
    void requestHasNoBodyAndNoContentType();
    void stepsOfASuccess();
    void controlsAreOffWhileUnderWay();
    void fileCannotBeRemoved();
    void success_data();
    void success();
    void failure_data();
    void failure();
    void badReply_data();
    void badReply();
    void unreachable();
    void silenceEndsAtTheTimeOut();
    void otherRequestsOfTheSessionAreAborted();
    void abortedHandlersSeeTheSessionGone();
    void handlerThatEndsAnotherRequest();
    void requestsOfOtherManagersGoOn();
    void signInAgainAfterwards();
};

void AccountSignOutTest::isNothingWhenSignedOut()
{
    AccountFixture f;
    f.account->signOut();
    QVERIFY(f.isQuiet());
    QVERIFY(f.view->calls.isEmpty());
}

void AccountSignOutTest::requestHasNoBodyAndNoContentType()
{
    AccountFixture f;
    f.signInWell();
    f.account->signOut();
    QTRY_COMPARE(f.service.count("logout"), 1);
    const WireRequest request = f.service.requests().last();
    QCOMPARE(request.method, QByteArray("POST"));
    QCOMPARE(request.header("authorization"), QByteArray("Bearer t0ken"));
    QCOMPARE(request.header("content-length"), QByteArray("0"));
    QVERIFY(request.body.isEmpty());
    QVERIFY(!request.hasHeader("content-type"));
}

void AccountSignOutTest::stepsOfASuccess()
{
    AccountFixture f;
    f.signInWell();
    f.account->signOut();
    QTRY_COMPARE(f.view->screen, RecordingView::Screen::SignIn);
    const QStringList expected =
        controlsOff + QStringList{QStringLiteral("white Logout.Progress")} + controlsOn +
        QStringList{QStringLiteral("clear quota"),   QStringLiteral("products 0"),
                    QStringLiteral("clear message"), QStringLiteral("clear username"),
                    QStringLiteral("sign-in view"),  QStringLiteral("green Logout.Success"),
                    QStringLiteral("focus username")};
    QCOMPARE(f.view->calls, expected);
    QVERIFY(!f.session.isSignedIn());
    QCOMPARE(f.session.generation(), 2U);
    QVERIFY(f.store.token.isEmpty());
    QVERIFY(f.view->usernameText.isEmpty());
    QVERIFY(f.view->passwordText.isEmpty());
    QVERIFY(f.view->productsMessage.isEmpty());
}

void AccountSignOutTest::controlsAreOffWhileUnderWay()
{
    AccountFixture f;
    f.signInWell();
    f.hold("logout");
    f.account->signOut();
    QTRY_COMPARE(f.held.size(), 1);
    QVERIFY(!f.view->logoutEnabled);
    QVERIFY(!f.view->refreshEnabled);
    QVERIFY(!f.view->productListEnabled);
    f.held.first().send(answerWith(false));
    QTRY_COMPARE(f.view->status, QStringLiteral("red Logout.Failed"));
    QVERIFY(f.view->logoutEnabled);
    QVERIFY(f.view->refreshEnabled);
    QVERIFY(f.view->productListEnabled);
}

void AccountSignOutTest::fileCannotBeRemoved()
{
    AccountFixture f;
    f.signInWell();
    f.store.removes = false;
    f.account->signOut();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Session.RemoveFailed"));
    QCOMPARE(f.view->screen, RecordingView::Screen::SignIn);
    QVERIFY(!f.session.isSignedIn());
    QCOMPARE(f.view->calls.last(), QStringLiteral("focus username"));
}

void AccountSignOutTest::success_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("204 without body") << TlsService::response(204, {}, {});
    QTest::newRow("success true") << answerWith(true);
    QTest::newRow("299") << TlsService::response(299, {});
    QTest::newRow("success null") << answerWith({});
    QTest::newRow("success zero") << answerWith(0);
    QTest::newRow("success text") << answerWith(QStringLiteral("false"));
    QTest::newRow("success array") << answerWith(QJsonArray{false});
    QTest::newRow("success object") << answerWith(QJsonObject());
}

void AccountSignOutTest::success()
{
    QFETCH(const QByteArray, answer);
    AccountFixture f;
    f.signInWell();
    f.answer("logout", answer);
    f.account->signOut();
    QTRY_COMPARE(f.view->status, QStringLiteral("green Logout.Success"));
    QVERIFY(!f.session.isSignedIn());
}

void AccountSignOutTest::failure_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("200 with success false") << answerWith(false);
    QTest::newRow("success false after a BOM")
        << TlsService::response(200, "\xEF\xBB\xBF{\"success\": false}");
    QTest::newRow("300") << TlsService::response(300, {});
    QTest::newRow("401") << TlsService::response(401, "{}");
    QTest::newRow("401 that asks for a password")
        << TlsService::response(401, {}, {}, {{"WWW-Authenticate", "Basic realm=\"x\""}});
    QTest::newRow("403") << TlsService::response(403, R"({"success": true})");
    QTest::newRow("500 with success true") << TlsService::response(500, R"({"success": true})");
}

void AccountSignOutTest::failure()
{
    QFETCH(const QByteArray, answer);
    AccountFixture f;
    f.signInWell();
    f.answer("logout", answer);
    f.account->signOut();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Logout.Failed"));
    QCOMPARE(f.session.token(), QStringLiteral("t0ken"));
    QCOMPARE(f.session.generation(), 1U);
    QCOMPARE(f.store.token, QStringLiteral("t0ken"));
    QCOMPARE(f.view->screen, RecordingView::Screen::Home);
    QCOMPARE(f.view->products.size(), 2);
    QCOMPARE(f.service.count("logout"), 1);
}

void AccountSignOutTest::badReply_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("thenClose");
    QTest::addColumn<QString>("status");
    for (const BadReply &reply : badReplies(R"({"success": true})")) {
        QTest::newRow(reply.name) << reply.bytes << reply.thenClose
                                  << (reply.countsAsSignedOut ? QStringLiteral("green Logout.Success")
                                                              : QStringLiteral("red Logout.Failed"));
    }
}

void AccountSignOutTest::badReply()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, thenClose);
    QFETCH(const QString, status);
    AccountFixture f;
    f.signInWell();
    f.answer("logout", bytes, thenClose);
    f.account->signOut();
    QVERIFY(f.settles());
    QVERIFY(f.view->logoutEnabled);
    QCOMPARE(f.view->status, status);
    f.signInWell();
    f.account->signOut();
    QVERIFY(f.settles());
    QCOMPARE(f.view->status, QStringLiteral("green Logout.Success"));
}

void AccountSignOutTest::unreachable()
{
    AccountFixture f;
    f.signInWell();
    f.service.setUnreachable(true);
    f.network->clearConnectionCache();
    f.account->signOut();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Logout.Failed"));
    QVERIFY(f.session.isSignedIn());
}

void AccountSignOutTest::silenceEndsAtTheTimeOut()
{
    AccountFixture f(std::make_unique<HastyNetwork>());
    f.signInWell();
    f.hold("logout");
    f.account->signOut();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Logout.Failed"));
    QVERIFY(f.session.isSignedIn());
    QVERIFY(f.view->logoutEnabled);
}

void AccountSignOutTest::otherRequestsOfTheSessionAreAborted()
{
    AccountFixture f;
    f.signInWell();
    f.hold("download-file");
    f.hold("products");
    QNetworkReply *download =
        f.network->post(quillmar::routes::downloadFile(QStringLiteral("ticket")), QByteArray());
    const QSignalSpy finished(download, &QNetworkReply::finished);
    f.account->refreshProducts();
    QTRY_COMPARE(f.held.size(), 2);
    f.account->signOut();
    QTRY_COMPARE(f.view->status, QStringLiteral("green Logout.Success"));
    QCOMPARE(finished.size(), 1);
    QCOMPARE(download->error(), QNetworkReply::OperationCanceledError);
    download->deleteLater();
    QVERIFY(f.settles());
    QVERIFY(f.view->products.isEmpty());
    QVERIFY(!f.view->productsMessageVisible);
}

void AccountSignOutTest::abortedHandlersSeeTheSessionGone()
{
    AccountFixture f;
    f.signInWell();
    f.hold("download-ticket");
    QNetworkReply *ticket =
        f.network->post(quillmar::routes::downloadTicket(QStringLiteral("t0ken")), QByteArray("{}"));
    std::optional<quint64> generation;
    connect(ticket, &QNetworkReply::finished, this, [&] { generation = f.session.generation(); });
    QTRY_COMPARE(f.held.size(), 1);
    f.account->signOut();
    QTRY_VERIFY(generation);
    QCOMPARE(*generation, 2U);
}

void AccountSignOutTest::handlerThatEndsAnotherRequest()
{
    AccountFixture f;
    f.signInWell();
    f.hold("download-ticket");
    const auto send = [&f] {
        return f.network->post(quillmar::routes::downloadTicket(QStringLiteral("t0ken")), QByteArray("{}"));
    };
    QNetworkReply *first = send();
    QPointer<QNetworkReply> second = send();
    connect(first, &QNetworkReply::finished, this, [second] { delete second.data(); });
    QTRY_COMPARE(f.held.size(), 2);
    f.account->signOut();
    QTRY_COMPARE(f.view->status, QStringLiteral("green Logout.Success"));
    QVERIFY(!second);
}

void AccountSignOutTest::requestsOfOtherManagersGoOn()
{
    AccountFixture f;
    f.signInWell();
    f.hold("download-quota");
    QNetworkAccessManager other;
    QNetworkReply *reply = other.get(quillmar::routes::downloadQuota(QStringLiteral("t0ken")));
    QTRY_COMPARE(f.held.size(), 1);
    f.account->signOut();
    QTRY_COMPARE(f.view->status, QStringLiteral("green Logout.Success"));
    QVERIFY(reply->isRunning());
    f.held.first().send(TlsService::json(200, {}));
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->error(), QNetworkReply::NoError);
}

void AccountSignOutTest::signInAgainAfterwards()
{
    AccountFixture f;
    f.signInWell();
    f.account->signOut();
    QTRY_COMPARE(f.view->status, QStringLiteral("green Logout.Success"));
    f.signInWell();
    QCOMPARE(f.session.generation(), 3U);
    QCOMPARE(f.view->products.size(), 2);
}

QTEST_GUILESS_MAIN(AccountSignOutTest)
#include "account_sign_out_test.moc"
