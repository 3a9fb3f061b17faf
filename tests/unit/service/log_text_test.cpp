#include "service/log_text.h"

#include <QTest>

using quillmar::logText;

class LogTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void texts_data();
    void texts();
};

void LogTextTest::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("logged");
    const QString ellipsis(QChar(0x2026));
    const QString face = QStringLiteral("😀");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("ordinary code") << QStringLiteral("country_not_allowed")
                                   << QStringLiteral("country_not_allowed");
    QTest::newRow("Persian") << QStringLiteral("خطا") << QStringLiteral("خطا");
    QTest::newRow("blanks") << QStringLiteral(" a b ") << QStringLiteral(" a b ");
    QTest::newRow("placeholders") << QStringLiteral("%1 %s %n") << QStringLiteral("%1 %s %n");
    QTest::newRow("line breaks") << QStringLiteral("a\r\nb\u2028c\u2029d\u0085e")
                                 << QStringLiteral("a??b?c?d?e");
    QTest::newRow("tab and escape") << QStringLiteral("a\tb\x1b[0m") << QStringLiteral("a?b?[0m");
    QTest::newRow("NUL") << QStringLiteral("a") + QChar(0) + QStringLiteral("b") << QStringLiteral("a?b");
    QTest::newRow("bidi override") << QStringLiteral("a\u202Eb\u2066c") << QStringLiteral("a?b?c");
    QTest::newRow("half a pair") << QStringLiteral("a") + QChar(0xD800) + QStringLiteral("b")
                                 << QStringLiteral("a\uFFFDb");
    QTest::newRow("120") << QString(120, QLatin1Char('x')) << QString(120, QLatin1Char('x'));
    QTest::newRow("121") << QString(121, QLatin1Char('x'))
                         << QString(QString(120, QLatin1Char('x')) + ellipsis);
    QTest::newRow("120 pairs") << face.repeated(120) << face.repeated(120);
    QTest::newRow("121 pairs") << face.repeated(121) << QString(face.repeated(120) + ellipsis);
    QTest::newRow("very long") << QString(1'000'000, QLatin1Char('x'))
                               << QString(QString(120, QLatin1Char('x')) + ellipsis);
}

void LogTextTest::texts()
{
    QFETCH(const QString, text);
    QFETCH(const QString, logged);
    QCOMPARE(logText(text), logged);
}

QTEST_GUILESS_MAIN(LogTextTest)
#include "log_text_test.moc"
