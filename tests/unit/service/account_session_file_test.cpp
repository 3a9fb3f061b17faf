#include "account_fixture.h"
#include "service/session_file.h"
#include "switched_protection.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace quillmar;
using namespace quillmar::test;

namespace
{

/// One running program with a panel. Several may share a session file.
struct Instance {
    explicit Instance(const QString &path) : store(make(path)) {}

    SessionFile make(const QString &path)
    {
        auto owned = std::make_unique<SwitchedProtection>();
        protection = owned.get();
        return {path, std::move(owned)};
    }

    /// What a start with a kept session does.
    void start() { account.requestProducts(store.load(), true); }

    void signIn()
    {
        view.usernameText = QStringLiteral("sara");
        view.passwordText = QStringLiteral("s3cret");
        account.signIn();
    }

    SwitchedProtection *protection = nullptr;
    Session session;
    SessionFile store;
    RecordingView view;
    QNetworkAccessManager network;
    Account account{session, store, view, &network, [](LogLevel, const QString &) {}};
};

/// A service that knows which tokens it has given out.
struct World {
    World()
    {
        service.handleRoute("login", [this](const WireRequest &, WireConnection &connection) {
            const QString token = QStringLiteral("t0ken-%1").arg(++logins);
            valid.append("Bearer " + token.toUtf8());
            connection.send(TlsService::json(200, {{QStringLiteral("token"), token}}));
        });
        service.handleRoute("products", [this](const WireRequest &request, WireConnection &connection) {
            const bool isValid = valid.contains(request.header("authorization"));
            connection.send(isValid ? goodProducts() : TlsService::response(401, "{}"));
        });
        service.handleRoute("logout", [this](const WireRequest &request, WireConnection &connection) {
            const bool isValid = valid.removeOne(request.header("authorization"));
            connection.send(TlsService::response(isValid ? 204 : 401, {}, {}));
        });
    }

    bool hasFile() const { return QFileInfo::exists(path); }

    TlsService service;
    int logins = 0;
    QList<QByteArray> valid;
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("session.dpapi"));
};

const QString SignedIn = QStringLiteral("green Status.LoginSuccess");
const QString Expired = QStringLiteral("red Session.Expired");

} // namespace

/// The account with its real session file.
class AccountSessionFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void signedInAgainInTheNextRun();
    void signOutRemovesTheFile();
    void refusedWhileRestoring_data();
    void refusedWhileRestoring();
    void offlineKeepsTheFile();
    void saveFailsAndNothingIsLeft();
    void saveFailsAndTheOldFileIsRemoved();
    void saveAndRemoveFail();
    void removeFailsAtSignOut();
    void removeFailsAtExpiry();
    void protectionThatIsClosedAtTheRetry();
    void damagedFileAtTheRetry();
    void hostileTokenComesBackAsItWas_data();
    void hostileTokenComesBackAsItWas();
    void oneSignsOutWhileTheOtherIsSignedIn();
    void oneSignsOutWhileTheOtherRestores();
    void bothSignIn();
};

void AccountSessionFileTest::signedInAgainInTheNextRun()
{
    World world;
    {
        Instance first(world.path);
        first.signIn();
        QTRY_COMPARE(first.view.products.size(), 2);
    }
    Instance second(world.path);
    second.start();
    QTRY_COMPARE(second.view.products.size(), 2);
    QCOMPARE(second.view.status, SignedIn);
    QCOMPARE(second.session.token(), QStringLiteral("t0ken-1"));
    QCOMPARE(world.logins, 1);
}

void AccountSessionFileTest::signOutRemovesTheFile()
{
    World world;
    Instance instance(world.path);
    instance.signIn();
    QTRY_COMPARE(instance.view.products.size(), 2);
    QVERIFY(world.hasFile());
    instance.account.signOut();
    QTRY_COMPARE(instance.view.status, QStringLiteral("green Logout.Success"));
    QVERIFY(!world.hasFile());
}

void AccountSessionFileTest::refusedWhileRestoring_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("401") << 401;
    QTest::newRow("403") << 403;
}

void AccountSessionFileTest::refusedWhileRestoring()
{
    QFETCH(const int, status);
    World world;
    Instance instance(world.path);
    QVERIFY(instance.store.save(QStringLiteral("kept")));
    world.service.handleRoute("products", TlsService::always(TlsService::response(status, "{}")));
    instance.start();
    QTRY_COMPARE(instance.view.status, Expired);
    QCOMPARE(instance.view.screen, RecordingView::Screen::SignIn);
    QVERIFY(!world.hasFile());
}

void AccountSessionFileTest::offlineKeepsTheFile()
{
    World world;
    Instance instance(world.path);
    QVERIFY(instance.store.save(QStringLiteral("t0ken-1")));
    world.valid.append("Bearer t0ken-1");
    world.service.setUnreachable(true);
    instance.start();
    QTRY_COMPARE(instance.view.status, QStringLiteral("red Session.Offline"));
    QVERIFY(world.hasFile());
    world.service.setUnreachable(false);
    instance.account.retryRestore();
    QTRY_COMPARE(instance.view.status, SignedIn);
    QVERIFY(world.hasFile());
}

void AccountSessionFileTest::saveFailsAndNothingIsLeft()
{
    World world;
    Instance instance(world.path);
    instance.protection->works = false;
    instance.signIn();
    QTRY_COMPARE(instance.view.products.size(), 2);
    QCOMPARE(instance.view.status, QStringLiteral("red Session.SaveFailed"));
    QVERIFY(instance.session.isSignedIn());
    QVERIFY(!world.hasFile());
}

void AccountSessionFileTest::saveFailsAndTheOldFileIsRemoved()
{
    World world;
    Instance instance(world.path);
    QVERIFY(instance.store.save(QStringLiteral("older")));
    instance.protection->works = false;
    instance.signIn();
    QTRY_COMPARE(instance.view.products.size(), 2);
    QCOMPARE(instance.view.status, QStringLiteral("red Session.SaveFailed"));
    QVERIFY(!world.hasFile());
}

void AccountSessionFileTest::saveAndRemoveFail()
{
    World world;
    QVERIFY(QDir().mkpath(world.path));
    Instance instance(world.path);
    instance.signIn();
    QTRY_COMPARE(instance.view.products.size(), 2);
    QCOMPARE(instance.view.status, QStringLiteral("red Session.RemoveFailed"));
    QVERIFY(instance.session.isSignedIn());
}

void AccountSessionFileTest::removeFailsAtSignOut()
{
    World world;
    Instance instance(world.path);
    instance.signIn();
    QTRY_COMPARE(instance.view.products.size(), 2);
    QVERIFY(QFile::remove(world.path) && QDir().mkpath(world.path));
    instance.account.signOut();
    QTRY_COMPARE(instance.view.status, QStringLiteral("red Session.RemoveFailed"));
    QVERIFY(!instance.session.isSignedIn());
}

void AccountSessionFileTest::removeFailsAtExpiry()
{
    World world;
    Instance instance(world.path);
    instance.signIn();
    QTRY_COMPARE(instance.view.products.size(), 2);
    QVERIFY(QFile::remove(world.path) && QDir().mkpath(world.path));
    world.valid.clear();
    instance.account.refreshProducts();
    QTRY_COMPARE(instance.view.status, QStringLiteral("red Session.RemoveFailed"));
    QVERIFY(!instance.session.isSignedIn());
}

/// The keyring was locked in the meantime: back to the sign-in view, but the file stays for another time.
void AccountSessionFileTest::protectionThatIsClosedAtTheRetry()
{
    World world;
    Instance instance(world.path);
    QVERIFY(instance.store.save(QStringLiteral("kept")));
    instance.protection->works = false;
    instance.account.retryRestore();
    QCOMPARE(instance.view.status, Expired);
    QCOMPARE(instance.view.screen, RecordingView::Screen::SignIn);
    QVERIFY(world.hasFile());
    QCOMPARE(world.service.requests().size(), 0);
}

void AccountSessionFileTest::damagedFileAtTheRetry()
{
    World world;
    QFile file(world.path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write("damaged") > 0);
    file.close();
    Instance instance(world.path);
    instance.account.retryRestore();
    QCOMPARE(instance.view.status, Expired);
    QVERIFY(!world.hasFile());
}

void AccountSessionFileTest::hostileTokenComesBackAsItWas_data()
{
    QTest::addColumn<QString>("token");
    QTest::addColumn<QString>("status");
    QTest::newRow("CR LF") << QStringLiteral("a\r\nX-Evil: 1\r\n") << Expired;
    QTest::newRow("LF") << QStringLiteral("a\nX-Evil: 1\n") << Expired;
    QTest::newRow("NUL") << QStringLiteral("a") + QChar(0) + QStringLiteral("b") << Expired;
    QTest::newRow("Persian and emoji") << QStringLiteral("رمز😀") << SignedIn;
}

/// What does not fit into a header is not sent at all, so the service refuses the request.
void AccountSessionFileTest::hostileTokenComesBackAsItWas()
{
    QFETCH(const QString, token);
    QFETCH(const QString, status);
    World world;
    world.valid.append(QByteArray("Bearer " + token.toUtf8()));
    Instance instance(world.path);
    QVERIFY(instance.store.save(token));
    QCOMPARE(instance.store.load(), token);
    instance.start();
    QTRY_COMPARE(instance.view.status, status);
    QCOMPARE(world.service.requests().size(), 1);
    QVERIFY(!world.service.requests().first().hasHeader("x-evil"));
    QCOMPARE(world.hasFile(), status == SignedIn);
}

void AccountSessionFileTest::oneSignsOutWhileTheOtherIsSignedIn()
{
    World world;
    Instance first(world.path);
    first.signIn();
    QTRY_COMPARE(first.view.products.size(), 2);
    Instance second(world.path);
    second.start();
    QTRY_COMPARE(second.view.status, SignedIn);
    first.account.signOut();
    QTRY_COMPARE(first.view.status, QStringLiteral("green Logout.Success"));
    QVERIFY(!world.hasFile());
    const qsizetype requests = world.service.count("products");
    second.account.refreshProducts();
    QTRY_COMPARE(second.view.status, Expired);
    QVERIFY(!second.session.isSignedIn());
    QVERIFY(!world.hasFile());
    QCOMPARE(world.service.count("products"), requests + 1);
    QTRY_VERIFY(second.network.findChildren<QNetworkReply *>().isEmpty());
    QCOMPARE(world.service.count("products"), requests + 1);
}

void AccountSessionFileTest::oneSignsOutWhileTheOtherRestores()
{
    World world;
    Instance first(world.path);
    first.signIn();
    QTRY_COMPARE(first.view.products.size(), 2);
    Instance second(world.path);
    QList<WireConnection> held;
    world.service.handleRoute(
        "products", [&held](const WireRequest &, WireConnection &connection) { held.append(connection); });
    second.start();
    QTRY_COMPARE(held.size(), 1);
    first.account.signOut();
    QTRY_COMPARE(first.view.status, QStringLiteral("green Logout.Success"));
    held.first().send(TlsService::response(401, "{}"));
    QTRY_COMPARE(second.view.status, Expired);
    QVERIFY(!world.hasFile());
    QVERIFY(!second.session.isSignedIn());
    QCOMPARE(held.size(), 1);
}

/// The file holds whole tokens only; the last one wins, and the other session lives on for its run.
void AccountSessionFileTest::bothSignIn()
{
    World world;
    Instance first(world.path);
    Instance second(world.path);
    first.signIn();
    second.signIn();
    QTRY_COMPARE(first.view.products.size(), 2);
    QTRY_COMPARE(second.view.products.size(), 2);
    Instance third(world.path);
    const QString kept = third.store.load();
    QVERIFY(kept == first.session.token() || kept == second.session.token());
    third.start();
    QTRY_COMPARE(third.view.status, SignedIn);
}

QTEST_GUILESS_MAIN(AccountSessionFileTest)
#include "account_session_file_test.moc"
