#include "fixed_key_protection.h"
#include "service/session_cipher.h"
#include "service/session_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace quillmar;
using quillmar::test::FixedKeyProtection;

namespace
{

constexpr QFile::Permissions OwnerOnly =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

/// A session file in an empty folder.
struct Kept {
    explicit Kept(const QString &name = QStringLiteral("session.dpapi"))
        : path(name.isEmpty() ? QString() : folder.filePath(name)), store(make())
    {
    }

    SessionFile make()
    {
        auto owned = std::make_unique<FixedKeyProtection>();
        protection = owned.get();
        return {path, std::move(owned)};
    }

    QByteArray content() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    bool write(const QByteArray &bytes) const
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

    /// Names in the folder, whatever they are.
    QStringList names() const
    {
        return QDir(folder.path())
            .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden | QDir::System);
    }

    bool exists() const { return !names().isEmpty(); }

    QTemporaryDir folder;
    QString path;
    FixedKeyProtection *protection = nullptr;
    SessionFile store;
};

QString token()
{
    return QStringLiteral("t0ken");
}

QString randomToken()
{
    QString text;
    for (int i = 0; i < 60; ++i) {
        text += QChar(u'A' + QRandomGenerator::system()->bounded(26));
    }
    return text;
}

} // namespace

class SessionFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsAToken_data();
    void keepsAToken();
    void savingReplaces();
    void emptyTokenWritesNothing();
    void withoutAPathNothingIsKept();
    void failedProtectionWritesNothing();
    void noFileIsNoSession();
    void emptyFileIsDeleted();
    void fileOfOneMebibyteIsRead();
    void fileOfOneMebibyteAndOneByteIsDeletedUnread();
    void fileThatCanBeOpenedAndIsOneMebibyte();
    void fileThatCannotBeOpenedNowStays();
    void damagedFileIsDeleted();
    void sealedEmptyTokenIsDeleted();
    void unreadableFileStays();
    void readOnlyFileIsReplaced();
    void folderInItsPlace();
    void fifoInItsPlace();
    void linkInItsPlace();
    void danglingLinkInItsPlace();
    void socketOrDeviceInItsPlace();
    void fileIsForItsOwnerAlone();
    void looseModeOfAnOldFileIsTightened();
    void missingFoldersAreMadeForTheOwnerAlone();
    void existingFoldersKeepTheirMode();
    void fileInPlaceOfTheFolder();
    void readOnlyFolder();
    void removing();
    void removingWhatCannotBeRemoved();
    void neverHoldsAPartOfTheTokenInClear();
};

void SessionFileTest::keepsAToken_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("ASCII") << token();
    QTest::newRow("one character") << QStringLiteral("x");
    QTest::newRow("Persian and emoji") << QStringLiteral("رمز😀");
    QTest::newRow("CR LF") << QStringLiteral("a\r\nX-Evil: 1");
    QTest::newRow("NUL") << QStringLiteral("a") + QChar(0) + QStringLiteral("b");
    QTest::newRow("NUL alone") << QString(QChar(0));
    QTest::newRow("blanks at both ends") << QStringLiteral(" t ");
    QTest::newRow("byte order mark first") << QChar(0xfeff) + QStringLiteral("a");
    QTest::newRow("500,000 characters") << QString(500'000, u'x');
}

void SessionFileTest::keepsAToken()
{
    QFETCH(const QString, text);
    Kept kept;
    QVERIFY(kept.store.save(text));
    QCOMPARE(kept.make().load(), text);
    QCOMPARE(kept.names(), QStringList{QStringLiteral("session.dpapi")});
}

void SessionFileTest::savingReplaces()
{
    Kept kept;
    QVERIFY(kept.store.save(QString(5000, u'x')));
    QVERIFY(kept.store.save(token()));
    QCOMPARE(kept.store.load(), token());
    QCOMPARE(kept.names().size(), 1);
}

void SessionFileTest::emptyTokenWritesNothing()
{
    Kept kept;
    QVERIFY(!kept.store.save({}));
    QVERIFY(!kept.exists());
    QCOMPARE(kept.protection->protections, 0);
    QVERIFY(kept.store.save(token()));
    QVERIFY(!kept.store.save({}));
    QCOMPARE(kept.store.load(), token());
}

void SessionFileTest::withoutAPathNothingIsKept()
{
    Kept kept{QString()};
    QVERIFY(!kept.store.save(token()));
    QCOMPARE(kept.protection->protections, 0);
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(!kept.store.remove());
    QVERIFY(!kept.exists());
}

void SessionFileTest::failedProtectionWritesNothing()
{
    Kept kept(QStringLiteral("folder/session.dpapi"));
    kept.protection->works = false;
    QVERIFY(!kept.store.save(token()));
    QVERIFY(!kept.exists());
}

void SessionFileTest::noFileIsNoSession()
{
    Kept kept;
    QCOMPARE(kept.store.load(), QString());
    QCOMPARE(kept.protection->openings, 0);
    QVERIFY(!kept.exists());
}

void SessionFileTest::emptyFileIsDeleted()
{
    Kept kept;
    QVERIFY(kept.write({}));
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(!kept.exists());
    QCOMPARE(kept.protection->openings, 0);
}

void SessionFileTest::fileOfOneMebibyteIsRead()
{
    Kept kept;
    QVERIFY(kept.write(QByteArray(0x100000, 'x')));
    QCOMPARE(kept.store.load(), QString());
    QCOMPARE(kept.protection->openings, 1);
    QVERIFY(!kept.exists());
}

void SessionFileTest::fileOfOneMebibyteAndOneByteIsDeletedUnread()
{
    Kept kept;
    QVERIFY(kept.write(QByteArray(0x100001, 'x')));
    QCOMPARE(kept.store.load(), QString());
    QCOMPARE(kept.protection->openings, 0);
    QVERIFY(!kept.exists());
}

void SessionFileTest::fileThatCanBeOpenedAndIsOneMebibyte()
{
    const qsizetype frame = session_cipher::HeaderSize + session_cipher::NonceSize + session_cipher::TagSize;
    for (const qsizetype surplus : {0, 1}) {
        Kept kept;
        const QString text(0x100000 - frame + surplus, u'x');
        QVERIFY(kept.store.save(text));
        QCOMPARE(kept.content().size(), 0x100000 + surplus);
        QCOMPARE(kept.store.load(), surplus == 0 ? text : QString());
        QCOMPARE(kept.exists(), surplus == 0);
    }
}

void SessionFileTest::fileThatCannotBeOpenedNowStays()
{
    Kept kept;
    QVERIFY(kept.store.save(token()));
    const QByteArray before = kept.content();
    kept.protection->works = false;
    QCOMPARE(kept.store.load(), QString());
    QCOMPARE(kept.content(), before);
    kept.protection->works = true;
    QCOMPARE(kept.store.load(), token());
}

void SessionFileTest::damagedFileIsDeleted()
{
    Kept kept;
    QVERIFY(kept.store.save(token()));
    QByteArray damaged = kept.content();
    damaged[damaged.size() / 2] = char(damaged.at(damaged.size() / 2) ^ 1);
    QVERIFY(kept.write(damaged));
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(!kept.exists());
}

void SessionFileTest::sealedEmptyTokenIsDeleted()
{
    Kept kept;
    QVERIFY(kept.write(kept.protection->protect(SecretBytes())));
    QCOMPARE(kept.store.load(), QString());
    QCOMPARE(kept.protection->openings, 1);
    QVERIFY(!kept.exists());
}

void SessionFileTest::unreadableFileStays()
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

void SessionFileTest::readOnlyFileIsReplaced()
{
    Kept kept;
    QVERIFY(kept.store.save(token()));
    QVERIFY(QFile::setPermissions(kept.path, QFile::ReadOwner));
    const bool saved = kept.store.save(QStringLiteral("new"));
    QCOMPARE(kept.store.load(), saved ? QStringLiteral("new") : token());
    QVERIFY(kept.store.remove());
    QVERIFY(!kept.exists());
}

void SessionFileTest::folderInItsPlace()
{
    Kept kept;
    QVERIFY(QDir().mkpath(kept.path + QStringLiteral("/inside")));
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(!kept.store.save(token()));
    QVERIFY(!kept.store.remove());
    QVERIFY(QFileInfo(kept.path + QStringLiteral("/inside")).isDir());
}

void SessionFileTest::fifoInItsPlace()
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

void SessionFileTest::linkInItsPlace()
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

void SessionFileTest::danglingLinkInItsPlace()
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

void SessionFileTest::socketOrDeviceInItsPlace()
{
    for (const char *device : {"/dev/zero", "/dev/full", "/dev/null"}) {
        auto owned = std::make_unique<FixedKeyProtection>();
        SessionFile store(QString::fromLatin1(device), std::move(owned));
        QCOMPARE(store.load(), QString());
        QVERIFY2(!store.save(token()), device);
    }
}

void SessionFileTest::fileIsForItsOwnerAlone()
{
    Kept kept;
    const mode_t before = ::umask(0);
    const bool saved = kept.store.save(token());
    ::umask(before);
    QVERIFY(saved);
    QCOMPARE(QFile::permissions(kept.path), OwnerOnly);
}

void SessionFileTest::looseModeOfAnOldFileIsTightened()
{
    Kept kept;
    QVERIFY(kept.write("old"));
    QCOMPARE(::chmod(QFile::encodeName(kept.path).constData(), 0666), 0);
    QVERIFY(kept.store.save(token()));
    QCOMPARE(QFile::permissions(kept.path), OwnerOnly);
}

void SessionFileTest::missingFoldersAreMadeForTheOwnerAlone()
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

void SessionFileTest::existingFoldersKeepTheirMode()
{
    Kept kept(QStringLiteral("a/session.dpapi"));
    const QString folder = kept.folder.filePath(QStringLiteral("a"));
    QVERIFY(QDir().mkpath(folder));
    QCOMPARE(::chmod(QFile::encodeName(folder).constData(), 0755), 0);
    const QFile::Permissions before = QFile::permissions(folder);
    QVERIFY(kept.store.save(token()));
    QCOMPARE(QFile::permissions(folder), before);
}

void SessionFileTest::fileInPlaceOfTheFolder()
{
    Kept kept(QStringLiteral("a/session.dpapi"));
    QFile obstacle(kept.folder.filePath(QStringLiteral("a")));
    QVERIFY(obstacle.open(QIODevice::WriteOnly));
    QVERIFY(!kept.store.save(token()));
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(kept.store.remove());
    QVERIFY(obstacle.exists());
}

/// Whoever may write everywhere succeeds; then nothing must be half done either.
void SessionFileTest::readOnlyFolder()
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

void SessionFileTest::removing()
{
    Kept kept;
    QVERIFY(kept.store.remove());
    QVERIFY(kept.store.save(token()));
    QVERIFY(kept.store.remove());
    QVERIFY(!kept.exists());
    QVERIFY(kept.store.remove());
}

void SessionFileTest::removingWhatCannotBeRemoved()
{
    Kept kept;
    QVERIFY(QDir().mkpath(kept.path));
    QVERIFY(!kept.store.remove());
    QVERIFY(kept.exists());
}

void SessionFileTest::neverHoldsAPartOfTheTokenInClear()
{
    Kept kept;
    const QString text = randomToken() + randomToken();
    QVERIFY(kept.store.save(text));
    const QByteArray content = kept.content();
    const QByteArray utf8 = text.toUtf8();
    for (qsizetype i = 0; i + 4 <= utf8.size(); ++i) {
        const QByteArray part = utf8.sliced(i, 4);
        QVERIFY2(!content.contains(part), part);
        QVERIFY2(!content.contains(part.toHex()), part);
        QVERIFY2(!content.contains(part.toHex().toUpper()), part);
        const QByteArray wide(reinterpret_cast<const char *>(text.constData() + i), 8);
        QVERIFY2(!content.contains(wide), part);
    }
    for (qsizetype shift = 0; shift < 3; ++shift) {
        const QByteArray coded = utf8.sliced(shift, 60).toBase64(QByteArray::OmitTrailingEquals);
        for (qsizetype i = 0; i + 6 <= coded.size(); ++i) {
            QVERIFY(!content.contains(coded.sliced(i, 6)));
        }
    }
}

QTEST_GUILESS_MAIN(SessionFileTest)
#include "session_file_test.moc"
