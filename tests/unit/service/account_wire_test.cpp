#include "account_fixture.h"
#include "service/routes.h"

#include <QTest>

using namespace quillmar::test;

namespace
{

struct Failure {
    const char *route;
    const char *status;
};

constexpr Failure failures[] = {{"login", "red Status.LoginFailed"},
                                {"products", "red Session.RestoreFailed"},
                                {"logout", "red Logout.Failed"}};

QByteArray serviceTunnel()
{
    return quillmar::routes::serviceHost().toLatin1() + ":443";
}

/// Sends one request of the route.
void start(AccountFixture &f, const QByteArray &route)
{
    if (route == "login") {
        f.account->signIn();
    } else if (route == "products") {
        f.account->requestProducts(QStringLiteral("t0ken"), true);
    } else {
        f.session.replace(QStringLiteral("t0ken"));
        f.account->signOut();
    }
}

} // namespace

/// What goes over the wire, and what must not.
class AccountWireTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void redirectIsNotFollowed_data();
    void redirectIsNotFollowed();
    void challengeIsNotAnswered_data();
    void challengeIsNotAnswered();
    void badTls_data();
    void badTls();
    void plainTextInsteadOfTls_data();
    void plainTextInsteadOfTls();
    void cookiesAreNotSentBack();
    void tokenIsSentAsUtf8();
    void hostileTokenDoesNotSplitTheHeader_data();
    void hostileTokenDoesNotSplitTheHeader();
};

void AccountWireTest::redirectIsNotFollowed_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("location");
    const QByteArray same = "https://" + quillmar::routes::serviceHost().toLatin1() + "/elsewhere";
    const QList<std::pair<QByteArray, QByteArray>> targets{{"same host", same},
                                                           {"relative", "/elsewhere"},
                                                           {"other host", "https://evil.example/elsewhere"},
                                                           {"in clear", "http://evil.example/"},
                                                           {"file", "file:///etc/passwd"},
                                                           {"data", "data:application/json,{}"}};
    for (const Failure &failure : failures) {
        for (const int status : {301, 302, 303, 307, 308}) {
            for (const auto &[name, location] : targets) {
                QTest::addRow("%s %d %s", failure.route, status, name.constData())
                    << QByteArray(failure.route) << QString::fromLatin1(failure.status) << status << location;
            }
        }
    }
}

void AccountWireTest::redirectIsNotFollowed()
{
    QFETCH(const QByteArray, route);
    QFETCH(const QString, outcome);
    QFETCH(const int, status);
    QFETCH(const QByteArray, location);
    AccountFixture f;
    f.answer(route, TlsService::response(status, "{}", "application/json", {{"Location", location}}));
    f.service.handle("/elsewhere", TlsService::always(goodLogin()));
    start(f, route);
    QVERIFY(f.settles());
    QCOMPARE(f.view->status, outcome);
    QCOMPARE(f.service.requests().size(), 1);
    QCOMPARE(f.service.connects(), QList<QByteArray>{serviceTunnel()});
}

void AccountWireTest::challengeIsNotAnswered_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QByteArray>("challenge");
    for (const Failure &failure : failures) {
        const QByteArray route(failure.route);
        const QString outcome =
            route == "products" ? QStringLiteral("red Session.Expired") : QString::fromLatin1(failure.status);
        for (const char *challenge :
             {"Basic realm=\"x\"", "Digest realm=\"x\", nonce=\"1\"", "Negotiate", "NTLM"}) {
            QTest::addRow("%s %s", failure.route, challenge) << route << outcome << QByteArray(challenge);
        }
    }
}

void AccountWireTest::challengeIsNotAnswered()
{
    QFETCH(const QByteArray, route);
    QFETCH(const QString, outcome);
    QFETCH(const QByteArray, challenge);
    AccountFixture f;
    f.answer(route, TlsService::response(401, "{}", "application/json", {{"WWW-Authenticate", challenge}}));
    start(f, route);
    QVERIFY(f.settles());
    QCOMPARE(f.view->status, outcome);
    QCOMPARE(f.service.requests().size(), 1);
}

void AccountWireTest::badTls_data()
{
    QTest::addColumn<TlsService::Certificate>("certificate");
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<QString>("outcome");
    const QList<std::pair<const char *, TlsService::Certificate>> certificates{
        {"self-signed", TlsService::Certificate::SelfSigned},
        {"wrong name", TlsService::Certificate::WrongName},
        {"expired", TlsService::Certificate::Expired}};
    for (const auto &[name, certificate] : certificates) {
        QTest::addRow("login, %s", name)
            << certificate << QByteArray("login") << QStringLiteral("red Status.LoginFailed");
        QTest::addRow("products, %s", name)
            << certificate << QByteArray("products") << QStringLiteral("red Session.Offline");
        QTest::addRow("logout, %s", name)
            << certificate << QByteArray("logout") << QStringLiteral("red Logout.Failed");
    }
}

void AccountWireTest::badTls()
{
    QFETCH(const TlsService::Certificate, certificate);
    QFETCH(const QByteArray, route);
    QFETCH(const QString, outcome);
    AccountFixture f;
    f.answerWell();
    f.service.useCertificate(certificate);
    start(f, route);
    QVERIFY(f.settles());
    QCOMPARE(f.view->status, outcome);
    QCOMPARE(f.service.requests().size(), 0);

    f.service.useCertificate(TlsService::Certificate::Good);
    f.signInWell();
}

void AccountWireTest::plainTextInsteadOfTls_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<QString>("outcome");
    QTest::newRow("login") << QByteArray("login") << QStringLiteral("red Status.LoginFailed");
    QTest::newRow("products") << QByteArray("products") << QStringLiteral("red Session.Offline");
    QTest::newRow("logout") << QByteArray("logout") << QStringLiteral("red Logout.Failed");
}

void AccountWireTest::plainTextInsteadOfTls()
{
    QFETCH(const QByteArray, route);
    QFETCH(const QString, outcome);
    AccountFixture f;
    f.answerWell();
    f.service.setPlainText(goodLogin());
    start(f, route);
    QVERIFY(f.settles());
    QCOMPARE(f.view->status, outcome);
    QCOMPARE(f.service.requests().size(), 0);
    for (const QByteArray &tunnel : f.service.connects()) {
        QCOMPARE(tunnel, serviceTunnel());
    }

    f.service.setPlainText({});
    f.signInWell();
}

void AccountWireTest::cookiesAreNotSentBack()
{
    AccountFixture f;
    f.answerWell();
    f.answer("login", TlsService::response(200, R"({"token": "t0ken"})", "application/json",
                                           {{"Set-Cookie", "id=1; Path=/"}, {"Set-Cookie", "b=2"}}));
    f.account->signIn();
    QTRY_COMPARE(f.view->products.size(), 2);
    f.account->signOut();
    QTRY_COMPARE(f.service.count("logout"), 1);
    for (const WireRequest &request : f.service.requests()) {
        QVERIFY(!request.hasHeader("cookie"));
    }
}

void AccountWireTest::tokenIsSentAsUtf8()
{
    AccountFixture f;
    f.answerWell();
    f.account->requestProducts(QStringLiteral("رمز-é-😀"), true);
    QTRY_COMPARE(f.service.count("products"), 1);
    QCOMPARE(f.service.requests().first().header("authorization"), QByteArray("Bearer رمز-é-😀"));
}

void AccountWireTest::hostileTokenDoesNotSplitTheHeader_data()
{
    QTest::addColumn<QString>("token");
    QTest::newRow("CR LF") << QStringLiteral("a\r\nX-Evil: 1");
    QTest::newRow("LF") << QStringLiteral("a\nX-Evil: 1");
    QTest::newRow("end of header") << QStringLiteral("a\r\n\r\nGET /evil HTTP/1.1\r\n\r\n");
    QTest::newRow("NUL") << QStringLiteral("a") + QChar(0) + QStringLiteral("b");
}

void AccountWireTest::hostileTokenDoesNotSplitTheHeader()
{
    QFETCH(const QString, token);
    AccountFixture f;
    f.answerWell();
    f.answer("login", TlsService::json(200, {{QStringLiteral("token"), token}}));
    f.account->signIn();
    QTRY_COMPARE(f.service.count("products"), 1);
    QVERIFY(f.settles());
    QCOMPARE(f.service.requests().size(), 2);
    const WireRequest request = f.service.requests().last();
    QVERIFY(!request.hasHeader("x-evil"));
    const auto isAuthorization = [](const auto &header) { return header.first == "authorization"; };
    QVERIFY(std::ranges::count_if(request.headers, isAuthorization) <= 1);
}

QTEST_GUILESS_MAIN(AccountWireTest)
#include "account_wire_test.moc"
