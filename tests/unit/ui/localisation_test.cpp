#include "tests/support/locale_files.h"
#include "ui/localisation.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

Localisation emptyLocalisation()
{
    return Localisation([](const char *, const char **) { return false; }, [](const QString &) {});
}

} // namespace

class LocalisationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsInPersianWithoutLoading();
    void loadsTheTableOfTheChosenLanguage();
    void anyOtherLanguageIsPersian();
    void missingKeyShowsItself();
    void missingLocaleFileShowsRawKeys();
    void worksWithoutFunctions();
    void textsAreUtf8();
    void readingSideFollowsTheLanguage();
    void rendersKeyAndSuffixAgainInTheNewLanguage();
    void keepsTextOfALabelWithoutKey();
    void clearedTextDoesNotComeBack();
    void isolatesTheBrandName_data();
    void isolatesTheBrandName();
    void cutsWithoutSplittingSurrogates_data();
    void cutsWithoutSplittingSurrogates();
};

void LocalisationTest::startsInPersianWithoutLoading()
{
    int loads = 0;
    const Localisation texts({}, [&loads](const QString &) { ++loads; });
    QCOMPARE(texts.language(), u"fa-IR"_s);
    QVERIFY(texts.isRightToLeft());
    QCOMPARE(loads, 0);
}

void LocalisationTest::loadsTheTableOfTheChosenLanguage()
{
    QStringList loaded;
    Localisation texts({}, [&loaded](const QString &language) { loaded.append(language); });
    texts.setLanguage(u"en-US"_s);
    texts.setLanguage(u"fa-IR"_s);
    QCOMPARE(loaded, (QStringList{u"en-US"_s, u"fa-IR"_s}));
    QCOMPARE(texts.language(), u"fa-IR"_s);
}

void LocalisationTest::anyOtherLanguageIsPersian()
{
    Localisation texts = emptyLocalisation();
    texts.setLanguage(u"en-us"_s);
    QCOMPARE(texts.language(), u"fa-IR"_s);
}

void LocalisationTest::missingKeyShowsItself()
{
    const Localisation texts = LocaleFiles().localisation(EnglishCode);
    QCOMPARE(texts.translate("No.Such.Key"), u"No.Such.Key"_s);
}

void LocalisationTest::missingLocaleFileShowsRawKeys()
{
    const Localisation texts = LocaleFiles(u"/nowhere"_s).localisation(EnglishCode);
    QCOMPARE(texts.translate("Login.Button"), u"Login.Button"_s);
}

void LocalisationTest::worksWithoutFunctions()
{
    Localisation texts({}, {});
    texts.setLanguage(u"en-US"_s);
    QCOMPARE(texts.language(), u"en-US"_s);
    QCOMPARE(texts.translate(u"Login.Button"_s), u"Login.Button"_s);
}

void LocalisationTest::textsAreUtf8()
{
    const Localisation texts = LocaleFiles().localisation(PersianCode);
    QCOMPARE(texts.translate("Login.Button"), u"ورود"_s);
}

void LocalisationTest::readingSideFollowsTheLanguage()
{
    Localisation texts = emptyLocalisation();
    QCOMPARE(texts.readingSide(), Qt::AlignRight);
    QCOMPARE(texts.direction(), Qt::RightToLeft);
    texts.setLanguage(EnglishCode);
    QCOMPARE(texts.readingSide(), Qt::AlignLeft);
    QCOMPARE(texts.direction(), Qt::LeftToRight);
}

void LocalisationTest::rendersKeyAndSuffixAgainInTheNewLanguage()
{
    Localisation texts = LocaleFiles().localisation(EnglishCode);
    QLabel label;
    texts.setTranslatedText(&label, u"Download.Success"_s, u"\n/home/x"_s);
    QCOMPARE(label.property("quillmarTextKey").toString(), u"Download.Success"_s);
    QCOMPARE(label.property("quillmarTextSuffix").toString(), u"\n/home/x"_s);
    QCOMPARE(label.text(), u"Saved to:\n/home/x"_s);
    texts.setLanguage(PersianCode);
    texts.renderTranslatedText(&label);
    QCOMPARE(label.text(), u"ذخیره شد در:\n/home/x"_s);
}

void LocalisationTest::keepsTextOfALabelWithoutKey()
{
    const Localisation texts = emptyLocalisation();
    QLabel label(u"as it is"_s);
    texts.renderTranslatedText(&label);
    QCOMPARE(label.text(), u"as it is"_s);
}

void LocalisationTest::clearedTextDoesNotComeBack()
{
    const Localisation texts = LocaleFiles().localisation(EnglishCode);
    QLabel label;
    texts.setTranslatedText(&label, u"Products.Empty"_s, u"!"_s);
    clearTranslatedText(&label);
    QCOMPARE(label.property("quillmarTextKey").toString(), QString());
    QCOMPARE(label.property("quillmarTextSuffix").toString(), QString());
    texts.renderTranslatedText(&label);
    QCOMPARE(label.text(), QString());
}

void LocalisationTest::isolatesTheBrandName_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("isolated");
    QTest::newRow("persian title") << u"ورود به Quillmar"_s << u"ورود به \u2066Quillmar\u2069"_s;
    QTest::newRow("lower case is not the brand") << u"quillmar"_s << u"quillmar"_s;
    QTest::newRow("every occurrence")
        << u"Quillmar و Quillmar"_s << u"\u2066Quillmar\u2069 و \u2066Quillmar\u2069"_s;
    QTest::newRow("without brand") << u"ورود"_s << u"ورود"_s;
    QTest::newRow("empty") << QString() << QString();
}

void LocalisationTest::isolatesTheBrandName()
{
    QFETCH(QString, text);
    QTEST(isolateBrandName(text), "isolated");
}

void LocalisationTest::cutsWithoutSplittingSurrogates_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QString>("cut");
    QTest::newRow("short enough") << u"abc"_s << 3 << u"abc"_s;
    QTest::newRow("plain cut") << u"abcd"_s << 3 << u"abc"_s;
    QTest::newRow("pair at the cut") << u"ab\U0001F600"_s << 3 << u"ab"_s;
    QTest::newRow("pair before the cut") << u"a\U0001F600b"_s << 3 << u"a\U0001F600"_s;
    QTest::newRow("unpaired high surrogate")
        << QString(u"ab"_s + QChar(0xD83D) + u'c') << 3 << QString(u"ab"_s + QChar(0xD83D));
    QTest::newRow("nothing left") << u"\U0001F600"_s << 1 << QString();
    QTest::newRow("zero") << u"abc"_s << 0 << QString();
}

void LocalisationTest::cutsWithoutSplittingSurrogates()
{
    QFETCH(QString, text);
    QFETCH(int, maximum);
    QTEST(leftWithoutSplitting(text, maximum), "cut");
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::LocalisationTest)
#include "localisation_test.moc"
