#include "update_fixture.h"

#include "service/update_cache.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

/// The settings file between two runs, whoever wrote it.
class UpdateSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAPathNothingIsReadOrWritten();
    void otherSettingsStay();
    void everyByteOfTheAnswerIsKept();
    void hostileResponse_data();
    void hostileResponse();
    void responseWrittenAsTextIsGood();
    void hostileTimes_data();
    void hostileTimes();
    void noiseInsteadOfSettings();
    void streamedValueIsNotRead_data();
    void streamedValueIsNotRead();
    void answerThatWouldSpoilTheFileIsNotKept();
    void tooLargeResponseIsDropped();
    void hugeFileIsLeftAlone();
    void folderInPlaceOfTheFile();
    void unwritableSettingsAreLogged();
    void unwritableSettingsDoNotStopTheChecks();
    void twoCheckersOnOneFileAskOnce();
};

void UpdateSettingsTest::withoutAPathNothingIsReadOrWritten()
{
    UpdateFixture f;
    f.path.clear();
    f.restart();
    f.checker->start();
    QVERIFY(f.isAsking());
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(f.log, QStringList());
    QVERIFY(QDir(f.folder.path()).isEmpty());
}

void UpdateSettingsTest::otherSettingsStay()
{
    UpdateFixture f;
    f.writeSettings("[General]\nlanguage=en-US\n[Other]\nx=1\n");
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    const QSettings settings(f.path, QSettings::IniFormat);
    QCOMPARE(settings.value("language").toString(), u"en-US"_s);
    QCOMPARE(settings.value("Other/x").toInt(), 1);
    QCOMPARE(settings.value("Updates/lastSuccess").toLongLong(), f.now);
}

void UpdateSettingsTest::everyByteOfTheAnswerIsKept()
{
    UpdateFixture f;
    const QByteArray body = "\r\n{\"latest_version\":\"0.2.0\", \"release_notes\":\"نسخه; = \\u0000 %41 "
                            "@Variant \xF0\x9F\x98\x80\"}\n";
    f.answer(TlsService::response(200, body));
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 1);
    const UpdateCache cache = loadUpdateCache(f.path);
    QCOMPARE(cache.response, body);
    QCOMPARE(cache.lastSuccess, f.now);
    QCOMPARE(cache.lastAttempt, f.now);
}

void UpdateSettingsTest::hostileResponse_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("hello");
    QTest::newRow("number") << QByteArray("5");
    QTest::newRow("list") << QByteArray("a, b, c");
    QTest::newRow("list of answers") << QByteArray("\"{\\\"latest_version\\\":\\\"0.2.0\\\"}\", b");
    QTest::newRow("no JSON in bytes") << QByteArray("@ByteArray(nothing)");
    QTest::newRow("bad version") << QByteArray("@ByteArray({\\\"latest_version\\\": \\\"9\\\"})");
    QTest::newRow("variant cut off") << QByteArray("@Variant(\\0\\0\\0\\t)");
    QTest::newRow("variant of huge bytes") << QByteArray("@Variant(\\0\\0\\0\\f\\0\\x7f\\xff\\xff\\xff)");
    QTest::newRow("rectangle") << QByteArray("@Rect(1 2 3 4)");
    QTest::newRow("invalid") << QByteArray("@Invalid()");
}

void UpdateSettingsTest::hostileResponse()
{
    QFETCH(const QByteArray, value);
    UpdateFixture f;
    const QByteArray time = QByteArray::number(f.now - 2 * Hour);
    f.writeSettings("[Updates]\nresponse=" + value + "\nlastSuccess=" + time + "\nlastAttempt=" + time +
                    '\n');
    f.checker->start();
    QCOMPARE(f.results.size(), 0);
    QVERIFY(f.isAsking());
    QTRY_COMPARE(f.results.size(), 1);
}

void UpdateSettingsTest::responseWrittenAsTextIsGood()
{
    UpdateFixture f;
    const QByteArray time = QByteArray::number(f.now - 2 * Hour);
    f.writeSettings("[Updates]\nresponse=\"{\\\"latest_version\\\":\\\"0.4.0\\\"}\"\nlastSuccess=" + time +
                    '\n');
    f.checker->start();
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(f.results.first().info.latestVersion, u"0.4.0"_s);
    QVERIFY(!f.isAsking());
}

void UpdateSettingsTest::hostileTimes_data()
{
    QTest::addColumn<QByteArray>("value");
    for (const char *value : {"", "soon", "-5", "-9223372036854775808", "9223372036854775807",
                              "9223372036854775808", "1e300", "1.5e9", "nan", "inf", "1700000000, 1700000001",
                              "0x7fffffff", "true", "@ByteArray()", "@Invalid()"})
        QTest::newRow(value) << QByteArray(value);
}

void UpdateSettingsTest::hostileTimes()
{
    QFETCH(const QByteArray, value);
    UpdateFixture f;
    f.writeSettings("[Updates]\nresponse=\"{\\\"latest_version\\\":\\\"0.2.0\\\"}\"\nlastSuccess=" + value +
                    "\nlastAttempt=" + value + '\n');
    f.checker->start();
    QCOMPARE(f.results.size(), 1);
    QVERIFY(f.isAsking());
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.delay(), Day);
    QCOMPARE(f.kept("lastSuccess").toLongLong(), f.now);
}

void UpdateSettingsTest::noiseInsteadOfSettings()
{
    UpdateFixture f;
    f.writeSettings(QByteArray("\0\xff[[[=\n[Updates\nresponse\n=\n", 27));
    f.checker->start();
    QVERIFY(f.isAsking());
    QTRY_COMPARE(f.results.size(), 1);
}

void UpdateSettingsTest::streamedValueIsNotRead_data()
{
    QTest::addColumn<QByteArray>("line");
    const QByteArray allMemory = "=@Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0\\0)";
    for (const char *key : {"response", "lastSuccess", "lastAttempt", "other"})
        QTest::addRow("list of any length in %s", key) << QByteArray(key + allMemory);
    QTest::newRow("number") << QByteArray(
        "lastSuccess=@Variant(\\0\\0\\0\\x6\\x7f\\xef\\xff\\xff\\xff\\xff\\xff\\xff)");
    QTest::newRow("no number") << QByteArray(
        "lastAttempt=@Variant(\\0\\0\\0\\x6\\x7f\\xf8\\0\\0\\0\\0\\0\\0)");
    QTest::newRow("in quotes") << QByteArray("response=\"@Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0\\0)\"");
    QTest::newRow("in a list") << QByteArray("response=a, @Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xf0\\0)");
    QTest::newRow("time") << QByteArray("lastSuccess=@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0\\0\\0%t\\xff)");
}

void UpdateSettingsTest::streamedValueIsNotRead()
{
    QFETCH(const QByteArray, line);
    UpdateFixture f;
    const QByteArray content = "[Updates]\n" + line + '\n';
    f.writeSettings(content);
    f.checker->start();
    QVERIFY(f.isAsking());
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(f.delay(), Day);
    QCOMPARE(f.log, QStringList{u"Could not save update-check cache"_s});
    QFile file(f.path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content);
}

/// It is shown in this run and not kept.
void UpdateSettingsTest::answerThatWouldSpoilTheFileIsNotKept()
{
    UpdateFixture f;
    const QByteArray body = R"#({"latest_version":"0.2.0","release_notes":"= @Variant(x)"})#";
    f.answer(TlsService::response(200, body));
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(f.log, QStringList{u"Could not save update-check cache"_s});
    QVERIFY(!f.kept("response").isValid());
    QCOMPARE(f.kept("lastAttempt").toLongLong(), f.now);
}

void UpdateSettingsTest::tooLargeResponseIsDropped()
{
    UpdateFixture f;
    f.keep(updateBody() + QByteArray(65537 - updateBody().size(), ' '), f.now - 5, f.now - 2 * Hour);
    f.checker->start();
    QCOMPARE(f.results.size(), 0);
    QVERIFY(f.isAsking());
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.kept("response").toByteArray(), updateBody());
}

void UpdateSettingsTest::hugeFileIsLeftAlone()
{
    UpdateFixture f;
    f.keep(updateBody() + QByteArray(100 * 1024 * 1024, ' '), f.now - 5, f.now - 5);
    const QFileInfo file(f.path);
    const qint64 size = file.size();
    f.checker->start();
    QCOMPARE(f.results.size(), 0);
    QVERIFY(f.isAsking());
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(f.log, QStringList{u"Could not save update-check cache"_s});
    QCOMPARE(QFileInfo(f.path).size(), size);
}

void UpdateSettingsTest::folderInPlaceOfTheFile()
{
    UpdateFixture f;
    QVERIFY(QDir().mkpath(f.path + u"/inside"_s));
    f.checker->start();
    QVERIFY(f.isAsking());
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.results.size(), 1);
    QCOMPARE(f.log, QStringList{u"Could not save update-check cache"_s});
    QVERIFY(QDir(f.path + u"/inside"_s).exists());
}

void UpdateSettingsTest::unwritableSettingsAreLogged()
{
    UpdateFixture f;
    f.writeSettings("not a folder");
    f.path += u"/settings.ini"_s;
    f.restart();
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.log, QStringList{u"Could not save update-check cache"_s});
    QCOMPARE(f.results.size(), 1);
    QVERIFY(f.results.first().available);
}

void UpdateSettingsTest::unwritableSettingsDoNotStopTheChecks()
{
    UpdateFixture f;
    f.writeSettings("not a folder");
    f.path += u"/settings.ini"_s;
    f.restart();
    f.checker->start();
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.delay(), Day);
    f.now += Day;
    f.checker->checkNow();
    QVERIFY(f.isAsking());
}

void UpdateSettingsTest::twoCheckersOnOneFileAskOnce()
{
    UpdateFixture f;
    const auto other = f.create();
    f.checker->start();
    other->start();
    QVERIFY(f.isAsking());
    QVERIFY(other->findChildren<QNetworkReply *>().isEmpty());
    QTRY_VERIFY(!f.isAsking());
    QCOMPARE(f.service.count("plugin-version"), 1);
    const auto third = f.create();
    third->start();
    QCOMPARE(f.results.size(), 2);
    QVERIFY(third->findChildren<QNetworkReply *>().isEmpty());
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::UpdateSettingsTest)
#include "update_settings_test.moc"
