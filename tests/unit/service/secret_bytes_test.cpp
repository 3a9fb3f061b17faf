#include "service/secret_bytes.h"

#include <QTest>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

#include <malloc.h>

using quillmar::SecretBytes;

namespace
{

constexpr char Marker[] = "a secret that nobody may find";
int markersGivenBack = 0;

void inspect(const void *memory)
{
    const QByteArrayView bytes(static_cast<const char *>(memory),
                               static_cast<qsizetype>(::malloc_usable_size(const_cast<void *>(memory))));
    // Its end, which is the last to be overwritten.
    markersGivenBack += bytes.contains(QByteArrayView(Marker).last(8)) ? 1 : 0;
}

} // namespace

// Whatever this program gives back as an array is looked at before.
void *operator new[](std::size_t size)
{
    void *memory = std::calloc(1, size == 0 ? 1 : size);
    if (memory == nullptr) {
        std::abort();
    }
    return memory;
}

void operator delete[](void *memory) noexcept
{
    if (memory != nullptr) {
        inspect(memory);
    }
    std::free(memory);
}

void operator delete[](void *memory, std::size_t) noexcept
{
    operator delete[](memory);
}

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
    markersGivenBack = 0;
    {
        const auto plain = std::make_unique<char[]>(sizeof(Marker));
        std::copy_n(Marker, sizeof(Marker), plain.get());
        // A copy that is read by nobody is left out by an optimising compiler.
        asm volatile("" : : "r"(plain.get()) : "memory");
    }
    QCOMPARE(markersGivenBack, 1);
    {
        SecretBytes secret = way == 1 ? SecretBytes::fromText(QString::fromLatin1(Marker))
                                      : SecretBytes(QByteArrayView(Marker));
        SecretBytes other(QByteArrayView("other"));
        if (way == 2) {
            other = std::move(secret);
        } else if (way == 3) {
            secret = std::move(other);
        } else if (way == 4) {
            secret.shrink(1);
        }
    }
    QCOMPARE(markersGivenBack, 1);
}

QTEST_GUILESS_MAIN(SecretBytesTest)
#include "secret_bytes_test.moc"
