#include "dpapi_calls.h"
#include "given_back_arrays.h"
#include "session_dpapi_fixture.h"

#include <QDir>
#include <QTest>

using namespace quillmar;
using namespace quillmar::test;

/// What the session file asks of Windows' data protection, and what it does with the answers.
class SessionDpapiCallsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyTokenIsNotProtected();
    void fileIsWhatWindowsMadeAndNothingElse();
    void protectsWithTheseParameters();
    void opensWithTheseParameters();
    void protectedTokenIsFreedOnce();
    void openedTokenIsOverwrittenAndFreedOnce();
    void plainTokenIsOverwritten_data();
    void plainTokenIsOverwritten();
    void refusedProtectionWritesNothing();
    void refusedProtectionLeavesTheOldFile();
    void refusedOpeningDeletesTheFile();
    void protectedTokenIsFreedWhenTheFolderCannotBeMade();
    void protectedTokenIsFreedWhenTheFileCannotBeWritten();
    void emptyFileIsDeletedUnread();
    void oneMebibyteIsReadAndDeleted();
    void oneMebibyteAndOneByteIsDeletedUnread();
    void protectedEmptyTokenIsDeleted();
};

void SessionDpapiCallsTest::anEmptyTokenIsNotProtected()
{
    const Kept kept;
    const DpapiCalls calls;
    QVERIFY(!kept.store().save({}));
    QVERIFY(!kept.hasFile());
    QCOMPARE(calls.protections().size(), 0);
}

void SessionDpapiCallsTest::fileIsWhatWindowsMadeAndNothingElse()
{
    const Kept kept;
    const DpapiCalls calls;
    QVERIFY(kept.store().save(token()));
    QCOMPARE(calls.protections().size(), 1);
    QCOMPARE(calls.protections().first().input, token().toUtf8());
    QVERIFY(!calls.protections().first().output.isEmpty());
    QCOMPARE(kept.content(), calls.protections().first().output);
    QCOMPARE(kept.store().load(), token());
    QCOMPARE(calls.openings().size(), 1);
    QCOMPARE(calls.openings().first().input, kept.content());
    QCOMPARE(calls.openings().first().output, token().toUtf8());
}

void SessionDpapiCallsTest::protectsWithTheseParameters()
{
    const Kept kept;
    const DpapiCalls calls;
    QVERIFY(kept.store().save(token()));
    const DpapiCalls::Call &call = calls.protections().first();
    QCOMPARE(call.description, QStringLiteral("Quillmar session"));
    QCOMPARE(call.flags, 1UL);
    QVERIFY(!call.hasEntropy);
    QVERIFY(!call.hasReserved);
    QVERIFY(!call.hasPrompt);
}

void SessionDpapiCallsTest::opensWithTheseParameters()
{
    const Kept kept;
    QVERIFY(kept.store().save(token()));
    const DpapiCalls calls;
    QCOMPARE(kept.store().load(), token());
    const DpapiCalls::Call &call = calls.openings().first();
    QVERIFY(!call.asksForDescription);
    QCOMPARE(call.flags, 1UL);
    QVERIFY(!call.hasEntropy);
    QVERIFY(!call.hasReserved);
    QVERIFY(!call.hasPrompt);
}

void SessionDpapiCallsTest::protectedTokenIsFreedOnce()
{
    const Kept kept;
    const DpapiCalls calls;
    QVERIFY(kept.store().save(token()));
    QCOMPARE(calls.protections().first().freed.size(), 1);
}

void SessionDpapiCallsTest::openedTokenIsOverwrittenAndFreedOnce()
{
    const Kept kept;
    QVERIFY(kept.store().save(token()));
    const DpapiCalls calls;
    QCOMPARE(kept.store().load(), token());
    const qsizetype size = token().toUtf8().size();
    QCOMPARE(calls.openings().first().freed, QList<QByteArray>{QByteArray(size, '\0')});
}

void SessionDpapiCallsTest::plainTokenIsOverwritten_data()
{
    QTest::addColumn<bool>("isRefused");
    QTest::newRow("protected") << false;
    QTest::newRow("protection refused") << true;
}

void SessionDpapiCallsTest::plainTokenIsOverwritten()
{
    QFETCH(const bool, isRefused);
    const Kept kept;
    const QByteArray text = "a token that nobody may find";
    DpapiCalls calls;
    if (isRefused) {
        calls.refuse();
    }
    const GivenBackArrays arrays(text);
    GivenBackArrays::giveBack(text);
    QCOMPARE(arrays.count(), 1);
    QCOMPARE(kept.store().save(QString::fromLatin1(text)), !isRefused);
    QCOMPARE(kept.store().load(), isRefused ? QString() : QString::fromLatin1(text));
    QCOMPARE(calls.protections().size(), 1);
    QCOMPARE(arrays.count(), 1);
}

void SessionDpapiCallsTest::refusedProtectionWritesNothing()
{
    const Kept kept;
    DpapiCalls calls;
    calls.refuse();
    QVERIFY(!kept.store().save(token()));
    QVERIFY(!kept.hasFile());
    QCOMPARE(QDir(kept.folder.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size(), 0);
}

void SessionDpapiCallsTest::refusedProtectionLeavesTheOldFile()
{
    const Kept kept;
    QVERIFY(kept.store().save(token()));
    const QByteArray before = kept.content();
    {
        DpapiCalls calls;
        calls.refuse();
        QVERIFY(!kept.store().save(QStringLiteral("another")));
    }
    QCOMPARE(kept.content(), before);
    QCOMPARE(kept.store().load(), token());
}

void SessionDpapiCallsTest::refusedOpeningDeletesTheFile()
{
    const Kept kept;
    QVERIFY(kept.store().save(token()));
    DpapiCalls calls;
    calls.refuse();
    QCOMPARE(kept.store().load(), QString());
    QVERIFY(!kept.hasFile());
}

void SessionDpapiCallsTest::protectedTokenIsFreedWhenTheFolderCannotBeMade()
{
    const Kept kept;
    QVERIFY(kept.write("in place of a folder"));
    SessionFile store(kept.path + QStringLiteral("/session.dpapi"), makeTokenProtection());
    const DpapiCalls calls;
    QVERIFY(!store.save(token()));
    QCOMPARE(calls.protections().size(), 1);
    QCOMPARE(calls.protections().first().freed.size(), 1);
    QCOMPARE(kept.content(), QByteArray("in place of a folder"));
}

void SessionDpapiCallsTest::protectedTokenIsFreedWhenTheFileCannotBeWritten()
{
    const Kept kept;
    QVERIFY(QDir().mkpath(kept.path));
    const DpapiCalls calls;
    QVERIFY(!kept.store().save(token()));
    QCOMPARE(calls.protections().size(), 1);
    QCOMPARE(calls.protections().first().freed.size(), 1);
}

void SessionDpapiCallsTest::emptyFileIsDeletedUnread()
{
    const Kept kept;
    QVERIFY(kept.write({}));
    const DpapiCalls calls;
    QCOMPARE(kept.store().load(), QString());
    QVERIFY(!kept.hasFile());
    QCOMPARE(calls.openings().size(), 0);
}

void SessionDpapiCallsTest::oneMebibyteIsReadAndDeleted()
{
    const Kept kept;
    QVERIFY(kept.write(QByteArray(0x100000, 'x')));
    const DpapiCalls calls;
    QCOMPARE(kept.store().load(), QString());
    QVERIFY(!kept.hasFile());
    QCOMPARE(calls.openings().size(), 1);
    QCOMPARE(calls.openings().first().input.size(), 0x100000);
}

void SessionDpapiCallsTest::oneMebibyteAndOneByteIsDeletedUnread()
{
    const Kept kept;
    QVERIFY(kept.write(QByteArray(0x100001, 'x')));
    const DpapiCalls calls;
    QCOMPARE(kept.store().load(), QString());
    QVERIFY(!kept.hasFile());
    QCOMPARE(calls.openings().size(), 0);
}

void SessionDpapiCallsTest::protectedEmptyTokenIsDeleted()
{
    const Kept kept;
    QVERIFY(kept.writeProtected({}, L"Quillmar session"));
    const DpapiCalls calls;
    QCOMPARE(kept.store().load(), QString());
    QVERIFY(!kept.hasFile());
    QCOMPARE(calls.openings().size(), 1);
}

QTEST_GUILESS_MAIN(SessionDpapiCallsTest)
#include "session_dpapi_calls_test.moc"
