#include "session_file_fixture.h"
#include "two_savers.h"

#include <QProcess>
#include <QTest>

#include <csignal>

#include <sys/resource.h>

using namespace quillmar;
using namespace quillmar::test;

namespace
{

/// While it lives no file of this process grows beyond `bytes`, for whichever user.
struct FullDisk {
    explicit FullDisk(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, SIG_DFL);
    }
    Q_DISABLE_COPY_MOVE(FullDisk)

    rlimit before = {};
};

QProcessEnvironment tracedEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // A leak check cannot look into a process that is traced.
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
    return environment;
}

} // namespace

/// Disks and processes that end in the middle of a save.
class SessionFileFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fullDisk_data();
    void fullDisk();
    void killedWhileSaving_data();
    void killedWhileSaving();
    void failingSystemCall_data();
    void failingSystemCall();
    void ownerAloneBeforeTheFirstByte();
    void twoProcessesAtOnce();

private:
    static int trace(const QStringList &options, const QStringList &arguments);
};

int SessionFileFaultsTest::trace(const QStringList &options, const QStringList &arguments)
{
    QProcess strace;
    strace.setProcessEnvironment(tracedEnvironment());
    const QStringList command{QStringLiteral(QUILLMAR_SESSION_SAVER)};
    strace.start(QStringLiteral("strace"), QStringList{QStringLiteral("-f")} + options + command + arguments);
    if (!strace.waitForFinished(60'000)) {
        return -2;
    }
    return strace.exitStatus() == QProcess::CrashExit ? -1 : strace.exitCode();
}

void SessionFileFaultsTest::fullDisk_data()
{
    QTest::addColumn<int>("room");
    for (const int room : {0, 1, 8, 20, 1000, 3035}) {
        QTest::addRow("%d bytes are left", room) << room;
    }
}

void SessionFileFaultsTest::fullDisk()
{
    QFETCH(const int, room);
    Kept kept;
    QVERIFY(kept.store.save(oldToken()));
    bool saved = true;
    {
        const FullDisk disk(static_cast<rlim_t>(room));
        saved = kept.store.save(newToken());
    }
    QVERIFY(!saved);
    QCOMPARE(kept.store.load(), oldToken());
    QCOMPARE(kept.names(), QStringList{QStringLiteral("session.dpapi")});
    QVERIFY(kept.store.save(newToken()));
    QCOMPARE(kept.store.load(), newToken());
}

void SessionFileFaultsTest::killedWhileSaving_data()
{
    QTest::addColumn<QString>("calls");
    QTest::newRow("opening") << QStringLiteral("openat");
    QTest::newRow("mode") << QStringLiteral("fchmod,chmod,fchmodat");
    QTest::newRow("writing") << QStringLiteral("write,pwrite64,writev");
    QTest::newRow("syncing") << QStringLiteral("fsync,fdatasync");
    QTest::newRow("naming") << QStringLiteral("link,linkat");
    QTest::newRow("renaming") << QStringLiteral("rename,renameat,renameat2");
    QTest::newRow("closing") << QStringLiteral("close");
}

/// Kills at the first such call, then at the second, until the program comes to its end.
void SessionFileFaultsTest::killedWhileSaving()
{
    QFETCH(const QString, calls);
    Kept kept;
    int kills = 0;
    bool isDone = false;
    while (!isDone && kills < 500) {
        QVERIFY(kept.store.save(oldToken()));
        const QString fault = QStringLiteral("inject=%1:signal=KILL:when=%2").arg(calls).arg(kills + 1);
        const int code =
            trace({QStringLiteral("-o"), QStringLiteral("/dev/null"), QStringLiteral("-e"), fault},
                  {kept.path, newToken()});
        isDone = code == 0;
        QVERIFY2(isDone || code == -1, QByteArray::number(code));
        kills += isDone ? 0 : 1;
        const QString found = kept.store.load();
        QVERIFY2(isDone ? found == newToken() : (found == oldToken() || found == newToken()),
                 qPrintable(found.first(qMin(found.size(), 10))));
    }
    QVERIFY(isDone);
    QVERIFY(kills > 0);
}

void SessionFileFaultsTest::failingSystemCall_data()
{
    QTest::addColumn<QString>("fault");
    QTest::newRow("mode") << QStringLiteral("fchmod,chmod,fchmodat:error=EPERM");
    QTest::newRow("rename") << QStringLiteral("rename,renameat,renameat2:error=EACCES");
}

void SessionFileFaultsTest::failingSystemCall()
{
    QFETCH(const QString, fault);
    Kept kept;
    QVERIFY(kept.store.save(oldToken()));
    const int code = trace({QStringLiteral("-o"), QStringLiteral("/dev/null"), QStringLiteral("-e"),
                            QStringLiteral("inject=") + fault},
                           {kept.path, newToken()});
    QCOMPARE(code, 1);
    QCOMPARE(kept.store.load(), oldToken());
    QCOMPARE(kept.names(), QStringList{QStringLiteral("session.dpapi")});
}

void SessionFileFaultsTest::ownerAloneBeforeTheFirstByte()
{
    Kept kept;
    const QString log = kept.folder.filePath(QStringLiteral("log"));
    QCOMPARE(trace({QStringLiteral("-o"), log, QStringLiteral("-y"), QStringLiteral("-e"),
                    QStringLiteral("trace=openat,fchmod,chmod,fchmodat,write,linkat,rename")},
                   {kept.path, newToken()}),
             0);
    QFile file(log);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    const qsizetype mode = text.indexOf(", 0600) ");
    const qsizetype firstByte = text.indexOf("QMsess");
    QVERIFY2(mode > 0 && firstByte > mode, text.right(3000));
}

void SessionFileFaultsTest::twoProcessesAtOnce()
{
    Kept kept;
    TwoSavers savers(QStringLiteral(QUILLMAR_SESSION_SAVER), kept.path);
    QVERIFY(savers.haveStarted());
    while (savers.areRunning()) {
        const QString found = kept.store.load();
        QVERIFY2(found.isEmpty() || savers.haveSaved(found), qPrintable(found));
        QCoreApplication::processEvents();
    }
    QCOMPARE(savers.exitCode(), 0);
    const QString last = kept.store.load();
    QVERIFY2(savers.haveSavedAsTheLast(last), qPrintable(last));
    QCOMPARE(kept.names(), QStringList{QStringLiteral("session.dpapi")});
}

QTEST_GUILESS_MAIN(SessionFileFaultsTest)
#include "session_file_faults_test.moc"
