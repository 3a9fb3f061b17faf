#include "account_fixture.h"
#include "bad_replies.h"

#include <QTest>

using namespace quillmar::test;
using quillmar::LogLevel;

namespace
{

QByteArray refusal(int status, const QJsonValue &code)
{
    return TlsService::json(status, {{QStringLiteral("code"), code}});
}

QString failureLine(int status, const QString &code)
{
    return QStringLiteral("200 Quillmar login failed. HTTP %1, API code: %2")
        .arg(QString::number(status), code);
}

} // namespace

class AccountSignInTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyFields_data();
    void emptyFields();
    void bodyIsIndentedJson();
    void blanksInTheFieldsAreSent();
    void stepsOfASuccess();
    void buttonIsOffWhileUnderWay();
    void statusWithoutToken();
    void countryNotAllowed_data();
    void countryNotAllowed();
    void otherCodes_data();
    void otherCodes();
    void hostileCodeInTheLog();
    void tokenOfAnotherType_data();
    void tokenOfAnotherType();
    void badReply_data();
    void badReply();
    void bomBeforeTheJson();
    void fieldsKeepTheirContentsAfterAFailure();
    void tokenCannotBeSaved();
    void tokenCannotBeSavedNorTheOldOneRemoved();
    void sessionIsInPlaceWhenTheQuotaIsAskedFor();
    void isHandledWhateverTheGeneration();
    void secretsNeverReachTheLog();
};

void AccountSignInTest::emptyFields_data()
{
    QTest::addColumn<QString>("username");
    QTest::addColumn<QString>("password");
    QTest::newRow("no user name") << QString() << QStringLiteral("pw");
    QTest::newRow("no password") << QStringLiteral("sara") << QString();
    QTest::newRow("neither") << QString() << QString();
}

void AccountSignInTest::emptyFields()
{
    QFETCH(const QString, username);
    QFETCH(const QString, password);
    AccountFixture f;
    f.view->usernameText = username;
    f.view->passwordText = password;
    f.account->signIn();
    QCOMPARE(f.view->calls, QStringList{QStringLiteral("red Status.FieldsRequired")});
    QVERIFY(f.isQuiet());
    QVERIFY(f.log.isEmpty());
}

void AccountSignInTest::bodyIsIndentedJson()
{
    AccountFixture f;
    f.view->usernameText = QStringLiteral("سارا");
    f.view->passwordText = QStringLiteral("a\"b\\");
    f.answerWell();
    f.account->signIn();
    QTRY_COMPARE(f.service.count("login"), 1);
    const WireRequest request = f.service.requests().first();
    QCOMPARE(request.method, QByteArray("POST"));
    QCOMPARE(request.target, QByteArray("/wp-json/quillmar/v1/login"));
    QCOMPARE(request.header("content-type"), QByteArray("application/json"));
    QCOMPARE(request.body,
             QByteArray("{\n    \"password\": \"a\\\"b\\\\\",\n    \"username\": \"سارا\"\n}\n"));
    QVERIFY(!request.hasHeader("authorization"));
    QVERIFY(!request.hasHeader("cookie"));
}

void AccountSignInTest::blanksInTheFieldsAreSent()
{
    AccountFixture f;
    f.view->usernameText = QStringLiteral(" ");
    f.view->passwordText = QStringLiteral(" pw ");
    f.answerWell();
    f.account->signIn();
    QTRY_COMPARE(f.service.count("login"), 1);
    QCOMPARE(f.service.requests().first().body,
             QByteArray("{\n    \"password\": \" pw \",\n    \"username\": \" \"\n}\n"));
}

void AccountSignInTest::stepsOfASuccess()
{
    AccountFixture f;
    f.answerWell();
    f.account->signIn();
    QTRY_COMPARE(f.view->products.size(), 2);
    const QStringList expected{
        QStringLiteral("sign-in off"),      QStringLiteral("white Status.LoggingIn"),
        QStringLiteral("sign-in on"),       QStringLiteral("home view"),
        QStringLiteral("refresh quota"),    QStringLiteral("green Status.LoginSuccess"),
        QStringLiteral("Products.Loading"), QStringLiteral("refresh off"),
        QStringLiteral("refresh on"),       QStringLiteral("products 2"),
        QStringLiteral("hide message")};
    QCOMPARE(f.view->calls, expected);
    QCOMPARE(f.session.token(), QStringLiteral("t0ken"));
    QCOMPARE(f.session.generation(), 1U);
    QCOMPARE(f.store.token, QStringLiteral("t0ken"));
    QCOMPARE(f.log, QStringList{QStringLiteral("300 Quillmar login successful")});
    QCOMPARE(f.service.requests().last().header("authorization"), QByteArray("Bearer t0ken"));
}

void AccountSignInTest::buttonIsOffWhileUnderWay()
{
    AccountFixture f;
    f.hold("login");
    f.account->signIn();
    QTRY_COMPARE(f.held.size(), 1);
    QVERIFY(!f.view->signInEnabled);
    QCOMPARE(f.view->status, QStringLiteral("white Status.LoggingIn"));
    f.held.first().send(refusal(403, {}));
    QTRY_VERIFY(f.view->signInEnabled);
}

void AccountSignInTest::statusWithoutToken()
{
    AccountFixture f;
    f.answer("login", TlsService::json(200, {}));
    f.account->signIn();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Status.LoginFailed"));
    QCOMPARE(f.log, QStringList{failureLine(200, {})});
}

void AccountSignInTest::countryNotAllowed_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {200, 201, 401, 403, 451, 500}) {
        QTest::addRow("%d", status) << status;
    }
}

void AccountSignInTest::countryNotAllowed()
{
    QFETCH(const int, status);
    AccountFixture f;
    f.answer("login", refusal(status, QStringLiteral("country_not_allowed")));
    f.account->signIn();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Status.CountryNotAllowed"));
    QCOMPARE(f.log, QStringList{failureLine(status, QStringLiteral("country_not_allowed"))});
    QVERIFY(f.view->signInEnabled);
    QCOMPARE(f.session.generation(), 0U);
}

void AccountSignInTest::otherCodes_data()
{
    QTest::addColumn<QJsonValue>("code");
    QTest::addColumn<QString>("logged");
    QTest::newRow("bad credentials") << QJsonValue(QStringLiteral("invalid_credentials"))
                                     << QStringLiteral("invalid_credentials");
    QTest::newRow("other case") << QJsonValue(QStringLiteral("Country_Not_Allowed"))
                                << QStringLiteral("Country_Not_Allowed");
    QTest::newRow("with a blank") << QJsonValue(QStringLiteral("country_not_allowed "))
                                  << QStringLiteral("country_not_allowed ");
    QTest::newRow("placeholders") << QJsonValue(QStringLiteral("%1 %2 %n %s"))
                                  << QStringLiteral("%1 %2 %n %s");
    QTest::newRow("null") << QJsonValue() << QString();
    QTest::newRow("bool") << QJsonValue(true) << QString();
    QTest::newRow("number") << QJsonValue(9) << QString();
    QTest::newRow("array") << QJsonValue(QJsonArray{QStringLiteral("country_not_allowed")}) << QString();
    QTest::newRow("object") << QJsonValue(QJsonObject()) << QString();
}

void AccountSignInTest::otherCodes()
{
    QFETCH(const QJsonValue, code);
    QFETCH(const QString, logged);
    AccountFixture f;
    f.answer("login", refusal(403, code));
    f.account->signIn();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Status.LoginFailed"));
    QCOMPARE(f.log, QStringList{failureLine(403, logged)});
}

void AccountSignInTest::hostileCodeInTheLog()
{
    AccountFixture f;
    f.answer("login", refusal(403, QString(QStringLiteral("a\r\nb\x1b[31m") + QChar(0) +
                                           QString(100'000, QLatin1Char('x')))));
    f.account->signIn();
    QTRY_COMPARE(f.log.size(), 1);
    const QString line = f.log.first();
    QVERIFY(line.startsWith(failureLine(403, QStringLiteral("a??b?[31m?xxx"))));
    QVERIFY(line.size() < 200);
}

void AccountSignInTest::tokenOfAnotherType_data()
{
    QTest::addColumn<QJsonValue>("token");
    QTest::newRow("null") << QJsonValue();
    QTest::newRow("bool") << QJsonValue(true);
    QTest::newRow("number") << QJsonValue(12);
    QTest::newRow("empty") << QJsonValue(QString());
    QTest::newRow("array") << QJsonValue(QJsonArray{QStringLiteral("t0ken")});
    QTest::newRow("object") << QJsonValue(QJsonObject{{QStringLiteral("token"), QStringLiteral("t0ken")}});
}

void AccountSignInTest::tokenOfAnotherType()
{
    QFETCH(const QJsonValue, token);
    AccountFixture f;
    f.answer("login", TlsService::json(200, {{QStringLiteral("token"), token}}));
    f.account->signIn();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Status.LoginFailed"));
    QVERIFY(!f.session.isSignedIn());
    QVERIFY(f.store.token.isEmpty());
}

void AccountSignInTest::badReply_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("thenClose");
    for (const BadReply &reply : badReplies(R"({"token": "t0ken"})")) {
        QTest::newRow(reply.name) << reply.bytes << reply.thenClose;
    }
}

void AccountSignInTest::badReply()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, thenClose);
    AccountFixture f;
    f.answer("login", bytes, thenClose);
    f.account->signIn();
    QVERIFY(f.settles());
    QCOMPARE(f.view->status, QStringLiteral("red Status.LoginFailed"));
    QVERIFY(f.view->signInEnabled);
    QCOMPARE(f.view->screen, RecordingView::Screen::SignIn);
    QCOMPARE(f.log.size(), 1);
    QCOMPARE(f.session.generation(), 0U);
    f.signInWell();
    QCOMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
}

void AccountSignInTest::bomBeforeTheJson()
{
    AccountFixture f;
    f.answerWell();
    f.answer("login", TlsService::response(200, "\xEF\xBB\xBF{\"token\": \"t0ken\"}"));
    f.account->signIn();
    QTRY_COMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
}

void AccountSignInTest::fieldsKeepTheirContentsAfterAFailure()
{
    AccountFixture f;
    f.answer("login", refusal(403, QStringLiteral("invalid_credentials")));
    f.account->signIn();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Status.LoginFailed"));
    QCOMPARE(f.view->usernameText, QStringLiteral("sara"));
    QCOMPARE(f.view->passwordText, QStringLiteral("s3cret"));
}

void AccountSignInTest::tokenCannotBeSaved()
{
    AccountFixture f;
    f.store.token = QStringLiteral("older");
    f.store.saves = false;
    f.signInWell();
    QCOMPARE(f.view->status, QStringLiteral("red Session.SaveFailed"));
    QCOMPARE(f.view->screen, RecordingView::Screen::Home);
    QCOMPARE(f.session.token(), QStringLiteral("t0ken"));
    QCOMPARE(f.store.removals, 1);
    QVERIFY(f.store.token.isEmpty());
    QCOMPARE(f.view->products.size(), 2);
}

void AccountSignInTest::tokenCannotBeSavedNorTheOldOneRemoved()
{
    AccountFixture f;
    f.store.saves = false;
    f.store.removes = false;
    f.signInWell();
    QCOMPARE(f.view->status, QStringLiteral("red Session.RemoveFailed"));
    QCOMPARE(f.session.token(), QStringLiteral("t0ken"));
    QCOMPARE(f.log, QStringList{QStringLiteral("300 Quillmar login successful")});
}

namespace
{

/// Notes which token was current when the quota was asked for.
class QuotaWatcher : public RecordingView
{
public:
    explicit QuotaWatcher(const quillmar::Session &watched) : session(watched) {}
    void refreshQuota() override { tokenSeen = session.token(); }

    const quillmar::Session &session;
    QString tokenSeen;
};

} // namespace

void AccountSignInTest::sessionIsInPlaceWhenTheQuotaIsAskedFor()
{
    AccountFixture f;
    f.answerWell();
    QuotaWatcher watcher(f.session);
    quillmar::Account account(f.session, f.store, watcher, f.network.get(), [](LogLevel, const QString &) {});
    account.signIn();
    QTRY_COMPARE(watcher.tokenSeen, QStringLiteral("t0ken"));
}

void AccountSignInTest::isHandledWhateverTheGeneration()
{
    AccountFixture f;
    f.answerWell();
    f.hold("login");
    f.account->signIn();
    QTRY_COMPARE(f.held.size(), 1);
    f.session.clear();
    f.held.first().send(goodLogin());
    QTRY_COMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
    QCOMPARE(f.session.generation(), 2U);
}

void AccountSignInTest::secretsNeverReachTheLog()
{
    AccountFixture f;
    f.signInWell();
    f.answer("login", refusal(500, QStringLiteral("boom")));
    f.view->passwordText = QStringLiteral("s3cret");
    f.account->signIn();
    QTRY_COMPARE(f.log.size(), 2);
    const QString all = f.log.join(QLatin1Char('\n'));
    QVERIFY(!all.contains(QStringLiteral("s3cret")));
    QVERIFY(!all.contains(QStringLiteral("t0ken")));
    QVERIFY(!all.contains(QStringLiteral("sara")));
}

QTEST_GUILESS_MAIN(AccountSignInTest)
#include "account_sign_in_test.moc"
