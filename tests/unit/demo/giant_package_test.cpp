#include "demo/service/giant_package.h"
#include "packages/component_product.h"
#include "packages/zip_index.h"
#include "tests/unit/demo/service_fixture.h"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class GiantPackageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAProductLikeAnyOther_data();
    void isAProductLikeAnyOther();
    void sameSizeSameBytes();
    void entriesStaySmall();
};

void GiantPackageTest::isAProductLikeAnyOther_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("smallest") << qint64(4096);
    QTest::newRow("odd") << qint64(5'000'001);
}

void GiantPackageTest::isAProductLikeAnyOther()
{
    QFETCH(const qint64, bytes);
    ServiceFixture service([&](demo::DemoServiceSettings &settings) { settings.giantPackageBytes = bytes; });
    QCOMPARE(service.error(), QString());
    const QByteArray token = service.token();
    const QJsonArray products = service.get(u"products"_s, token).json.value("products"_L1).toArray();
    const ComponentProduct product = parseComponentProduct(products.last().toObject());
    QVERIFY(isValid(product));
    QCOMPARE(product.file_size, bytes);
    QCOMPARE(product.components.size(), 1);
    QVERIFY(isInsertable(product.components.first()));
    const QByteArray body = service.fetch(service.ticket(token, product.product_key)).body;
    QCOMPARE(body.size(), bytes);
    const QByteArray digest = QCryptographicHash::hash(body, QCryptographicHash::Sha256).toHex();
    QCOMPARE(QString::fromLatin1(digest), product.sha256);
}

void GiantPackageTest::sameSizeSameBytes()
{
    const QTemporaryDir one;
    const QTemporaryDir two;
    const demo::GiantPackage first = demo::makeGiantPackage(one.path(), 100'000);
    const demo::GiantPackage second = demo::makeGiantPackage(two.path(), 100'000);
    QCOMPARE(first.error, QString());
    QCOMPARE(first.product, second.product);
    QCOMPARE(demo::makeGiantPackage(one.path(), 100'000).product, first.product);
}

void GiantPackageTest::entriesStaySmall()
{
    const QTemporaryDir folder;
    const qint64 bytes = (qint64(256) << 20) + 1'000'000;
    const demo::GiantPackage giant = demo::makeGiantPackage(folder.path(), bytes);
    QCOMPARE(giant.error, QString());
    QFile file(giant.path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.size(), bytes);
    const ZipIndex index = readZipIndex(file);
    QCOMPARE(index.verdict, ZipIndex::Verdict::Sound);
    QCOMPARE(index.entries.size(), 2);
    for (const ZipEntry &entry : index.entries) {
        QCOMPARE(entry.method, ZipEntry::Method::Stored);
        QVERIFY(entry.size <= quint32(256) << 20);
    }
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::GiantPackageTest)
#include "giant_package_test.moc"
