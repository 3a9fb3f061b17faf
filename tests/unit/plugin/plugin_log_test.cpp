#include "plugin/plugin_log.h"
#include "tests/support/libobs_fake/libobs_fake.h"

#include <QTest>

using namespace quillmar;

class PluginLogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLineBeginsWithTheModuleNameInBracketsAndOneBlank_data();
    void everyLineBeginsWithTheModuleNameInBracketsAndOneBlank();
    void percentSignsInAnArgumentAreNoFormat();
    void longLinesArriveWhole();
};

void PluginLogTest::everyLineBeginsWithTheModuleNameInBracketsAndOneBlank_data()
{
    QTest::addColumn<int>("level");
    QTest::newRow("error") << 100;
    QTest::newRow("warning") << 200;
    QTest::newRow("info") << 300;
    QTest::newRow("debug") << 400;
}

void PluginLogTest::everyLineBeginsWithTheModuleNameInBracketsAndOneBlank()
{
    QFETCH(int, level);
    test::LibobsFake obs;
    pluginLog(static_cast<LogLevel>(level), "HTTP %d, %s", 418, "tea");
    QCOMPARE(obs.log().size(), 1);
    QCOMPARE(obs.log().constFirst().level, level);
    QCOMPARE(obs.log().constFirst().text, QStringLiteral("[quillmar-obs-plugin] HTTP 418, tea"));
}

void PluginLogTest::percentSignsInAnArgumentAreNoFormat()
{
    test::LibobsFake obs;
    pluginLog(LogLevel::Info, "%s", "100% %n %s");
    QCOMPARE(obs.log().constFirst().text, QStringLiteral("[quillmar-obs-plugin] 100% %n %s"));
}

void PluginLogTest::longLinesArriveWhole()
{
    test::LibobsFake obs;
    const QByteArray text(100'000, 'x');
    pluginLog(LogLevel::Info, "%s", text.constData());
    QCOMPARE(obs.log().constFirst().text,
             QStringLiteral("[quillmar-obs-plugin] ") + QString::fromLatin1(text));
}

QTEST_GUILESS_MAIN(PluginLogTest)
#include "plugin_log_test.moc"
