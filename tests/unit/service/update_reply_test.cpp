#include "service/routes.h"
#include "service/update_info.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillmar;

namespace
{

QJsonObject goodObject()
{
    return {{u"latest_version"_s, u"0.2.0"_s},
            {u"download_url"_s, QString(u"https://"_s + routes::serviceHost() + u"/get"_s)},
            {u"required"_s, true},
            {u"release_notes"_s, u"Better."_s}};
}

QByteArray with(const QString &key, const QJsonValue &value)
{
    QJsonObject object = goodObject();
    object.insert(key, value);
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray ofSize(qsizetype size)
{
    const QByteArray body = QJsonDocument(goodObject()).toJson(QJsonDocument::Compact);
    return body + QByteArray(size - body.size(), ' ');
}

} // namespace

/// Reading the reply of the version route.
class UpdateReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goodReplyIsReadWhole();
    void versions_data();
    void versions();
    void versionsCompareByNumber();
    void invalidVersionInvalidatesTheReply_data();
    void invalidVersionInvalidatesTheReply();
    void versionOfAnotherType_data();
    void versionOfAnotherType();
    void addresses_data();
    void addresses();
    void required_data();
    void required();
    void releaseNotes_data();
    void releaseNotes();
    void notesAreNeverCutInsideAPair();
    void bodies_data();
    void bodies();
};

void UpdateReplyTest::goodReplyIsReadWhole()
{
    const auto info = parseUpdateReply(QJsonDocument(goodObject()).toJson());
    QVERIFY(info);
    QCOMPARE(info->latestVersion, u"0.2.0"_s);
    QCOMPARE(info->downloadUrl, QUrl(QString(u"https://"_s + routes::serviceHost() + u"/get"_s)));
    QVERIFY(info->required);
    QCOMPARE(info->releaseNotes, u"Better."_s);
}

void UpdateReplyTest::versions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    const auto add = [](const QString &text, bool valid) {
        QTest::addRow("'%s'", qUtf8Printable(text)) << text << valid;
    };
    for (const char16_t *text : {u"0.0.0", u"0.1.3", u"0.1.10", u"10.20.30",
                                 u"18446744073709551615.18446744073709551615.18446744073709551615"})
        add(QString(text), true);
    for (const char16_t *text : {u"",
                                 u"0",
                                 u"0.2",
                                 u"0.2.",
                                 u".0.2",
                                 u"0..2",
                                 u"0.2.0.1",
                                 u"v0.2.0",
                                 u"0.02.0",
                                 u"00.2.0",
                                 u"0.2.00",
                                 u"0.2.0-beta",
                                 u"0.2.0+1",
                                 u"0.2.0 ",
                                 u" 0.2.0",
                                 u"0.2.0\n",
                                 u"\n0.2.0",
                                 u"0.2.0\r\n",
                                 u"+0.2.0",
                                 u"-0.2.0",
                                 u"0,2,0",
                                 u"0.2.x",
                                 u"0x1.2.0",
                                 u"1e3.0.0",
                                 u"۰.۲.۰",
                                 u"0.２.0",
                                 u"0.2.0\u200f",
                                 u"18446744073709551616.0.0",
                                 u"0.18446744073709551616.0",
                                 u"0.0.18446744073709551616",
                                 u"0.0.99999999999999999999999999"})
        add(QString(text), false);
    QTest::newRow("NUL at the end") << QString(u"0.2.0"_s + QChar(0)) << false;
    QTest::newRow("60,000 digits") << QString(u"0.2."_s + QString(60'000, u'9')) << false;
}

void UpdateReplyTest::versions()
{
    QFETCH(const QString, text);
    QFETCH(const bool, valid);
    QCOMPARE(parseVersion(text).has_value(), valid);
}

void UpdateReplyTest::versionsCompareByNumber()
{
    QCOMPARE(parseVersion(u"1.2.3"_s), (Version{1, 2, 3}));
    QVERIFY(*parseVersion(u"0.1.10"_s) > *parseVersion(u"0.1.3"_s));
    QVERIFY(*parseVersion(u"0.10.0"_s) > *parseVersion(u"0.9.9"_s));
    QVERIFY(*parseVersion(u"1.0.0"_s) > *parseVersion(u"0.99.99"_s));
    QVERIFY(*parseVersion(u"18446744073709551615.0.0"_s) > *parseVersion(u"9223372036854775808.0.0"_s));
}

void UpdateReplyTest::invalidVersionInvalidatesTheReply_data()
{
    versions_data();
}

void UpdateReplyTest::invalidVersionInvalidatesTheReply()
{
    QFETCH(const QString, text);
    QFETCH(const bool, valid);
    const auto info = parseUpdateReply(with(u"latest_version"_s, text));
    QCOMPARE(info.has_value(), valid);
    if (valid)
        QCOMPARE(info->latestVersion, text);
}

void UpdateReplyTest::versionOfAnotherType_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("null") << QJsonValue();
    QTest::newRow("number") << QJsonValue(2);
    QTest::newRow("bool") << QJsonValue(true);
    QTest::newRow("array") << QJsonValue(QJsonArray{u"0.2.0"_s});
    QTest::newRow("object") << QJsonValue(QJsonObject{{u"0"_s, u"0.2.0"_s}});
    QTest::newRow("absent") << QJsonValue(QJsonValue::Undefined);
}

void UpdateReplyTest::versionOfAnotherType()
{
    QFETCH(const QJsonValue, value);
    QVERIFY(!parseUpdateReply(with(u"latest_version"_s, value)));
}

/// HOST stands for the service host. A refused address leaves the rest of the reply as it is.
void UpdateReplyTest::addresses_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<bool>("kept");
    const auto add = [](const char *text, bool kept) {
        QTest::newRow(text) << QJsonValue(QString::fromUtf8(text)) << kept;
    };
    add("https://HOST/get", true);
    add("https://HOST:443/get", true);
    add("HTTPS://HOST/get?x=1#y", true);
    for (const char *text : {"http://HOST/get",
                             "ftp://HOST/get",
                             "file:///etc/passwd",
                             "javascript:alert(1)",
                             "//HOST/get",
                             "/get",
                             "",
                             "https://HOST:444/get",
                             "https://HOST:80/get",
                             "https://HOST:99999/get",
                             "https://HOST@evil.example/",
                             "https://user@HOST/get",
                             "https://user:pw@HOST/get",
                             "https://HOST.evil.example/",
                             "https://www.HOST/",
                             "https://evil.example/HOST",
                             "https://evil.example#@HOST/",
                             "https://evil.example\\@HOST/",
                             "https://HOST%2eevil.example/",
                             "https://quillm\xD0\xB0r.example/",
                             "https://[::1]/get",
                             "https://HOST/a b",
                             "https://HOST/%zz",
                             "https:HOST/get"})
        add(text, false);
    QTest::newRow("null") << QJsonValue() << false;
    QTest::newRow("number") << QJsonValue(443) << false;
    QTest::newRow("array") << QJsonValue(QJsonArray{u"https://HOST/"_s}) << false;
    QTest::newRow("absent") << QJsonValue(QJsonValue::Undefined) << false;
}

void UpdateReplyTest::addresses()
{
    QFETCH(QJsonValue, value);
    QFETCH(const bool, kept);
    if (value.isString())
        value = value.toString().replace(u"HOST"_s, routes::serviceHost());
    const auto info = parseUpdateReply(with(u"download_url"_s, value));
    QVERIFY(info);
    QCOMPARE(info->latestVersion, u"0.2.0"_s);
    QCOMPARE(info->downloadUrl.isEmpty(), !kept);
}

void UpdateReplyTest::required_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<bool>("expected");
    QTest::newRow("true") << QJsonValue(true) << true;
    QTest::newRow("false") << QJsonValue(false) << false;
    QTest::newRow("text") << QJsonValue(u"true"_s) << false;
    QTest::newRow("one") << QJsonValue(1) << false;
    QTest::newRow("null") << QJsonValue() << false;
    QTest::newRow("absent") << QJsonValue(QJsonValue::Undefined) << false;
}

void UpdateReplyTest::required()
{
    QFETCH(const QJsonValue, value);
    QFETCH(const bool, expected);
    const auto info = parseUpdateReply(with(u"required"_s, value));
    QVERIFY(info);
    QCOMPARE(info->required, expected);
}

void UpdateReplyTest::releaseNotes_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<qsizetype>("length");
    for (const int length : {0, 1, 1999, 2000})
        QTest::addRow("%d units", length) << QJsonValue(QString(length, u'n')) << qsizetype(length);
    for (const int length : {2001, 2500, 60'000})
        QTest::addRow("%d units, cut", length) << QJsonValue(QString(length, u'n')) << qsizetype(2000);
    QTest::newRow("number") << QJsonValue(5) << qsizetype(0);
    QTest::newRow("null") << QJsonValue() << qsizetype(0);
    QTest::newRow("array") << QJsonValue(QJsonArray{u"n"_s}) << qsizetype(0);
    QTest::newRow("absent") << QJsonValue(QJsonValue::Undefined) << qsizetype(0);
}

void UpdateReplyTest::releaseNotes()
{
    QFETCH(const QJsonValue, value);
    QFETCH(const qsizetype, length);
    const auto info = parseUpdateReply(with(u"release_notes"_s, value));
    QVERIFY(info);
    QCOMPARE(info->releaseNotes, QString(length, u'n'));
}

void UpdateReplyTest::notesAreNeverCutInsideAPair()
{
    const QString notes = QString(1999, u'n') + u"\U0001F600 and more"_s;
    const auto info = parseUpdateReply(with(u"release_notes"_s, notes));
    QVERIFY(info);
    QCOMPARE(info->releaseNotes, QString(1999, u'n'));
}

void UpdateReplyTest::bodies_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("valid");
    const QByteArray good = QJsonDocument(goodObject()).toJson();
    QTest::newRow("good") << good << true;
    QTest::newRow("65536 bytes") << ofSize(65536) << true;
    QTest::newRow("65537 bytes") << ofSize(65537) << false;
    QTest::newRow("70000 bytes") << ofSize(70000) << false;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("HTML") << QByteArray("<html>Sorry</html>") << false;
    QTest::newRow("cut off") << good.chopped(3) << false;
    QTest::newRow("array around it") << QByteArray('[' + good + ']') << false;
    QTest::newRow("text") << QByteArray("\"0.2.0\"") << false;
    QTest::newRow("null") << QByteArray("null") << false;
    QTest::newRow("empty object") << QByteArray("{}") << false;
    QTest::newRow("trailing text") << QByteArray(good + "x") << false;
    QTest::newRow("deep nesting") << QByteArray(65536, '[') << false;
}

void UpdateReplyTest::bodies()
{
    QFETCH(const QByteArray, body);
    QFETCH(const bool, valid);
    QCOMPARE(parseUpdateReply(body).has_value(), valid);
}

QTEST_GUILESS_MAIN(UpdateReplyTest)
#include "update_reply_test.moc"
