#include "tests/support/locale_files.h"

#include <QFile>
#include <QSet>
#include <QStringDecoder>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

QStringList placeholders(const QString &text)
{
    static const QRegularExpression placeholder(u"%[0-9A-Za-z]"_s);
    QStringList found;
    for (const auto &match : placeholder.globalMatch(text))
        found.append(match.captured());
    found.sort();
    return found;
}

QByteArray contentOf(const QString &language)
{
    QFile file(QString::fromUtf8(QUILLMAR_LOCALE_DIR) + u'/' + language + u".ini"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class LocaleFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void languages_data();
    void bothLanguagesHaveTheSameKeysInTheSameOrder();
    void everyLineIsAnEntry_data() { languages_data(); }
    void everyLineIsAnEntry();
    void filesAreUtf8WithoutByteOrderMark_data() { languages_data(); }
    void filesAreUtf8WithoutByteOrderMark();
    void noKeyTwiceAndNoTextEmpty_data() { languages_data(); }
    void noKeyTwiceAndNoTextEmpty();
    void placeholdersAreTheExpectedOnes_data() { languages_data(); }
    void placeholdersAreTheExpectedOnes();
    void brandIsSpelledInLatin_data() { languages_data(); }
    void brandIsSpelledInLatin();
    void addCaptionNamesObs_data() { languages_data(); }
    void addCaptionNamesObs();
    void persianUsesPersianLetters();
};

void LocaleFilesTest::languages_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("english") << u"en-US"_s;
    QTest::newRow("persian") << u"fa-IR"_s;
}

void LocaleFilesTest::bothLanguagesHaveTheSameKeysInTheSameOrder()
{
    const LocaleFiles files;
    QCOMPARE(files.keys(EnglishCode), files.keys(PersianCode));
    QVERIFY(!files.keys(EnglishCode).isEmpty());
}

void LocaleFilesTest::everyLineIsAnEntry()
{
    QFETCH(QString, language);
    static const QRegularExpression entry(uR"(^[A-Z][A-Za-z]+\.[A-Z][A-Za-z]+="([^"\\]|\\[n"])+"$)"_s);
    const auto lines = QString::fromUtf8(contentOf(language)).split(u'\n');
    for (const QString &line : lines)
        QVERIFY2(line.isEmpty() || entry.match(line).hasMatch(), qPrintable(line));
}

void LocaleFilesTest::filesAreUtf8WithoutByteOrderMark()
{
    QFETCH(QString, language);
    const QByteArray content = contentOf(language);
    QVERIFY(!content.isEmpty());
    QVERIFY(!content.startsWith("\xEF\xBB\xBF"));
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(content);
    QVERIFY(!text.isEmpty() && !decoder.hasError());
}

void LocaleFilesTest::noKeyTwiceAndNoTextEmpty()
{
    QFETCH(QString, language);
    const LocaleFiles files;
    const QStringList keys = files.keys(language);
    QCOMPARE(QSet<QString>(keys.cbegin(), keys.cend()).size(), keys.size());
    const auto texts = files.texts(language);
    for (auto text = texts.cbegin(); text != texts.cend(); ++text)
        QVERIFY2(!text->trimmed().isEmpty(), text.key().constData());
}

void LocaleFilesTest::placeholdersAreTheExpectedOnes()
{
    QFETCH(QString, language);
    const QStringList one{u"%1"_s};
    const QStringList two{u"%1"_s, u"%2"_s};
    const QHash<QByteArray, QStringList> expected{{"Component.Contents", one}, {"Update.CurrentVersion", one},
                                                  {"Update.NewVersion", one},  {"Quota.Daily", two},
                                                  {"Quota.Weekly", two},       {"Quota.Monthly", two}};
    const auto texts = LocaleFiles().texts(language);
    for (auto text = texts.cbegin(); text != texts.cend(); ++text)
        QVERIFY2(placeholders(QString::fromUtf8(*text)) == expected.value(text.key()),
                 text.key().constData());
}

void LocaleFilesTest::brandIsSpelledInLatin()
{
    QFETCH(QString, language);
    const auto texts = LocaleFiles().texts(language);
    QVERIFY(texts.value("Login.Title").contains("Quillmar"));
    QVERIFY(texts.value("Home.Welcome").contains("Quillmar"));
}

void LocaleFilesTest::addCaptionNamesObs()
{
    QFETCH(QString, language);
    QVERIFY(LocaleFiles().texts(language).value("Component.Add").contains("OBS"));
}

void LocaleFilesTest::persianUsesPersianLetters()
{
    const QString content = QString::fromUtf8(contentOf(PersianCode));
    QVERIFY2(!content.contains(u'\u0643'), "Arabic kaf");
    QVERIFY2(!content.contains(u'\u064A'), "Arabic yeh");
    QVERIFY2(!content.contains(u" \u200c"_s) && !content.contains(u"\u200c "_s), "joiner beside a blank");
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::LocaleFilesTest)
#include "locale_files_test.moc"
