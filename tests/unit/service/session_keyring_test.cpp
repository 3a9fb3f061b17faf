#include "service/session_file.h"
#include "tests/support/keyring/gnome_keyring.h"
#include "tests/support/keyring/private_bus.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace quillmar;
using namespace quillmar::test;

namespace
{

constexpr char BusVariable[] = "DBUS_SESSION_BUS_ADDRESS";

QString token()
{
    return QStringLiteral("kept.Token-0123456789_رمز");
}

/// A user with a bus and an open keyring, and a session file in an empty folder.
struct User {
    User()
    {
        isReady = bus.start() && keyring.start() && folder.isValid();
        qputenv(BusVariable, bus.address().toUtf8());
    }
    ~User() { qunsetenv(BusVariable); }

    /// What a new run of the program would have.
    SessionFile store() const { return {path(), makeTokenProtection()}; }
    QString path() const { return folder.filePath(QStringLiteral("session.dpapi")); }
    bool hasFile() const { return QFile::exists(path()); }

    PrivateBus bus;
    GnomeKeyring keyring{bus.address()};
    QTemporaryDir folder;
    bool isReady = false;
};

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool overwrite(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

/// The session file with the real keyring of a desktop.
class SessionKeyringTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isRestoredInTheNextRun();
    void isRestoredByARestartedKeyring();
    void anEmptyTokenIsNotSaved();
    void everySaveDiffersAndOneKeyServesAll();
    void lockedKeyring();
    void keyringStartedLocked();
    void savingWithALockedKeyringFails();
    void savingWithALockedKeyringAndNoKeyYetFails();
    void absentKeyring();
    void savingWithoutAKeyringFails();
    void keyringKilledBetweenSaveAndLoad();
    void busKilledBetweenSaveAndLoad();
    void noBusAtAll();
    void deletedKey();
    void fileOfAnotherUser();
    void severalKeys();
    void itemThatHoldsNoKey();
    void flippedBit();
    void severalFlippedBitsOneByOne();
    void timesOfSaveAndLoad();
};

void SessionKeyringTest::isRestoredInTheNextRun()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    QCOMPARE(user.store().load(), token());
    QVERIFY(user.store().remove());
    QVERIFY(!user.hasFile());
    QCOMPARE(user.store().load(), QString());
}

void SessionKeyringTest::isRestoredByARestartedKeyring()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    user.keyring.stop();
    QVERIFY(user.keyring.start());
    QCOMPARE(user.store().load(), token());
}

void SessionKeyringTest::anEmptyTokenIsNotSaved()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(!user.store().save({}));
    QVERIFY(!user.hasFile());
    QCOMPARE(user.keyring.keyCount(), 0);
}

void SessionKeyringTest::everySaveDiffersAndOneKeyServesAll()
{
    User user;
    QVERIFY(user.isReady);
    QSet<QByteArray> contents;
    for (int i = 0; i < 5; ++i) {
        QVERIFY(user.store().save(token()));
        contents.insert(contentsOf(user.path()));
    }
    QCOMPARE(contents.size(), 5);
    QCOMPARE(user.keyring.keyCount(), 1);
    QCOMPARE(user.store().load(), token());
}

void SessionKeyringTest::lockedKeyring()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    QVERIFY(user.keyring.lock());
    QCOMPARE(user.store().load(), QString());
    QVERIFY(user.hasFile());
    user.keyring.stop();
    QVERIFY(user.keyring.start());
    QCOMPARE(user.store().load(), token());
}

void SessionKeyringTest::keyringStartedLocked()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    user.keyring.stop();
    QVERIFY(user.keyring.startLocked());
    QCOMPARE(user.store().load(), QString());
    QVERIFY(user.hasFile());
    user.keyring.stop();
    QVERIFY(user.keyring.start());
    QCOMPARE(user.store().load(), token());
}

void SessionKeyringTest::savingWithALockedKeyringFails()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    const QByteArray before = contentsOf(user.path());
    QVERIFY(user.keyring.lock());
    QVERIFY(!user.store().save(QStringLiteral("another")));
    QCOMPARE(contentsOf(user.path()), before);
}

void SessionKeyringTest::savingWithALockedKeyringAndNoKeyYetFails()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.keyring.lock());
    QVERIFY(!user.store().save(token()));
    QVERIFY(!user.hasFile());
}

void SessionKeyringTest::absentKeyring()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    const QByteArray before = contentsOf(user.path());
    user.keyring.stop();
    QCOMPARE(user.store().load(), QString());
    QCOMPARE(contentsOf(user.path()), before);
    QVERIFY(user.keyring.start());
    QCOMPARE(user.store().load(), token());
}

void SessionKeyringTest::savingWithoutAKeyringFails()
{
    User user;
    QVERIFY(user.isReady);
    user.keyring.stop();
    QVERIFY(!user.store().save(token()));
    QVERIFY(!user.hasFile());
}

void SessionKeyringTest::keyringKilledBetweenSaveAndLoad()
{
    User user;
    QVERIFY(user.isReady);
    SessionFile store = user.store();
    QVERIFY(store.save(token()));
    user.keyring.stop();
    QCOMPARE(store.load(), QString());
    QVERIFY(user.hasFile());
    QVERIFY(user.keyring.start());
    QCOMPARE(store.load(), token());
}

void SessionKeyringTest::busKilledBetweenSaveAndLoad()
{
    User user;
    QVERIFY(user.isReady);
    SessionFile store = user.store();
    QVERIFY(store.save(token()));
    user.bus.stop();
    QCOMPARE(store.load(), QString());
    QVERIFY(user.hasFile());
    QVERIFY(!store.save(token()));
    user.keyring.stop();
    QVERIFY(user.bus.start());
    QVERIFY(user.keyring.start());
    QCOMPARE(store.load(), token());
}

void SessionKeyringTest::noBusAtAll()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    const QByteArray address = qgetenv(BusVariable);
    for (const QByteArray &other : {QByteArray(), QByteArray("unix:path=/nowhere"), QByteArray("nonsense")}) {
        qputenv(BusVariable, other);
        QCOMPARE(user.store().load(), QString());
        QVERIFY(user.hasFile());
        QVERIFY(!user.store().save(token()));
    }
    qputenv(BusVariable, address);
    QCOMPARE(user.store().load(), token());
}

void SessionKeyringTest::deletedKey()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    QVERIFY(user.keyring.deleteKeys());
    QCOMPARE(user.store().load(), QString());
    QVERIFY(!user.hasFile());
    QVERIFY(user.store().save(token()));
    QCOMPARE(user.store().load(), token());
}

void SessionKeyringTest::fileOfAnotherUser()
{
    QByteArray foreign;
    {
        User other;
        QVERIFY(other.isReady);
        QVERIFY(other.store().save(token()));
        foreign = contentsOf(other.path());
    }
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(QStringLiteral("own")));
    QVERIFY(overwrite(user.path(), foreign));
    QCOMPARE(user.store().load(), QString());
    QVERIFY(!user.hasFile());
}

void SessionKeyringTest::severalKeys()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    const QByteArray first = contentsOf(user.path());
    QVERIFY(user.keyring.storeKey(QString(64, QLatin1Char('a'))));
    QCOMPARE(user.keyring.keyCount(), 2);
    QCOMPARE(user.store().load(), token());
    QVERIFY(user.store().save(QStringLiteral("second")));
    QCOMPARE(user.store().load(), QStringLiteral("second"));
    QVERIFY(overwrite(user.path(), first));
    QCOMPARE(user.store().load(), token());
    QCOMPARE(user.keyring.keyCount(), 2);
}

void SessionKeyringTest::itemThatHoldsNoKey()
{
    User user;
    QVERIFY(user.isReady);
    for (const QString &secret : {QStringLiteral("short"), QString(64, QLatin1Char('x')),
                                  QString(66, QLatin1Char('a')), QString(64, QChar(0xe9))}) {
        QVERIFY(user.keyring.deleteKeys());
        QVERIFY(user.keyring.storeKey(secret));
        QVERIFY2(user.store().save(token()), qPrintable(secret));
        QCOMPARE(user.keyring.keyCount(), 2);
        QCOMPARE(user.store().load(), token());
    }
}

void SessionKeyringTest::flippedBit()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    QByteArray damaged = contentsOf(user.path());
    damaged[damaged.size() - 1] = char(damaged.back() ^ 1);
    QVERIFY(overwrite(user.path(), damaged));
    QCOMPARE(user.store().load(), QString());
    QVERIFY(!user.hasFile());
}

/// One bit of each byte here; every bit of every byte without a keyring in the test of the cipher.
void SessionKeyringTest::severalFlippedBitsOneByOne()
{
    User user;
    QVERIFY(user.isReady);
    QVERIFY(user.store().save(token()));
    const QByteArray good = contentsOf(user.path());
    for (qsizetype i = 0; i < good.size(); ++i) {
        QByteArray damaged = good;
        damaged[i] = char(damaged.at(i) ^ (1 << (i % 8)));
        QVERIFY(overwrite(user.path(), damaged));
        QCOMPARE(user.store().load(), QString());
        QVERIFY2(!user.hasFile(), QByteArray::number(i));
    }
    QVERIFY(overwrite(user.path(), good));
    QCOMPARE(user.store().load(), token());
}

void SessionKeyringTest::timesOfSaveAndLoad()
{
    User user;
    QVERIFY(user.isReady);
    QElapsedTimer clock;
    for (int i = 0; i < 5; ++i) {
        clock.start();
        QVERIFY(user.store().save(token()));
        const double saved = double(clock.nsecsElapsed()) / 1e6;
        clock.start();
        QCOMPARE(user.store().load(), token());
        qInfo("save %.1f ms, load %.1f ms", saved, double(clock.nsecsElapsed()) / 1e6);
    }
}

QTEST_GUILESS_MAIN(SessionKeyringTest)
#include "session_keyring_test.moc"
