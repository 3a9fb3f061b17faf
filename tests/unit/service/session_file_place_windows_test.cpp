#include "session_file_fixture.h"

#include <QFileInfo>
#include <QTest>

#include <qt_windows.h>

using namespace quillmar;
using namespace quillmar::test;

namespace
{

const wchar_t *wide(const QString &path)
{
    return reinterpret_cast<const wchar_t *>(path.utf16());
}

/// A pipe that waits for somebody to open it and never says anything.
class SilentPipe
{
public:
    SilentPipe()
        : handle_(CreateNamedPipeW(wide(path()), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE | PIPE_WAIT, 1, 4096,
                                   4096, 0, nullptr))
    {
    }
    ~SilentPipe() { CloseHandle(handle_); }
    Q_DISABLE_COPY_MOVE(SilentPipe)

    static QString path() { return QStringLiteral("\\\\.\\pipe\\quillmar-session-file-test"); }
    bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_;
};

} // namespace

/// What stands at the place of the session file on Windows.
class SessionFilePlaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readOnlyFileIsReplacedAndRemoved();
    void hiddenFileIsReplacedAndRemoved();
    void damagedReadOnlyFileIsDeleted();
    void pipeInItsPlace();
    void deviceInItsPlace_data();
    void deviceInItsPlace();
    void missingFoldersAreMade();
    void placeBeyondTheOldLimitOfPaths();
};

void SessionFilePlaceTest::readOnlyFileIsReplacedAndRemoved()
{
    Kept kept;
    QVERIFY(kept.store.save(token()));
    QVERIFY(SetFileAttributesW(wide(kept.path), FILE_ATTRIBUTE_READONLY));
    QCOMPARE(kept.store.load(), token());
    const bool saved = kept.store.save(QStringLiteral("new"));
    QCOMPARE(kept.store.load(), saved ? QStringLiteral("new") : token());
    QCOMPARE(kept.names(), QStringList{QStringLiteral("session.dpapi")});
    QVERIFY(kept.store.remove());
    QVERIFY(!kept.exists());
}

void SessionFilePlaceTest::hiddenFileIsReplacedAndRemoved()
{
    Kept kept;
    QVERIFY(kept.store.save(token()));
    QVERIFY(SetFileAttributesW(wide(kept.path), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
    QCOMPARE(kept.store.load(), token());
    QVERIFY(kept.store.save(QStringLiteral("new")));
    QCOMPARE(kept.store.load(), QStringLiteral("new"));
    QVERIFY(kept.store.remove());
    QVERIFY(!kept.exists());
}

void SessionFilePlaceTest::damagedReadOnlyFileIsDeleted()
{
    Kept kept;
    QVERIFY(kept.write("damaged"));
    QVERIFY(SetFileAttributesW(wide(kept.path), FILE_ATTRIBUTE_READONLY));
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(!kept.exists());
}

void SessionFilePlaceTest::pipeInItsPlace()
{
    const SilentPipe pipe;
    QVERIFY(pipe.isOpen());
    SessionFile store(SilentPipe::path(), std::make_unique<SwitchedProtection>());
    QCOMPARE(store.load(), QString());
    QVERIFY(!store.save(token()));
}

void SessionFilePlaceTest::deviceInItsPlace_data()
{
    QTest::addColumn<QString>("path");
    for (const char *path : {"NUL", "\\\\.\\NUL", "CON", "C:/CONIN$"}) {
        QTest::newRow(path) << QString::fromLatin1(path);
    }
}

void SessionFilePlaceTest::deviceInItsPlace()
{
    QFETCH(const QString, path);
    SessionFile store(path, std::make_unique<SwitchedProtection>());
    QCOMPARE(store.load(), QString());
    QVERIFY(!store.save(token()));
}

void SessionFilePlaceTest::missingFoldersAreMade()
{
    Kept kept(QStringLiteral("a/رمز/session.dpapi"));
    QVERIFY(kept.store.save(token()));
    QCOMPARE(kept.store.load(), token());
    QVERIFY(kept.store.remove());
}

void SessionFilePlaceTest::placeBeyondTheOldLimitOfPaths()
{
    QString folder = QString(100, u'a');
    for (const QChar letter : {u'b', u'c', u'd'}) {
        folder += u'/' + QString(100, letter);
    }
    Kept kept(folder + QStringLiteral("/session.dpapi"));
    QVERIFY(kept.path.size() > MAX_PATH);
    QVERIFY(kept.store.save(token()));
    QCOMPARE(kept.store.load(), token());
    QVERIFY(kept.store.save(QStringLiteral("new")));
    QCOMPARE(kept.store.load(), QStringLiteral("new"));
    QVERIFY(kept.store.remove());
    QVERIFY(!QFileInfo::exists(kept.path));
}

QTEST_GUILESS_MAIN(SessionFilePlaceTest)
#include "session_file_place_windows_test.moc"
