#include "service/quota_info.h"

#include <QHash>
#include <QJsonDocument>
#include <QTest>
#include <QTimeZone>

using namespace Qt::StringLiterals;
using quillmar::parseQuota;
using quillmar::QuotaInfo;

namespace
{

constexpr qint64 MaximumCount = 9007199254740991;

/// A good reply with `field` replaced by the JSON text `value`; an empty text takes the field away.
QJsonObject quota(const QList<std::pair<QByteArray, QByteArray>> &changes = {})
{
    QMap<QByteArray, QByteArray> fields{{"success", "true"},     {"enabled", "true"},
                                        {"unlimited", "false"},  {"allow_redownload", "true"},
                                        {"used", "3"},           {"reset_at", "\"2026-01-02T00:00:00.000Z\""},
                                        {"period", "\"daily\""}, {"limit", "9007199254740991"},
                                        {"remaining", "7"}};
    for (const auto &[field, value] : changes)
        fields[field] = value;
    QByteArrayList members;
    for (const auto &[field, value] : fields.asKeyValueRange()) {
        if (!value.isEmpty())
            members.append('"' + field + "\":" + value);
    }
    const QJsonDocument document = QJsonDocument::fromJson('{' + members.join(',') + '}');
    if (!document.isObject())
        QTest::qFail("the reply of the test is no JSON", __FILE__, __LINE__);
    return document.object();
}

} // namespace

class QuotaInfoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unavailableByDefault();
    void goodReplyIsReadWhole();
    void disabledNeedsNoPeriodLimitOrRemaining();
    void unlimitedIgnoresPeriodLimitAndRemaining();
    void disabledIgnoresHostilePeriodLimitAndRemaining();
    void usedMayExceedTheLimit();
    void everyTypeInEveryField_data();
    void everyTypeInEveryField();
    void counts_data();
    void counts();
    void periods_data();
    void periods();
    void remainingAgainstLimit_data();
    void remainingAgainstLimit();
    void resetAt_data();
    void resetAt();
    void missingField_data();
    void missingField();
    void unknownFieldsAreIgnored();
    void emptyObject();
};

void QuotaInfoTest::unavailableByDefault()
{
    const QuotaInfo info;
    QCOMPARE(info.state, QuotaInfo::State::Unavailable);
    QVERIFY(!info.enabled && !info.unlimited && !info.allowRedownload);
    QVERIFY(info.period.isEmpty());
    QCOMPARE(info.limit, 0);
    QCOMPARE(info.used, 0);
    QCOMPARE(info.remaining, 0);
    QVERIFY(!info.resetAt.isValid());
}

void QuotaInfoTest::goodReplyIsReadWhole()
{
    const QuotaInfo info = parseQuota(quota());
    QCOMPARE(info.state, QuotaInfo::State::Loaded);
    QVERIFY(info.enabled);
    QVERIFY(!info.unlimited);
    QVERIFY(info.allowRedownload);
    QCOMPARE(info.period, u"daily"_s);
    QCOMPARE(info.limit, MaximumCount);
    QCOMPARE(info.used, 3);
    QCOMPARE(info.remaining, 7);
    QCOMPARE(info.resetAt, QDateTime(QDate(2026, 1, 2), QTime(0, 0), QTimeZone::UTC));
    QCOMPARE(info.resetAt.timeSpec(), Qt::UTC);
}

void QuotaInfoTest::disabledNeedsNoPeriodLimitOrRemaining()
{
    const QuotaInfo info =
        parseQuota(quota({{"enabled", "false"}, {"period", ""}, {"limit", ""}, {"remaining", ""}}));
    QCOMPARE(info.state, QuotaInfo::State::Loaded);
    QVERIFY(!info.enabled);
}

void QuotaInfoTest::unlimitedIgnoresPeriodLimitAndRemaining()
{
    const QuotaInfo info = parseQuota(
        quota({{"unlimited", "true"}, {"period", "\"never\""}, {"limit", "-1"}, {"remaining", "\"x\""}}));
    QCOMPARE(info.state, QuotaInfo::State::Loaded);
    QVERIFY(info.unlimited);
    QVERIFY(info.period.isEmpty());
    QCOMPARE(info.limit, 0);
    QCOMPARE(info.remaining, 0);
}

void QuotaInfoTest::disabledIgnoresHostilePeriodLimitAndRemaining()
{
    const QuotaInfo info = parseQuota(
        quota({{"enabled", "false"}, {"period", "[]"}, {"limit", "1e308"}, {"remaining", "9e99"}}));
    QCOMPARE(info.state, QuotaInfo::State::Loaded);
    QCOMPARE(info.limit, 0);
    QCOMPARE(info.remaining, 0);
}

void QuotaInfoTest::usedMayExceedTheLimit()
{
    const QuotaInfo info = parseQuota(quota({{"limit", "5"}, {"remaining", "0"}, {"used", "6"}}));
    QCOMPARE(info.state, QuotaInfo::State::Loaded);
    QCOMPARE(info.used, 6);
}

/// Each field with a value of each kind; good are those listed for the field.
void QuotaInfoTest::everyTypeInEveryField_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("good");
    const QByteArrayList values{
        "null", "true",       "false", "\"\"", "\"9\"", "\"true\"", "-1",        "0",
        "1.5",  "2147483648", "1e300", "[]",   "{}",    "[1]",      "{\"a\":1}", "9223372036854775808"};
    const QList<std::pair<QByteArray, QByteArrayList>> fields{{"success", {"true"}},
                                                              {"enabled", {"true", "false"}},
                                                              {"unlimited", {"true", "false"}},
                                                              {"allow_redownload", {"true", "false"}},
                                                              {"used", {"0", "2147483648"}},
                                                              {"reset_at", {"null"}},
                                                              {"period", {}},
                                                              {"limit", {"2147483648"}},
                                                              {"remaining", {"0", "2147483648"}}};
    for (const auto &[field, good] : fields) {
        for (const QByteArray &value : values)
            QTest::addRow("%s %s", field.constData(), value.constData())
                << field << value << good.contains(value);
    }
}

void QuotaInfoTest::everyTypeInEveryField()
{
    QFETCH(const QByteArray, field);
    QFETCH(const QByteArray, value);
    QFETCH(const bool, good);
    const QuotaInfo info = parseQuota(quota({{field, value}}));
    if (good)
        QCOMPARE(info.state, QuotaInfo::State::Loaded);
    else
        QCOMPARE(info, QuotaInfo());
}

void QuotaInfoTest::counts_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<qint64>("number"); // -1: refused
    const auto add = [](const QByteArray &value, qint64 number) {
        QTest::addRow("%s", value.constData()) << value << number;
    };
    add("0", 0);
    add("-0", 0);
    add("-0.0", 0);
    add("0e0", 0);
    add("1", 1);
    add("3.0", 3);
    add("1e3", 1000);
    add("4294967296", 4294967296);
    add("9007199254740990", MaximumCount - 1);
    add("9007199254740991", MaximumCount);
    add("9007199254740991.0", MaximumCount);
    add("9007199254740992", -1);
    add("9007199254740993", -1);
    add("9007199254740992.0", -1);
    add("9223372036854775807", -1);
    add("9223372036854775808", -1);
    add("18446744073709551616", -1);
    add("1e300", -1);
    add("1e308", -1);
    add("-1e308", -1);
    add("-1", -1);
    add("-9007199254740991", -1);
    add("3.5", -1);
    add("0.1", -1);
    add("-0.5", -1);
    add("1e-300", -1);
    add("5e-324", -1);
    add("4503599627370495.5", -1);
    add("\"3\"", -1);
}

void QuotaInfoTest::counts()
{
    QFETCH(const QByteArray, value);
    QFETCH(const qint64, number);
    const QuotaInfo used = parseQuota(quota({{"used", value}}));
    const QuotaInfo limit = parseQuota(quota({{"limit", value}, {"remaining", "0"}}));
    const QuotaInfo remaining = parseQuota(quota({{"remaining", value}}));
    if (number < 0) {
        for (const QuotaInfo &info : {used, limit, remaining})
            QCOMPARE(info, QuotaInfo());
        return;
    }
    for (const QuotaInfo &info : {used, limit, remaining})
        QCOMPARE(info.state, QuotaInfo::State::Loaded);
    QCOMPARE(used.used, number);
    QCOMPARE(limit.limit, number);
    QCOMPARE(remaining.remaining, number);
}

void QuotaInfoTest::periods_data()
{
    QTest::addColumn<QByteArray>("period");
    QTest::addColumn<bool>("good");
    for (const char *period : {"daily", "weekly", "monthly"})
        QTest::newRow(period) << QByteArray(period) << true;
    for (const char *period : {"Daily", "DAILY", "daily ", " daily", "yearly", "dail", "dailyy", ""})
        QTest::addRow("'%s'", period) << QByteArray(period) << false;
}

void QuotaInfoTest::periods()
{
    QFETCH(const QByteArray, period);
    QFETCH(const bool, good);
    const QuotaInfo info = parseQuota(quota({{"period", '"' + period + '"'}}));
    QCOMPARE(info.state, good ? QuotaInfo::State::Loaded : QuotaInfo::State::Unavailable);
    QCOMPARE(info.period, good ? QString::fromLatin1(period) : QString());
}

void QuotaInfoTest::remainingAgainstLimit_data()
{
    QTest::addColumn<QByteArray>("remaining");
    QTest::addColumn<QByteArray>("limit");
    QTest::addColumn<bool>("good");
    const auto add = [](const QByteArray &remaining, const QByteArray &limit, bool good) {
        QTest::addRow("%s of %s", remaining.constData(), limit.constData()) << remaining << limit << good;
    };
    add("6", "5", false);
    add("5", "5", true);
    add("4", "5", true);
    add("0", "0", true);
    add("1", "0", false);
    add("9007199254740991", "9007199254740991", true);
    add("9007199254740991", "9007199254740990", false);
}

void QuotaInfoTest::remainingAgainstLimit()
{
    QFETCH(const QByteArray, remaining);
    QFETCH(const QByteArray, limit);
    QFETCH(const bool, good);
    const QuotaInfo info = parseQuota(quota({{"remaining", remaining}, {"limit", limit}}));
    QCOMPARE(info.state, good ? QuotaInfo::State::Loaded : QuotaInfo::State::Unavailable);
}

void QuotaInfoTest::resetAt_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("good");
    QTest::addColumn<QDateTime>("time");
    const QDateTime newYear(QDate(2026, 1, 1), QTime(0, 0), QTimeZone::UTC);
    const auto good = [](const QByteArray &value, const QDateTime &time) {
        QTest::addRow("%s", value.constData()) << value << true << time;
    };
    const auto bad = [](const char *value) {
        QTest::newRow(value) << QByteArray(value) << false << QDateTime();
    };
    good("\"2026-01-01T00:00:00.000Z\"", newYear);
    good("\"2026-01-01T00:00:00Z\"", newYear);
    good("\"2026-01-01T03:30:00+03:30\"", newYear);
    good("\"2025-12-31T23:00:00.500-01:00\"", newYear.addMSecs(500));
    good("\"2026-01-01T00:00:00\"", QDateTime(QDate(2026, 1, 1), QTime(0, 0)).toUTC());
    good("null", {});
    for (const char *value :
         {"0", "1767225600", "true", "[]", "{}", "\"\"", "\"tomorrow\"", "\"1767225600\"",
          "\"2026-13-01T00:00:00Z\"", "\"2026-02-30T00:00:00Z\"", "\"2026-01-01T25:00:00Z\"",
          "\"2026-01-01T00:00:00Zjunk\"", "\"Thu, 01 Jan 2026 00:00:00 GMT\""})
        bad(value);
}

void QuotaInfoTest::resetAt()
{
    QFETCH(const QByteArray, value);
    QFETCH(const bool, good);
    QFETCH(const QDateTime, time);
    const QuotaInfo info = parseQuota(quota({{"reset_at", value}}));
    QCOMPARE(info.state, good ? QuotaInfo::State::Loaded : QuotaInfo::State::Unavailable);
    QCOMPARE(info.resetAt, time);
    if (time.isValid())
        QCOMPARE(info.resetAt.timeSpec(), Qt::UTC);
}

void QuotaInfoTest::missingField_data()
{
    QTest::addColumn<bool>("good");
    for (const char *field :
         {"success", "enabled", "unlimited", "allow_redownload", "used", "period", "limit", "remaining"})
        QTest::newRow(field) << false;
    QTest::newRow("reset_at") << true;
}

void QuotaInfoTest::missingField()
{
    QFETCH(const bool, good);
    const QuotaInfo info = parseQuota(quota({{QTest::currentDataTag(), ""}}));
    QCOMPARE(info.state, good ? QuotaInfo::State::Loaded : QuotaInfo::State::Unavailable);
}

void QuotaInfoTest::unknownFieldsAreIgnored()
{
    const QJsonObject object = quota({{"bonus", "[1,2,{}]"}, {"Remaining", "99"}});
    QCOMPARE(parseQuota(object), parseQuota(quota()));
}

void QuotaInfoTest::emptyObject()
{
    QCOMPARE(parseQuota({}), QuotaInfo());
}

QTEST_GUILESS_MAIN(QuotaInfoTest)
#include "quota_info_test.moc"
