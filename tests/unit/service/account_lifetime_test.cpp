#include "account_fixture.h"

#include <QTest>

using namespace quillmar::test;

namespace
{

enum class Part { Account, Network, View };

/// Destroys one of the three objects that may go in any order.
void destroy(AccountFixture &f, Part part)
{
    switch (part) {
    case Part::Account:
        f.account.reset();
        break;
    case Part::Network:
        f.network.reset();
        break;
    case Part::View:
        f.view.reset();
        break;
    }
}

void callEverything(quillmar::Account &account)
{
    account.signIn();
    account.requestProducts(QStringLiteral("t0ken"), true);
    account.requestProducts(QStringLiteral("t0ken"), false);
    account.refreshProducts();
    account.retryRestore();
    account.expireSession();
    account.signOut();
}

} // namespace

class AccountLifetimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stalledRequestWhileEverythingDies_data();
    void stalledRequestWhileEverythingDies();
    void panelDiesWithItsManager();
    void answerAfterTheAccount();
    void answerAfterTheView();
    void operationsWithoutAViewDoNothing();
    void operationsWithoutAManagerDoNothing();
};

void AccountLifetimeTest::stalledRequestWhileEverythingDies_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<QList<Part>>("order");
    const QList<std::pair<const char *, QList<Part>>> orders{
        {"account, network, view", {Part::Account, Part::Network, Part::View}},
        {"account, view, network", {Part::Account, Part::View, Part::Network}},
        {"network, account, view", {Part::Network, Part::Account, Part::View}},
        {"network, view, account", {Part::Network, Part::View, Part::Account}},
        {"view, account, network", {Part::View, Part::Account, Part::Network}},
        {"view, network, account", {Part::View, Part::Network, Part::Account}}};
    for (const char *route : {"login", "products", "logout"}) {
        for (const auto &[name, order] : orders) {
            QTest::addRow("%s: %s", route, name) << QByteArray(route) << order;
        }
    }
}

void AccountLifetimeTest::stalledRequestWhileEverythingDies()
{
    QFETCH(const QByteArray, route);
    QFETCH(const QList<Part>, order);
    AccountFixture f;
    f.signInWell();
    f.hold(route);
    f.view->passwordText = QStringLiteral("s3cret");
    if (route == "login") {
        f.account->signIn();
    } else if (route == "products") {
        f.account->refreshProducts();
    } else {
        f.account->signOut();
    }
    QTRY_COMPARE(f.held.size(), 1);
    const quint64 generation = f.session.generation();
    const qsizetype lines = f.log.size();
    for (const Part part : order) {
        destroy(f, part);
    }
    QTRY_VERIFY(!f.held.first().isOpen());
    QCOMPARE(f.session.generation(), generation);
    QCOMPARE(f.log.size(), lines);
    QCOMPARE(f.store.token, QStringLiteral("t0ken"));
}

void AccountLifetimeTest::panelDiesWithItsManager()
{
    AccountFixture f;
    f.signInWell();
    f.network->setParent(f.view.get());
    f.hold("products");
    f.account->refreshProducts();
    QTRY_COMPARE(f.held.size(), 1);
    const QPointer<QNetworkAccessManager> network = f.network.release();
    f.view.reset();
    QVERIFY(!network);
    callEverything(*f.account);
    QCOMPARE(f.session.token(), QStringLiteral("t0ken"));
}

void AccountLifetimeTest::answerAfterTheAccount()
{
    AccountFixture f;
    f.hold("login");
    f.account->signIn();
    QTRY_COMPARE(f.held.size(), 1);
    f.account.reset();
    f.view->calls.clear();
    f.held.first().send(goodLogin());
    QVERIFY(f.settles());
    QCOMPARE(f.view->calls, QStringList());
    QVERIFY(!f.session.isSignedIn());
}

void AccountLifetimeTest::answerAfterTheView()
{
    AccountFixture f;
    f.hold("login");
    f.account->signIn();
    QTRY_COMPARE(f.held.size(), 1);
    f.view.reset();
    f.held.first().send(goodLogin());
    QVERIFY(f.settles());
    QVERIFY(!f.session.isSignedIn());
    QVERIFY(f.log.isEmpty());
}

void AccountLifetimeTest::operationsWithoutAViewDoNothing()
{
    AccountFixture f;
    f.signInWell();
    const qsizetype requests = f.service.requests().size();
    f.view.reset();
    callEverything(*f.account);
    QVERIFY(f.isQuiet());
    QCOMPARE(f.session.token(), QStringLiteral("t0ken"));
    QCOMPARE(f.store.token, QStringLiteral("t0ken"));
    QCOMPARE(f.service.requests().size(), requests);
}

void AccountLifetimeTest::operationsWithoutAManagerDoNothing()
{
    AccountFixture f;
    f.signInWell();
    f.network.reset();
    callEverything(*f.account);
    QCOMPARE(f.view->calls, QStringList());
    QCOMPARE(f.session.token(), QStringLiteral("t0ken"));
}

QTEST_GUILESS_MAIN(AccountLifetimeTest)
#include "account_lifetime_test.moc"
