#include "session_file_fixture.h"

#include <QFileInfo>
#include <QTest>

#include <sys/stat.h>

using namespace quillmar;
using namespace quillmar::test;

namespace
{

constexpr QFile::Permissions OwnerOnly =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

} // namespace

/// What stands at the place of the session file, and who may read it.
class SessionFilePlaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unreadableFileStays();
    void readOnlyFileIsReplaced();
    void fifoInItsPlace();
    void linkInItsPlace();
    void danglingLinkInItsPlace();
    void socketOrDeviceInItsPlace();
    void fileIsForItsOwnerAlone();
    void looseModeOfAnOldFileIsTightened();
    void missingFoldersAreMadeForTheOwnerAlone();
    void existingFoldersKeepTheirMode();
    void readOnlyFolder();
};

void SessionFilePlaceTest::unreadableFileStays()
{
    Kept kept;
    QVERIFY(kept.store.save(token()));
    QCOMPARE(::chmod(QFile::encodeName(kept.path).constData(), 0), 0);
    const bool isRoot = QFile(kept.path).open(QIODevice::ReadOnly);
    QCOMPARE(kept.store.load(), isRoot ? token() : QString());
    QVERIFY(kept.exists());
    QCOMPARE(::chmod(QFile::encodeName(kept.path).constData(), 0600), 0);
    QCOMPARE(kept.store.load(), token());
}

void SessionFilePlaceTest::readOnlyFileIsReplaced()
{
    Kept kept;
    QVERIFY(kept.store.save(token()));
    QVERIFY(QFile::setPermissions(kept.path, QFile::ReadOwner));
    const bool saved = kept.store.save(QStringLiteral("new"));
    QCOMPARE(kept.store.load(), saved ? QStringLiteral("new") : token());
    QVERIFY(kept.store.remove());
    QVERIFY(!kept.exists());
}

void SessionFilePlaceTest::fifoInItsPlace()
{
    Kept kept;
    QCOMPARE(::mkfifo(QFile::encodeName(kept.path).constData(), 0600), 0);
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(kept.exists());
    QVERIFY(kept.store.remove());
    QVERIFY(!kept.exists());
    QCOMPARE(::mkfifo(QFile::encodeName(kept.path).constData(), 0600), 0);
    QVERIFY(kept.store.save(token()));
    QVERIFY(QFileInfo(kept.path).isFile());
    QCOMPARE(kept.store.load(), token());
}

void SessionFilePlaceTest::linkInItsPlace()
{
    Kept kept;
    const QString target = kept.folder.filePath(QStringLiteral("elsewhere"));
    {
        Kept other;
        QVERIFY(other.store.save(token()));
        QVERIFY(QFile::copy(other.path, target));
    }
    QVERIFY(QFile::link(target, kept.path));
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(QFileInfo(kept.path).isSymLink());
    QFile before(target);
    QVERIFY(before.open(QIODevice::ReadOnly));
    const QByteArray bytes = before.readAll();
    QVERIFY(!kept.store.save(QStringLiteral("new")));
    QVERIFY(before.seek(0));
    QCOMPARE(before.readAll(), bytes);
    QVERIFY(kept.store.remove());
    QCOMPARE(kept.names(), QStringList{QStringLiteral("elsewhere")});
    QVERIFY(kept.store.save(QStringLiteral("new")));
}

void SessionFilePlaceTest::danglingLinkInItsPlace()
{
    Kept kept;
    QVERIFY(QFile::link(kept.folder.filePath(QStringLiteral("nowhere")), kept.path));
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(!kept.store.save(token()));
    QCOMPARE(kept.names(), QStringList{QStringLiteral("session.dpapi")});
    QVERIFY(kept.store.remove());
    QVERIFY(!kept.exists());
    QVERIFY(kept.store.save(token()));
    QCOMPARE(kept.store.load(), token());
}

void SessionFilePlaceTest::socketOrDeviceInItsPlace()
{
    for (const char *device : {"/dev/zero", "/dev/full", "/dev/null"}) {
        auto owned = std::make_unique<SwitchedProtection>();
        SessionFile store(QString::fromLatin1(device), std::move(owned));
        QCOMPARE(store.load(), QString());
        QVERIFY2(!store.save(token()), device);
    }
}

void SessionFilePlaceTest::fileIsForItsOwnerAlone()
{
    Kept kept;
    const mode_t before = ::umask(0);
    const bool saved = kept.store.save(token());
    ::umask(before);
    QVERIFY(saved);
    QCOMPARE(QFile::permissions(kept.path), OwnerOnly);
}

void SessionFilePlaceTest::looseModeOfAnOldFileIsTightened()
{
    Kept kept;
    QVERIFY(kept.write("old"));
    QCOMPARE(::chmod(QFile::encodeName(kept.path).constData(), 0666), 0);
    QVERIFY(kept.store.save(token()));
    QCOMPARE(QFile::permissions(kept.path), OwnerOnly);
}

void SessionFilePlaceTest::missingFoldersAreMadeForTheOwnerAlone()
{
    Kept kept(QStringLiteral("a/b/session.dpapi"));
    const mode_t before = ::umask(0);
    const bool saved = kept.store.save(token());
    ::umask(before);
    QVERIFY(saved);
    for (const char *name : {"a", "a/b"}) {
        QCOMPARE(QFile::permissions(kept.folder.filePath(QString::fromLatin1(name))),
                 OwnerOnly | QFile::ExeOwner | QFile::ExeUser);
    }
    QCOMPARE(kept.store.load(), token());
}

void SessionFilePlaceTest::existingFoldersKeepTheirMode()
{
    Kept kept(QStringLiteral("a/session.dpapi"));
    const QString folder = kept.folder.filePath(QStringLiteral("a"));
    QVERIFY(QDir().mkpath(folder));
    QCOMPARE(::chmod(QFile::encodeName(folder).constData(), 0755), 0);
    const QFile::Permissions before = QFile::permissions(folder);
    QVERIFY(kept.store.save(token()));
    QCOMPARE(QFile::permissions(folder), before);
}

/// Whoever may write everywhere succeeds; then nothing must be half done either.
void SessionFilePlaceTest::readOnlyFolder()
{
    Kept kept(QStringLiteral("a/session.dpapi"));
    QVERIFY(kept.store.save(token()));
    const QString folder = kept.folder.filePath(QStringLiteral("a"));
    QCOMPARE(::chmod(QFile::encodeName(folder).constData(), 0500), 0);
    QFile probe(folder + QStringLiteral("/probe"));
    const bool mayWrite = probe.open(QIODevice::WriteOnly) && probe.remove();
    QCOMPARE(kept.store.save(QStringLiteral("new")), mayWrite);
    QCOMPARE(kept.store.load(), mayWrite ? QStringLiteral("new") : token());
    QCOMPARE(kept.store.remove(), mayWrite);
    QCOMPARE(QFile::exists(kept.path), !mayWrite);
    QCOMPARE(::chmod(QFile::encodeName(folder).constData(), 0700), 0);
    QVERIFY(kept.store.remove());
}

QTEST_GUILESS_MAIN(SessionFilePlaceTest)
#include "session_file_place_test.moc"
