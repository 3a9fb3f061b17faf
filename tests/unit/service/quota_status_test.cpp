#include "quota_fixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

QJsonObject with(QJsonObject object, const QString &key, const QJsonValue &value)
{
    object.insert(key, value);
    return object;
}

} // namespace

/// What the quota display shows, and when.
class QuotaStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsHidden();
    void fitsAnyWidth();
    void loadingIsShownAtOnce();
    void texts_data();
    void texts();
    void everyTextFollowsALanguageSwitch_data() { texts_data(); }
    void everyTextFollowsALanguageSwitch();
    void largestNumbersAreWrittenOut();
    void withoutALocaleFileTheKeyIsShown();
    void signedOutIsCleared();
    void clearForgetsAndHides();
    void refreshAfterClearShowsAgain();
    void countsDownFromRefreshToRefresh();
    void failureForgetsTheLastQuota();
};

void QuotaStatusTest::startsHidden()
{
    const QuotaFixture f;
    QVERIFY(f.label->isHidden());
    QCOMPARE(f.service.connects().size(), 0);
}

void QuotaStatusTest::fitsAnyWidth()
{
    const QuotaFixture f;
    QVERIFY(f.label->wordWrap());
    QCOMPARE(f.label->textFormat(), Qt::PlainText);
    QCOMPARE(f.label->sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
    QCOMPARE(f.label->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
}

void QuotaStatusTest::loadingIsShownAtOnce()
{
    QuotaFixture f;
    f.hold();
    f.label->refresh();
    QVERIFY(!f.label->isHidden());
    QCOMPARE(f.label->text(), f.text("Quota.Loading"));
}

/// Every row of the texts in both languages; "left" and "limit" are what the numbers become.
void QuotaStatusTest::texts_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QJsonObject>("reply");
    QTest::addColumn<QByteArray>("key");
    const QJsonObject daily = quotaObject(7, 25);
    const QList<std::pair<QByteArray, QJsonObject>> rows{
        {"Quota.Unavailable", with(daily, u"success"_s, false)},
        {"Quota.Disabled", with(daily, u"enabled"_s, false)},
        {"Quota.Unlimited", with(daily, u"unlimited"_s, true)},
        {"Quota.Daily", daily},
        {"Quota.Weekly", quotaObject(7, 25, u"weekly"_s)},
        {"Quota.Monthly", quotaObject(7, 25, u"monthly"_s)}};
    for (const QLatin1StringView language : {PersianCode, EnglishCode}) {
        for (const auto &[key, reply] : rows)
            QTest::addRow("%s %s", language.data(), key.constData()) << QString(language) << reply << key;
    }
}

void QuotaStatusTest::texts()
{
    QFETCH(const QString, language);
    QFETCH(const QJsonObject, reply);
    QFETCH(const QByteArray, key);
    QuotaFixture f(language);
    f.answer(TlsService::json(200, reply));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    const bool hasNumbers = key == "Quota.Daily" || key == "Quota.Weekly" || key == "Quota.Monthly";
    QString expected = f.text(key);
    QCOMPARE(expected.contains(u"%1"_s) && expected.contains(u"%2"_s), hasNumbers);
    expected.replace(u"%1"_s, u"7"_s).replace(u"%2"_s, u"25"_s);
    QCOMPARE(f.label->text(), expected);
    QVERIFY(!f.label->isHidden());
    const bool persian = language == PersianCode;
    QCOMPARE(f.label->layoutDirection(), persian ? Qt::RightToLeft : Qt::LeftToRight);
    QCOMPARE(f.label->alignment(),
             (persian ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter | Qt::AlignAbsolute);
}

void QuotaStatusTest::everyTextFollowsALanguageSwitch()
{
    QFETCH(const QString, language);
    QFETCH(const QJsonObject, reply);
    QFETCH(const QByteArray, key);
    QuotaFixture f(language == PersianCode ? EnglishCode : PersianCode);
    f.answer(TlsService::json(200, reply));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    f.texts.setLanguage(language);
    f.label->updateText();
    QCOMPARE(f.label->text(), f.text(key).replace(u"%1"_s, u"7"_s).replace(u"%2"_s, u"25"_s));
    QCOMPARE(f.label->layoutDirection(), language == PersianCode ? Qt::RightToLeft : Qt::LeftToRight);
    QCOMPARE(f.service.count("download-quota"), 1);
}

void QuotaStatusTest::largestNumbersAreWrittenOut()
{
    QuotaFixture f;
    f.answer(quotaReply(9007199254740990, 9007199254740991));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QVERIFY(f.label->text().contains(u"9007199254740990"_s));
    QVERIFY(f.label->text().contains(u"9007199254740991"_s));
}

void QuotaStatusTest::withoutALocaleFileTheKeyIsShown()
{
    QuotaFixture f;
    const Localisation none({}, {});
    f.label = std::make_unique<QuotaStatus>(f.session, f.network.get(), none);
    f.answer(quotaReply(7));
    f.label->refresh();
    QCOMPARE(f.label->text(), u"Quota.Loading"_s);
    QTRY_COMPARE(f.label->text(), u"Quota.Daily"_s);
    f.label.reset();
}

void QuotaStatusTest::signedOutIsCleared()
{
    QuotaFixture f;
    f.answer(quotaReply(7));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    f.session.clear();
    f.label->refresh();
    QVERIFY(f.label->isHidden());
    QCOMPARE(f.label->text(), f.text("Quota.Unavailable"));
    QVERIFY(f.isQuiet());
    QCOMPARE(f.service.count("download-quota"), 1);
}

void QuotaStatusTest::clearForgetsAndHides()
{
    QuotaFixture f;
    f.answer(quotaReply(7));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    f.label->clear();
    QVERIFY(f.label->isHidden());
    f.label->updateText();
    QCOMPARE(f.label->text(), f.text("Quota.Unavailable"));
    QVERIFY(f.label->isHidden());
}

void QuotaStatusTest::refreshAfterClearShowsAgain()
{
    QuotaFixture f;
    f.answer(quotaReply(7));
    f.label->clear();
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QVERIFY(!f.label->isHidden());
    QCOMPARE(f.label->text(), u"Downloads left today: 7 of 25"_s);
}

void QuotaStatusTest::countsDownFromRefreshToRefresh()
{
    QuotaFixture f;
    for (const qint64 remaining : {25, 24, 1, 0}) {
        f.answer(quotaReply(remaining));
        f.label->refresh();
        QCOMPARE(f.label->text(), f.text("Quota.Loading"));
        QTRY_COMPARE(f.label->text(), u"Downloads left today: %1 of 25"_s.arg(remaining));
    }
}

void QuotaStatusTest::failureForgetsTheLastQuota()
{
    QuotaFixture f;
    f.answer(quotaReply(7));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    f.answer(TlsService::response(500, {}));
    f.label->refresh();
    QTRY_COMPARE(f.label->text(), f.text("Quota.Unavailable"));
    QVERIFY(!f.label->isHidden());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::QuotaStatusTest)
#include "quota_status_test.moc"
