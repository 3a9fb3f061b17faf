#include "catalogue/preview_decoder.h"
#include "catalogue/product_previews.h"
#include "tests/unit/catalogue/picture_samples.h"
#include "tests/unit/catalogue/preview_fixture.h"
#include "tests/unit/packages/memory.h"

#include <QTest>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr qint64 MiB = 1024 * 1024;

QByteArray claimedText(quint32 length)
{
    QByteArray chunk(4, '\0');
    qToBigEndian(length, chunk.data());
    return chunk + "iTXt" + QByteArray("text\0\0\0\0\0", 9);
}

} // namespace

/// What hostile pictures and servers cost in memory.
class PreviewMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decoding_data();
    void decoding();
    void endlessBody();
};

void PreviewMemoryTest::decoding_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<qint64>("bound");
    const QByteArray png = encoded(quarteredPicture(), "png");
    const QByteArray text = QByteArray("note\0\0", 6) + zlibStream(QByteArray(7 * MiB, 'x'));
    const QByteArray profile = QByteArray("profile\0\0", 9) + zlibStream(QByteArray(7 * MiB, '\0'));
    const QImage deep = plainPicture({4096, 4096}).convertToFormat(QImage::Format_RGBA64);
    QTest::newRow("57 bytes that claim 1 GiB") << png.first(33) + claimedText(1U << 30U) << 20 * MiB;
    QTest::newRow("100 texts of 7 MiB")
        << withPngChunks(png, pngChunk("zTXt", text).repeated(100)) << 20 * MiB;
    QTest::newRow("profile of 7 MiB") << withPngChunks(png, pngChunk("iCCP", profile)) << 20 * MiB;
    QTest::newRow("16 megapixels of 16 bits") << encoded(deep, "png", 50) << 200 * MiB;
    QTest::newRow("16 megapixels in 50 scans")
        << progressiveJpeg(plainPicture({4096, 4096}), 50) << 200 * MiB;
}

void PreviewMemoryTest::decoding()
{
    QFETCH(const QByteArray, data);
    QFETCH(const qint64, bound);
    QVERIFY(data.size() <= MaximumPreviewSize);
    const qint64 growth = memoryGrowth([&data] { decodePreview(data); });
    QVERIFY2(growth >= 0 && growth < bound, QByteArray::number(growth / MiB).constData());
}

/// Both ends of the connection are in this process.
void PreviewMemoryTest::endlessBody()
{
    TlsService service;
    ProductPreviews previews;
    QObject context;
    qint64 sent = 0;
    service.handle("/endless", endless(&context, sent));
    int calls = 0;
    const qint64 growth = memoryGrowth([&] {
        previews.request(entryFor(u"/endless"_s), &context, [&calls](const QImage &) { ++calls; });
        QTRY_COMPARE_WITH_TIMEOUT(calls, 1, LongDeadlineMs);
    });
    QVERIFY2(growth >= 0 && growth < 40 * MiB, QByteArray::number(growth / MiB).constData());
    QVERIFY(sent > 8 * MiB);
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::PreviewMemoryTest)
#include "preview_memory_test.moc"
