#include "session_file_fixture.h"
#include "tests/support/imports/wrapped_import.h"
#include "two_savers.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <qt_windows.h>

using namespace quillmar;
using namespace quillmar::test;

namespace
{

/// While the result lives this process can write `room` bytes more.
std::shared_ptr<void> fullDisk(DWORD room)
{
    return wrapImport(QtCoreModule, "WriteFile", &WriteFile,
                      [room](auto *real, HANDLE file, const void *bytes, DWORD size, DWORD *written,
                             OVERLAPPED *overlapped) mutable -> BOOL {
                          if (room == 0) {
                              *written = 0;
                              SetLastError(ERROR_DISK_FULL);
                              return FALSE;
                          }
                          const DWORD fits = std::min(size, room);
                          room -= fits;
                          return real(file, bytes, fits, written, overlapped);
                      });
}

/// While it lives no file gets another name.
class RefusedRenaming
{
public:
    explicit RefusedRenaming(DWORD error)
        : byHandle_(wrapImport(QtCoreModule, "SetFileInformationByHandle", &SetFileInformationByHandle,
                               [this, error](auto *real, HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind,
                                             void *information, DWORD size) {
                                   const bool isRenaming = kind == FileRenameInfo || kind == FileRenameInfoEx;
                                   return isRenaming ? refuse(error) : real(file, kind, information, size);
                               })),
          byName_(wrapImport(
              QtCoreModule, "MoveFileExW", &MoveFileExW,
              [this, error](auto *, const wchar_t *, const wchar_t *, DWORD) { return refuse(error); }))
    {
    }

    int count() const { return count_; }

private:
    BOOL refuse(DWORD error)
    {
        ++count_;
        SetLastError(error);
        return FALSE;
    }

    int count_ = 0;
    std::shared_ptr<void> byHandle_;
    std::shared_ptr<void> byName_;
};

/// Kept open by another program, a virus scanner say, that shares it in these ways.
class HeldFile
{
public:
    HeldFile(const QString &path, DWORD sharing)
        : handle_(CreateFileW(qUtf16Printable(QDir::toNativeSeparators(path)), GENERIC_READ, sharing, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr))
    {
    }
    ~HeldFile() { CloseHandle(handle_); }
    Q_DISABLE_COPY_MOVE(HeldFile)

    bool isHeld() const { return handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_;
};

} // namespace

/// Disks, programs beside this one and processes that end in the middle of a save, as they are on Windows.
class SessionFileFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fullDisk_data();
    void fullDisk();
    void refusedRenaming_data();
    void refusedRenaming();
    void killedWhileSaving_data();
    void killedWhileSaving();
    void heldByAnotherProgram_data();
    void heldByAnotherProgram();
    void twoProcessesAtOnce();
};

void SessionFileFaultsTest::fullDisk_data()
{
    QTest::addColumn<unsigned>("room");
    for (const unsigned room : {0U, 1U, 8U, 20U, 1000U, 3000U}) {
        QTest::addRow("%u bytes are left", room) << room;
    }
}

void SessionFileFaultsTest::fullDisk()
{
    QFETCH(const unsigned, room);
    Kept kept;
    QVERIFY(kept.store.save(oldToken()));
    bool saved = true;
    {
        const std::shared_ptr<void> disk = ::fullDisk(room);
        saved = kept.store.save(newToken());
    }
    QVERIFY(!saved);
    QCOMPARE(kept.store.load(), oldToken());
    QCOMPARE(kept.names(), QStringList{QStringLiteral("session.dpapi")});
    QVERIFY(kept.store.save(newToken()));
    QCOMPARE(kept.store.load(), newToken());
}

void SessionFileFaultsTest::refusedRenaming_data()
{
    QTest::addColumn<unsigned long>("error");
    QTest::newRow("access denied") << static_cast<unsigned long>(ERROR_ACCESS_DENIED);
    QTest::newRow("sharing violation") << static_cast<unsigned long>(ERROR_SHARING_VIOLATION);
}

void SessionFileFaultsTest::refusedRenaming()
{
    QFETCH(const unsigned long, error);
    Kept kept;
    QVERIFY(kept.store.save(oldToken()));
    bool saved = true;
    {
        const RefusedRenaming refusal(error);
        saved = kept.store.save(newToken());
        QVERIFY(refusal.count() > 0);
    }
    QVERIFY(!saved);
    QCOMPARE(kept.store.load(), oldToken());
    QCOMPARE(kept.names(), QStringList{QStringLiteral("session.dpapi")});
    QVERIFY(kept.store.save(newToken()));
    QCOMPARE(kept.store.load(), newToken());
}

void SessionFileFaultsTest::killedWhileSaving_data()
{
    QTest::addColumn<QString>("function");
    for (const char *name :
         {"CreateFileW", "WriteFile", "FlushFileBuffers", "SetFileInformationByHandle", "CloseHandle"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

/// Kills before the first such call, then before the second, until the program comes to its end. What it was
/// writing may be left beside the file.
void SessionFileFaultsTest::killedWhileSaving()
{
    QFETCH(const QString, function);
    Kept kept;
    int kills = 0;
    bool isDone = false;
    while (!isDone && kills < 50) {
        QVERIFY(kept.store.save(oldToken()));
        QProcess saver;
        saver.start(QStringLiteral(QUILLMAR_SESSION_SAVER_DYING),
                    {kept.path, newToken(), function, QString::number(kills + 1)});
        QVERIFY(saver.waitForFinished(60'000));
        isDone = saver.exitCode() == 0;
        QVERIFY2(isDone || saver.exitCode() == 9, QByteArray::number(saver.exitCode()));
        kills += isDone ? 0 : 1;
        const QString found = kept.store.load();
        QVERIFY2(isDone ? found == newToken() : (found == oldToken() || found == newToken()),
                 qPrintable(found.first(qMin(found.size(), 10))));
    }
    QVERIFY(isDone);
    QVERIFY(kills > 0);
}

void SessionFileFaultsTest::heldByAnotherProgram_data()
{
    QTest::addColumn<unsigned long>("sharing");
    QTest::addColumn<QString>("loaded");
    QTest::newRow("alone") << 0UL << QString();
    QTest::newRow("for readers") << static_cast<unsigned long>(FILE_SHARE_READ) << oldToken();
}

void SessionFileFaultsTest::heldByAnotherProgram()
{
    QFETCH(const unsigned long, sharing);
    QFETCH(const QString, loaded);
    Kept kept;
    QVERIFY(kept.store.save(oldToken()));
    {
        const HeldFile held(kept.path, sharing);
        QVERIFY(held.isHeld());
        QCOMPARE(kept.store.load(), loaded);
        QVERIFY(!kept.store.save(newToken()));
        QVERIFY(!kept.store.remove());
        QCOMPARE(kept.names(), QStringList{QStringLiteral("session.dpapi")});
    }
    QCOMPARE(kept.store.load(), oldToken());
    QVERIFY(kept.store.save(newToken()));
    QCOMPARE(kept.store.load(), newToken());
    QVERIFY(kept.store.remove());
    QCOMPARE(kept.names(), QStringList());
}

/// A save fails while another program reads the file or replaces it, and such a program gives up.
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
    QVERIFY2(savers.exitCode() <= 1, "a save may fail, a program may not");
    const QString last = kept.store.load();
    QVERIFY2(savers.haveSaved(last), qPrintable(last));
    QCOMPARE(kept.names(), QStringList{QStringLiteral("session.dpapi")});
}

QTEST_GUILESS_MAIN(SessionFileFaultsTest)
#include "session_file_faults_windows_test.moc"
