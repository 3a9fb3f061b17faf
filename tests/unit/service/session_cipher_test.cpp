#include "service/session_cipher.h"

#include <QSet>
#include <QTest>

using namespace quillmar;
using namespace quillmar::session_cipher;

namespace
{

SecretBytes key(char fill = 'k')
{
    return SecretBytes(QByteArray(KeySize, fill));
}

QByteArray sealed(QByteArrayView plain)
{
    return seal(SecretBytes(plain), key());
}

} // namespace

class SessionCipherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opensWhatItSealed_data();
    void opensWhatItSealed();
    void layout();
    void everySealHasItsOwnNonce();
    void newKeysDiffer();
    void wrongKey();
    void keyOfAnotherSize_data();
    void keyOfAnotherSize();
    void everyFlippedBitIsNoticed_data();
    void everyFlippedBitIsNoticed();
    void everyCutIsNoticed();
    void surplusBytesAreNoticed();
    void foreignBytes_data();
    void foreignBytes();
};

void SessionCipherTest::opensWhatItSealed_data()
{
    QTest::addColumn<QByteArray>("plain");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray("x");
    QTest::newRow("NUL inside") << QByteArray("a\0b", 3);
    QTest::newRow("one block") << QByteArray(16, 'x');
    QTest::newRow("a token") << QByteArray(43, 't');
    QTest::newRow("one megabyte") << QByteArray(1024 * 1024, 't');
}

void SessionCipherTest::opensWhatItSealed()
{
    QFETCH(const QByteArray, plain);
    const QByteArray bytes = sealed(plain);
    QVERIFY(isSealed(bytes));
    const auto opened = open(bytes, key());
    QVERIFY(opened);
    QCOMPARE(opened->view(), plain);
}

void SessionCipherTest::layout()
{
    const QByteArray bytes = sealed("token");
    QCOMPARE(bytes.size(), HeaderSize + NonceSize + 5 + TagSize);
    QCOMPARE(bytes.first(8), QByteArray("QMsess\0\1", 8));
    QVERIFY(!bytes.contains("token"));
}

void SessionCipherTest::everySealHasItsOwnNonce()
{
    QSet<QByteArray> nonces;
    for (int i = 0; i < 1000; ++i) {
        nonces.insert(sealed("token").sliced(HeaderSize, NonceSize));
    }
    QCOMPARE(nonces.size(), 1000);
}

void SessionCipherTest::newKeysDiffer()
{
    const SecretBytes first = newKey();
    const SecretBytes second = newKey();
    QCOMPARE(first.size(), KeySize);
    QCOMPARE(second.size(), KeySize);
    QVERIFY(first.view() != second.view());
}

void SessionCipherTest::wrongKey()
{
    QVERIFY(!open(sealed("token"), key('x')));
}

void SessionCipherTest::keyOfAnotherSize_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, 16, 31, 33}) {
        QTest::addRow("%d bytes", size) << size;
    }
}

void SessionCipherTest::keyOfAnotherSize()
{
    QFETCH(const int, size);
    const SecretBytes odd(QByteArray(size, 'k'));
    QVERIFY(seal(SecretBytes(QByteArrayView("token")), odd).isEmpty());
    QVERIFY(!open(sealed("token"), odd));
}

void SessionCipherTest::everyFlippedBitIsNoticed_data()
{
    QTest::addColumn<QByteArray>("good");
    QTest::addColumn<qsizetype>("position");
    const QByteArray good = sealed("token.0123456789");
    for (qsizetype i = 0; i < good.size(); ++i) {
        const char *part = i < HeaderSize               ? "header"
                           : i < HeaderSize + NonceSize ? "nonce"
                           : i < good.size() - TagSize  ? "content"
                                                        : "tag";
        QTest::addRow("%s, byte %d", part, int(i)) << good << i;
    }
}

void SessionCipherTest::everyFlippedBitIsNoticed()
{
    QFETCH(const QByteArray, good);
    QFETCH(const qsizetype, position);
    QVERIFY(open(good, key()));
    for (int bit = 0; bit < 8; ++bit) {
        QByteArray damaged = good;
        damaged[position] = char(damaged.at(position) ^ (1 << bit));
        QVERIFY2(!open(damaged, key()), QByteArray::number(bit));
    }
}

void SessionCipherTest::everyCutIsNoticed()
{
    const QByteArray good = sealed("token");
    for (qsizetype size = 0; size < good.size(); ++size) {
        QVERIFY2(!open(good.first(size), key()), QByteArray::number(size));
        QVERIFY2(!open(good.last(size), key()), QByteArray::number(size));
    }
}

void SessionCipherTest::surplusBytesAreNoticed()
{
    const QByteArray good = sealed("token");
    for (const QByteArray &bytes : QList<QByteArray>{good + '\0', '\0' + good, good + good}) {
        QVERIFY(!open(bytes, key()));
    }
}

void SessionCipherTest::foreignBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("zeros") << QByteArray(100, '\0');
    QTest::newRow("text") << QByteArray("{\"token\": \"0123456789012345678901234567890123456789\"}");
    QTest::newRow("header alone") << QByteArray("QMsess\0\1", 8);
    QTest::newRow("header and 27 bytes") << QByteArray("QMsess\0\1", 8) + QByteArray(27, 'x');
    QTest::newRow("a later version") << QByteArray("QMsess\0\2", 8) + QByteArray(100, 'x');
}

void SessionCipherTest::foreignBytes()
{
    QFETCH(const QByteArray, bytes);
    QVERIFY(!isSealed(bytes));
    QVERIFY(!open(bytes, key()));
}

QTEST_GUILESS_MAIN(SessionCipherTest)
#include "session_cipher_test.moc"
