#include "service/token_protection.h"
#include "tests/support/keyring/gnome_keyring.h"
#include "tests/support/keyring/private_bus.h"
#include "tests/support/keyring/stub_keyring.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace quillmar;
using namespace quillmar::test;

namespace
{

using Outcome = Unprotected::Outcome;
using Behaviour = StubKeyring::Behaviour;

/// Well above the two seconds that are allowed, and well below the 25 that the bus library would wait.
constexpr qint64 HungAfter = 12'000;

const char *BusVariable = "DBUS_SESSION_BUS_ADDRESS";

SecretBytes token()
{
    return SecretBytes(QByteArrayView("token"));
}

/// Both directions with a keyring that does not work: fails, keeps, and comes back.
void checkThatNothingWorks(const QByteArray &sealed)
{
    const auto protection = makeTokenProtection();
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(protection->protect(token()), QByteArray());
    const qint64 protecting = clock.restart();
    QCOMPARE(protection->unprotect(sealed).outcome, Outcome::CannotNow);
    const qint64 opening = clock.elapsed();
    qInfo("protect gave up after %lld ms, unprotect after %lld ms", protecting, opening);
    QVERIFY(protecting < HungAfter);
    QVERIFY(opening < HungAfter);
}

} // namespace

/// Keyrings and buses that do not answer, refuse, or want to ask the user.
class KeyringFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void silentService_data();
    void silentService();
    void silentWhenAKeyIsToBeKept();
    void frozenKeyring();
    void frozenBus();
    void busThatNeverSpeaks();
    void keyringThatAnswersAgain();
    void wantsToPrompt();
    void withoutADefaultCollection();
    void lockedCollectionIsNotWrittenTo();
    void lockedItemElsewhere();
    void openAndEmptyKeyring();
    void foreignBytesNeedNoKeyring();
    void nothingElseRunsWhileWaiting();

private:
    QByteArray sealed_;
    PrivateBus bus_;
};

void KeyringFaultsTest::initTestCase()
{
    QVERIFY(bus_.start());
    qputenv(BusVariable, bus_.address().toUtf8());
    GnomeKeyring keyring(bus_.address());
    QVERIFY(keyring.start());
    sealed_ = makeTokenProtection()->protect(token());
    QVERIFY(!sealed_.isEmpty());
}

void KeyringFaultsTest::cleanup()
{
    qputenv(BusVariable, bus_.address().toUtf8());
}

void KeyringFaultsTest::silentService_data()
{
    QTest::addColumn<QString>("method");
    QTest::newRow("at everything") << QStringLiteral("*");
    for (const char *method : {"OpenSession", "SearchItems", "GetSecrets", "ReadAlias", "Get"}) {
        QTest::addRow("at %s", method) << QString::fromLatin1(method);
    }
}

void KeyringFaultsTest::silentService()
{
    QFETCH(const QString, method);
    const StubKeyring stub(bus_.address(), {.silentAt = method});
    QVERIFY(stub.isReady());
    checkThatNothingWorks(sealed_);
    QVERIFY(method == QStringLiteral("*") || stub.calls().contains(method));
}

void KeyringFaultsTest::silentWhenAKeyIsToBeKept()
{
    const StubKeyring stub(bus_.address(), {.silentAt = QStringLiteral("CreateItem")});
    QVERIFY(stub.isReady());
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(makeTokenProtection()->protect(token()), QByteArray());
    QVERIFY(clock.elapsed() < HungAfter);
    QVERIFY(stub.calls().contains(QStringLiteral("CreateItem")));
}

void KeyringFaultsTest::frozenKeyring()
{
    GnomeKeyring keyring(bus_.address());
    QVERIFY(keyring.start());
    keyring.freeze();
    checkThatNothingWorks(sealed_);
    keyring.thaw();
    QVERIFY(!makeTokenProtection()->protect(token()).isEmpty());
}

void KeyringFaultsTest::frozenBus()
{
    bus_.freeze();
    checkThatNothingWorks(sealed_);
    bus_.thaw();
}

/// A socket on which nobody ever accepts.
void KeyringFaultsTest::busThatNeverSpeaks()
{
    const QTemporaryDir folder;
    const QByteArray path = QFile::encodeName(folder.filePath(QStringLiteral("bus")));
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), address.sun_path);
    QCOMPARE(::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof(address)), 0);
    QCOMPARE(::listen(listener, 8), 0);
    qputenv(BusVariable, QByteArray("unix:path=" + path));
    checkThatNothingWorks(sealed_);
    ::close(listener);
}

void KeyringFaultsTest::keyringThatAnswersAgain()
{
    const auto protection = makeTokenProtection();
    GnomeKeyring keyring(bus_.address());
    QVERIFY(keyring.start());
    const QByteArray sealed = protection->protect(token());
    keyring.freeze();
    QCOMPARE(protection->unprotect(sealed).outcome, Outcome::CannotNow);
    keyring.thaw();
    const Unprotected opened = protection->unprotect(sealed);
    QCOMPARE(opened.outcome, Outcome::Opened);
    QCOMPARE(opened.bytes.view(), QByteArrayView("token"));
}

void KeyringFaultsTest::wantsToPrompt()
{
    const StubKeyring stub(bus_.address(), {.promptsToCreate = true});
    QVERIFY(stub.isReady());
    QCOMPARE(makeTokenProtection()->protect(token()), QByteArray());
    QVERIFY(stub.calls().contains(QStringLiteral("CreateItem")));
    QVERIFY(!stub.calls().contains(QStringLiteral("Prompt")));
    QVERIFY(!stub.calls().contains(QStringLiteral("Unlock")));
}

void KeyringFaultsTest::withoutADefaultCollection()
{
    const StubKeyring stub(bus_.address(), {.collection = QStringLiteral("/")});
    QVERIFY(stub.isReady());
    checkThatNothingWorks(sealed_);
    QVERIFY(!stub.calls().contains(QStringLiteral("CreateItem")));
    QVERIFY(!stub.calls().contains(QStringLiteral("CreateCollection")));
}

void KeyringFaultsTest::lockedCollectionIsNotWrittenTo()
{
    const StubKeyring stub(bus_.address(), {.isLocked = true});
    QVERIFY(stub.isReady());
    checkThatNothingWorks(sealed_);
    QVERIFY(!stub.calls().contains(QStringLiteral("CreateItem")));
    QVERIFY(!stub.calls().contains(QStringLiteral("Unlock")));
}

void KeyringFaultsTest::lockedItemElsewhere()
{
    const StubKeyring stub(bus_.address(), {.hasLockedItem = true});
    QVERIFY(stub.isReady());
    QCOMPARE(makeTokenProtection()->unprotect(sealed_).outcome, Outcome::CannotNow);
    QVERIFY(!stub.calls().contains(QStringLiteral("Unlock")));
}

void KeyringFaultsTest::openAndEmptyKeyring()
{
    const StubKeyring stub(bus_.address(), {});
    QVERIFY(stub.isReady());
    QCOMPARE(makeTokenProtection()->unprotect(sealed_).outcome, Outcome::CanNever);
    QVERIFY(!makeTokenProtection()->protect(token()).isEmpty());
}

void KeyringFaultsTest::foreignBytesNeedNoKeyring()
{
    const StubKeyring stub(bus_.address(), {.silentAt = QStringLiteral("*")});
    QVERIFY(stub.isReady());
    const auto protection = makeTokenProtection();
    QCOMPARE(protection->unprotect(QByteArray(1000, 'x')).outcome, Outcome::CanNever);
    QCOMPARE(stub.calls(), QStringList());
}

/// While it waits no event of Qt and none of GLib's main context is handled.
void KeyringFaultsTest::nothingElseRunsWhileWaiting()
{
    const StubKeyring stub(bus_.address(), {.silentAt = QStringLiteral("*")});
    QVERIFY(stub.isReady());
    bool isWaiting = false;
    int strangers = 0;
    const auto count = [&] { strangers += isWaiting ? 1 : 0; };
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, this, count);
    timer.start(1);
    const auto idle = [](gpointer counter) -> gboolean {
        (*static_cast<decltype(count) *>(counter))();
        return G_SOURCE_CONTINUE;
    };
    auto counter = count;
    const guint source = g_idle_add(idle, &counter);
    isWaiting = true;
    QCOMPARE(makeTokenProtection()->protect(token()), QByteArray());
    isWaiting = false;
    g_source_remove(source);
    QCOMPARE(strangers, 0);
}

QTEST_GUILESS_MAIN(KeyringFaultsTest)
#include "keyring_faults_test.moc"
