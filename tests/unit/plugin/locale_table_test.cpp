#include "plugin/locale_table.h"
#include "tests/support/libobs_fake/libobs_fake.h"

#include <QTest>

using namespace quillmar;

class LocaleTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsNothingBeforeATableIsLoaded();
    void findsTheTextsOfTheLoadedLanguage();
    void loadingAgainDropsTheTableBefore();
    void aMissingKeyLeavesTheTextAlone();
};

void LocaleTableTest::findsNothingBeforeATableIsLoaded()
{
    test::LibobsFake obs;
    LocaleTable table;
    const char *text = "before";
    QVERIFY(!table.find("Login.Button", &text));
    QCOMPARE(text, "before");
    table.clear();
}

void LocaleTableTest::findsTheTextsOfTheLoadedLanguage()
{
    test::LibobsFake obs;
    obs.setTexts("fa-IR", {{"Login.Button", "ورود"}});
    obs.setTexts("en-US", {{"Login.Button", "Sign in"}});
    LocaleTable table;
    const char *text = nullptr;
    table.load(nullptr, "en-US");
    QVERIFY(table.find("Login.Button", &text));
    QCOMPARE(text, "Sign in");
    table.load(nullptr, "fa-IR");
    QVERIFY(table.find("Login.Button", &text));
    QCOMPARE(text, "ورود");
}

void LocaleTableTest::loadingAgainDropsTheTableBefore()
{
    test::LibobsFake obs;
    obs.setTexts("fa-IR", {{"Login.Button", "ورود"}});
    {
        LocaleTable table;
        table.load(nullptr, "en-US");
        table.load(nullptr, "fa-IR");
        QCOMPARE(obs.outstanding().lookups, 1);
    }
    QCOMPARE(obs.outstanding(), test::LibobsFake::Outstanding{});
}

void LocaleTableTest::aMissingKeyLeavesTheTextAlone()
{
    test::LibobsFake obs;
    LocaleTable table;
    table.load(nullptr, "en-US");
    const char *text = "before";
    QVERIFY(!table.find("No.Such", &text));
    QCOMPARE(text, "before");
}

QTEST_GUILESS_MAIN(LocaleTableTest)
#include "locale_table_test.moc"
