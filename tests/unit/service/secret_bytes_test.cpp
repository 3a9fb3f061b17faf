#include "service/secret_bytes.h"

#include "given_back_arrays.h"

#include <QTest>

#include <algorithm>
#include <vector>

using quillmar::SecretBytes;
using quillmar::test::GivenBackArrays;

namespace
{

constexpr QByteArrayView Marker("a secret that nobody may find");

} // namespace

class SecretBytesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textSurvivesTheWayThroughUtf8_data();
    void textSurvivesTheWayThroughUtf8();
    void halfOfASurrogatePairBecomesTheReplacement();
    void movingLeavesNothingBehind();
    void shrinkingNeverGrows();
    void memoryIsOverwritten();
    void isOverwrittenBeforeItIsGivenBack_data();
    void isOverwrittenBeforeItIsGivenBack();
};

void SecretBytesTest::textSurvivesTheWayThroughUtf8_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("ASCII") << QStringLiteral("token");
    QTest::newRow("Persian") << QStringLiteral("رمز");
    QTest::newRow("beyond the basic plane") << QStringLiteral("😀");
    QTest::newRow("NUL") << QStringLiteral("a") + QChar(0) + QStringLiteral("b");
    QTest::newRow("CR LF") << QStringLiteral("a\r\nb");
    QTest::newRow("byte order mark first") << QChar(0xfeff) + QStringLiteral("a");
    QTest::newRow("nothing but a byte order mark") << QString(QChar(0xfeff));
    QTest::newRow("one megabyte") << QString(1024 * 1024, u'x');
}

void SecretBytesTest::textSurvivesTheWayThroughUtf8()
{
    QFETCH(const QString, text);
    const SecretBytes bytes = SecretBytes::fromText(text);
    QCOMPARE(bytes.view(), text.toUtf8());
    QCOMPARE(bytes.toText(), text);
}

void SecretBytesTest::halfOfASurrogatePairBecomesTheReplacement()
{
    QCOMPARE(SecretBytes::fromText(QString(QChar(0xd800))).toText(), QString(QChar(0xfffd)));
}

void SecretBytesTest::movingLeavesNothingBehind()
{
    SecretBytes first(QByteArrayView("secret"));
    SecretBytes second(std::move(first));
    QCOMPARE(second.view(), QByteArrayView("secret"));
    SecretBytes third(QByteArrayView("other"));
    third = std::move(second);
    QCOMPARE(third.view(), QByteArrayView("secret"));
}

void SecretBytesTest::shrinkingNeverGrows()
{
    SecretBytes bytes(QByteArrayView("secret"));
    bytes.shrink(3);
    QCOMPARE(bytes.view(), QByteArrayView("sec"));
    bytes.shrink(6);
    QCOMPARE(bytes.size(), 3);
}

void SecretBytesTest::memoryIsOverwritten()
{
    std::vector<char> memory(1000, 'x');
    quillmar::overwriteMemory(memory.data(), memory.size());
    QCOMPARE(std::count(memory.cbegin(), memory.cend(), 'x'), 0);
}

void SecretBytesTest::isOverwrittenBeforeItIsGivenBack_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("copied") << 0;
    QTest::newRow("made of text") << 1;
    QTest::newRow("moved away") << 2;
    QTest::newRow("replaced") << 3;
    QTest::newRow("shrunk") << 4;
}

void SecretBytesTest::isOverwrittenBeforeItIsGivenBack()
{
    QFETCH(const int, way);
    const GivenBackArrays arrays(Marker);
    GivenBackArrays::giveBack(Marker);
    QCOMPARE(arrays.count(), 1);
    {
        SecretBytes secret =
            way == 1 ? SecretBytes::fromText(QString::fromLatin1(Marker)) : SecretBytes(Marker);
        SecretBytes other(QByteArrayView("other"));
        if (way == 2) {
            other = std::move(secret);
        } else if (way == 3) {
            secret = std::move(other);
        } else if (way == 4) {
            secret.shrink(1);
        }
    }
    QCOMPARE(arrays.count(), 1);
}

QTEST_GUILESS_MAIN(SecretBytesTest)
#include "secret_bytes_test.moc"
