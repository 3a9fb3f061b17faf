#include "packages/sha256.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QTest>

using namespace quillmar;
using namespace Qt::StringLiterals;

class Sha256Test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knownDigests_data();
    void knownDigests();
    void piecesGiveTheDigestOfTheWhole();
    void deviceIsHashedFromItsPosition();
    void unreadableDeviceGivesNoDigest();
    void digestEndsTheComputation();
};

void Sha256Test::knownDigests_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("digest");
    QTest::newRow("nothing") << QByteArray()
                             << QByteArray(
                                    "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    QTest::newRow("abc") << QByteArray("abc")
                         << QByteArray("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    QTest::newRow("a million times a")
        << QByteArray(1'000'000, 'a')
        << QByteArray("cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

void Sha256Test::knownDigests()
{
    QFETCH(const QByteArray, bytes);
    QTEST(sha256Hex(QByteArrayView(bytes)), "digest");
}

void Sha256Test::piecesGiveTheDigestOfTheWhole()
{
    const QByteArray bytes = QByteArray("0123456789abcdefghijklmnopq").repeated(40'000);
    for (const qsizetype step : {1'000, 65'536, 999'983}) {
        Sha256 hash;
        for (qsizetype at = 0; at < bytes.size(); at += step)
            hash.add(QByteArrayView(bytes).sliced(at, std::min(step, bytes.size() - at)));
        QCOMPARE(hash.hexDigest(), QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
    }
}

void Sha256Test::deviceIsHashedFromItsPosition()
{
    QByteArray bytes = QByteArray(700'000, 'x') + "abc";
    QBuffer device(&bytes);
    QVERIFY(device.open(QIODevice::ReadOnly));
    QCOMPARE(sha256Hex(device), QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
    QVERIFY(device.seek(700'000));
    QCOMPARE(sha256Hex(device), sha256Hex(QByteArrayView("abc")));
}

void Sha256Test::unreadableDeviceGivesNoDigest()
{
    QBuffer closed;
    QTest::ignoreMessage(QtWarningMsg, "QIODevice::read (QBuffer): device not open");
    QVERIFY(sha256Hex(closed).isEmpty());
}

void Sha256Test::digestEndsTheComputation()
{
    Sha256 hash;
    hash.add("abc");
    QCOMPARE(hash.hexDigest().size(), 64);
    hash.add("more");
    QVERIFY(hash.hexDigest().isEmpty());
}

QTEST_GUILESS_MAIN(Sha256Test)
#include "sha256_test.moc"
