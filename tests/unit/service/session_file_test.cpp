#include "session_file_fixture.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QTest>

using namespace quillmar;
using namespace quillmar::test;

namespace
{

QString randomToken()
{
    QString text;
    for (int i = 0; i < 60; ++i) {
        text += QChar(u'A' + QRandomGenerator::system()->bounded(26));
    }
    return text;
}

/// The longest of those tokens whose protected form has at most `size` bytes.
QString longestTokenWithin(qsizetype size)
{
    const std::unique_ptr<TokenProtection> protection = makeKeptProtection();
    const qsizetype frame = protection->protect(SecretBytes(1)).size() - 1;
    qsizetype length = size - frame - keptProtectionStep();
    while (protection->protect(SecretBytes(length + 1)).size() <= size) {
        ++length;
    }
    return QString(length, u'x');
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
    void removing();
    void removingWhatCannotBeRemoved();
    void neverHoldsAPartOfTheTokenInClear();
    void folderInItsPlace();
    void fileInPlaceOfTheFolder();
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
    Kept kept;
    const QString largest = longestTokenWithin(0x100000);
    QVERIFY(kept.store.save(largest));
    QVERIFY(kept.content().size() <= 0x100000);
    QVERIFY(kept.content().size() > 0x100000 - keptProtectionStep());
    QCOMPARE(kept.store.load(), largest);
    QVERIFY(kept.exists());
    QVERIFY(kept.store.save(largest + u'x'));
    QVERIFY(kept.content().size() > 0x100000);
    QVERIFY(kept.content().size() <= 0x100000 + keptProtectionStep());
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(!kept.exists());
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
    damaged[damaged.size() - 1] = char(damaged.back() ^ 1);
    QVERIFY(kept.write(damaged));
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(!kept.exists());
}

void SessionFileTest::sealedEmptyTokenIsDeleted()
{
    Kept kept;
    QVERIFY(kept.write(kept.protection->protect(SecretBytes(QByteArrayView("")))));
    QCOMPARE(kept.store.load(), QString());
    QCOMPARE(kept.protection->openings, 1);
    QVERIFY(!kept.exists());
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

void SessionFileTest::folderInItsPlace()
{
    Kept kept;
    QVERIFY(QDir().mkpath(kept.path + QStringLiteral("/inside")));
    QCOMPARE(kept.store.load(), QString());
    QVERIFY(!kept.store.save(token()));
    QVERIFY(!kept.store.remove());
    QVERIFY(QFileInfo(kept.path + QStringLiteral("/inside")).isDir());
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

QTEST_GUILESS_MAIN(SessionFileTest)
#include "session_file_test.moc"
