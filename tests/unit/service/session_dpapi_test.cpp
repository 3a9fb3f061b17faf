#include "session_dpapi_fixture.h"
#include "tests/support/wine/unix_side.h"

#include <QProcess>
#include <QSet>
#include <QTest>

using namespace quillmar;
using namespace quillmar::test;

namespace
{

int saveInAnotherProcess(const QString &path, const QString &text)
{
    QProcess saver;
    saver.start(QStringLiteral(QUILLMAR_SESSION_SAVER), {path, text});
    return saver.waitForFinished(60'000) ? saver.exitCode() : -1;
}

/// Has a program of another Windows user save a token where there is none yet. Under Wine, whose users are
/// those of the Unix side.
bool saveAsAnotherUser(const QString &path, const QString &text)
{
    return runUnixProgram(QStringLiteral("env"),
                          {QStringLiteral("USER=somebody-else"), QStringLiteral("LOGNAME=somebody-else"),
                           QStringLiteral("wine"), QStringLiteral(QUILLMAR_SESSION_SAVER), path, text},
                          [&path] { return QFile::exists(path); });
}

} // namespace

/// The session file with Windows' own data protection.
class SessionDpapiTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isRestoredInTheNextRun_data();
    void isRestoredInTheNextRun();
    void isRestoredInAnotherProcess();
    void everySaveDiffers();
    void noise_data();
    void noise();
    void truncatedFile();
    void flippedBitInTheSeal();
    void everyFlippedBit();
    void descriptionOfAnotherProgramDoesNotMatter();
    void protectedWithEntropy();
    void fileOfAnotherUser();
    void ownFileAfterThatOfAnotherUser();
};

void SessionDpapiTest::isRestoredInTheNextRun_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("ASCII and Persian") << token();
    QTest::newRow("one character") << QStringLiteral("x");
    QTest::newRow("NUL") << QStringLiteral("a") + QChar(0) + QStringLiteral("b");
    QTest::newRow("byte order mark first") << QChar(0xfeff) + QStringLiteral("a");
    QTest::newRow("500,000 characters") << QString(500'000, u'x');
}

void SessionDpapiTest::isRestoredInTheNextRun()
{
    QFETCH(const QString, text);
    const Kept kept;
    QVERIFY(kept.store().save(text));
    QCOMPARE(kept.store().load(), text);
    QVERIFY(kept.store().remove());
    QVERIFY(!kept.hasFile());
    QCOMPARE(kept.store().load(), QString());
}

void SessionDpapiTest::isRestoredInAnotherProcess()
{
    const Kept kept;
    QCOMPARE(saveInAnotherProcess(kept.path, QStringLiteral("of another process")), 0);
    QCOMPARE(kept.store().load(), QStringLiteral("of another process"));
    QVERIFY(kept.hasFile());
}

void SessionDpapiTest::everySaveDiffers()
{
    const Kept kept;
    QSet<QByteArray> contents;
    for (int i = 0; i < 5; ++i) {
        QVERIFY(kept.store().save(token()));
        contents.insert(kept.content());
    }
    QCOMPARE(contents.size(), 5);
    QCOMPARE(kept.store().load(), token());
}

void SessionDpapiTest::noise_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("one byte") << QByteArray(1, 'x');
    QTest::newRow("a token in clear") << token().toUtf8();
    QTest::newRow("zeros") << QByteArray(300, '\0');
    QTest::newRow("a file from Linux") << QByteArray("QMsess\1\0", 8) + QByteArray(60, 'x');
}

void SessionDpapiTest::noise()
{
    QFETCH(const QByteArray, bytes);
    const Kept kept;
    QVERIFY(kept.write(bytes));
    QCOMPARE(kept.store().load(), QString());
    QVERIFY(!kept.hasFile());
}

void SessionDpapiTest::truncatedFile()
{
    const Kept kept;
    QVERIFY(kept.store().save(token()));
    const QByteArray good = kept.content();
    for (qsizetype size = 0; size < good.size(); ++size) {
        QVERIFY(kept.write(good.first(size)));
        QCOMPARE(kept.store().load(), QString());
        QVERIFY2(!kept.hasFile(), QByteArray::number(size));
    }
    QVERIFY(kept.write(good));
    QCOMPARE(kept.store().load(), token());
}

void SessionDpapiTest::flippedBitInTheSeal()
{
    const Kept kept;
    QVERIFY(kept.store().save(token()));
    QByteArray damaged = kept.content();
    damaged[damaged.size() - 1] = char(damaged.back() ^ 1);
    QVERIFY(kept.write(damaged));
    QCOMPARE(kept.store().load(), QString());
    QVERIFY(!kept.hasFile());
}

/// A bit outside what is sealed, as in the description, may change nothing; none may change the token.
void SessionDpapiTest::everyFlippedBit()
{
    const Kept kept;
    QVERIFY(kept.store().save(token()));
    const QByteArray good = kept.content();
    qsizetype refused = 0;
    for (qsizetype bit = 0; bit < good.size() * 8; ++bit) {
        QByteArray damaged = good;
        damaged[bit / 8] = char(damaged.at(bit / 8) ^ (1 << (bit % 8)));
        QVERIFY(kept.write(damaged));
        const QString found = kept.store().load();
        QVERIFY2(found.isEmpty() || found == token(), QByteArray::number(bit));
        QCOMPARE(kept.hasFile(), !found.isEmpty());
        refused += found.isEmpty() ? 1 : 0;
    }
    QVERIFY2(refused >= token().toUtf8().size() * 8, QByteArray::number(refused));
}

void SessionDpapiTest::descriptionOfAnotherProgramDoesNotMatter()
{
    const Kept kept;
    for (const wchar_t *description : {L"Quillmar session", L"Something else", L""}) {
        QVERIFY(kept.writeProtected(token().toUtf8(), description));
        QCOMPARE(kept.store().load(), token());
        QVERIFY(kept.hasFile());
    }
}

void SessionDpapiTest::protectedWithEntropy()
{
    const Kept kept;
    QVERIFY(kept.writeProtected(token().toUtf8(), L"Quillmar session", "entropy"));
    QCOMPARE(kept.store().load(), QString());
    QVERIFY(!kept.hasFile());
}

void SessionDpapiTest::fileOfAnotherUser()
{
    const Kept kept;
    QVERIFY(saveAsAnotherUser(kept.path, QStringLiteral("theirs")));
    QVERIFY(!kept.content().isEmpty());
    QCOMPARE(kept.store().load(), QString());
    QVERIFY(!kept.hasFile());
}

void SessionDpapiTest::ownFileAfterThatOfAnotherUser()
{
    const Kept kept;
    QVERIFY(saveAsAnotherUser(kept.path, QStringLiteral("theirs")));
    QVERIFY(kept.store().save(QStringLiteral("own")));
    QCOMPARE(kept.store().load(), QStringLiteral("own"));
}

QTEST_GUILESS_MAIN(SessionDpapiTest)
#include "session_dpapi_test.moc"
