#include "catalogue/jpeg_scans.h"
#include "catalogue/png_chunks.h"
#include "catalogue/preview_decoder.h"
#include "tests/unit/catalogue/picture_samples.h"

#include <QTest>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

QByteArray smallPng()
{
    return encoded(quarteredPicture(), "png");
}

/// A chunk that claims `length` bytes and brings `data`.
QByteArray lyingChunk(const QByteArray &type, quint32 length, const QByteArray &data)
{
    QByteArray head(4, '\0');
    qToBigEndian(length, head.data());
    return head + type + data;
}

/// A compressed chunk of text that is `size` bytes long.
QByteArray textBomb(qsizetype size)
{
    return pngChunk("zTXt", QByteArray("note\0\0", 6) + zlibStream(QByteArray(size, 'x')));
}

QByteArray profileBomb(qsizetype size)
{
    return pngChunk("iCCP", QByteArray("profile\0\0", 9) + zlibStream(QByteArray(size, '\0')));
}

} // namespace

/// Small files that would cost the decoder much memory or time.
class PreviewBombsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chunksLongerThanTheRest_data();
    void chunksLongerThanTheRest();
    void pngKeepsWhatItsPixelsNeed();
    void pngEndsAtItsEnd();
    void textsAndProfilesAreNotDecoded_data();
    void textsAndProfilesAreNotDecoded();
    void pngWithHugeDeclaredSize();
    void countsScans_data();
    void countsScans();
    void usualProgressivePictureIsShown();
    void fiftyScansAreShown();
    void moreScansAreNotShown_data();
    void moreScansAreNotShown();
    void scansInAThumbnailDoNotCount();
    void tenThousandFrames();
};

void PreviewBombsTest::chunksLongerThanTheRest_data()
{
    QTest::addColumn<QByteArray>("chunk");
    const QByteArray text("text\0\0\0\0\0", 9);
    QTest::newRow("text of 1 GiB") << lyingChunk("iTXt", 1U << 30U, text);
    QTest::newRow("pixels of 2 GiB") << lyingChunk("IDAT", 0x7fffffffU, text);
    QTest::newRow("4 GiB") << lyingChunk("tEXt", 0xffffffffU, text);
    QTest::newRow("4 GiB less the frame") << lyingChunk("tEXt", 0xffffffffU - 11, text);
    QTest::newRow("one byte too long") << lyingChunk("tEXt", 6, text);
    QTest::newRow("cut in the head") << QByteArray("\0\0\0", 3);
    QTest::newRow("cut in the checksum") << lyingChunk("tEXt", 0, "abc");
}

void PreviewBombsTest::chunksLongerThanTheRest()
{
    QFETCH(const QByteArray, chunk);
    const QByteArray head = smallPng().first(33);
    QVERIFY(pngPixelChunks(head + chunk).isEmpty());
    QVERIFY(decodePreview(head + chunk).isNull());
}

void PreviewBombsTest::pngKeepsWhatItsPixelsNeed()
{
    QImage indexed = quarteredPicture().convertToFormat(QImage::Format_Indexed8);
    indexed.setColor(0, qRgba(255, 0, 0, 0));
    const QByteArray png = encoded(indexed, "png");
    const QByteArray kept = pngPixelChunks(withPngChunks(png, pngChunk("tEXt", "a") + pngChunk("quRk", "b")));
    for (const char *type : {"IHDR", "PLTE", "tRNS", "IDAT", "IEND"})
        QVERIFY2(kept.contains(type), type);
    QVERIFY(!kept.contains("tEXt"));
    QVERIFY(!kept.contains("quRk"));
    QCOMPARE(QImage::fromData(kept).convertToFormat(QImage::Format_ARGB32),
             indexed.convertToFormat(QImage::Format_ARGB32));
}

void PreviewBombsTest::pngEndsAtItsEnd()
{
    const QByteArray png = smallPng();
    QCOMPARE(pngPixelChunks(png + "whatever comes behind"), pngPixelChunks(png));
    QCOMPARE(quartersOf(decodePreview(png + "whatever comes behind")), "RGBW");
}

void PreviewBombsTest::textsAndProfilesAreNotDecoded_data()
{
    QTest::addColumn<QByteArray>("chunks");
    QTest::newRow("100 texts of 7 MiB") << textBomb(7'340'032).repeated(100);
    QTest::newRow("one text of 1 GiB")
        << pngChunk("zTXt", QByteArray("note\0\0", 6) + zlibStream(QByteArray(1 << 20, 'x')).repeated(20));
    QTest::newRow("profile of 64 MiB") << profileBomb(67'108'864);
    QTest::newRow("100 profiles") << profileBomb(7'340'032).repeated(100);
    QTest::newRow("100,000 empty texts") << pngChunk("tEXt", QByteArray("a\0", 2)).repeated(100'000);
}

void PreviewBombsTest::textsAndProfilesAreNotDecoded()
{
    QFETCH(const QByteArray, chunks);
    const QByteArray png = withPngChunks(smallPng(), chunks);
    QVERIFY(png.size() <= MaximumPreviewSize);
    QCOMPARE(pngPixelChunks(png), pngPixelChunks(smallPng()));
    QCOMPARE(quartersOf(decodePreview(png)), "RGBW");
}

void PreviewBombsTest::pngWithHugeDeclaredSize()
{
    for (const quint32 side : {8193U, 32767U, 65535U, 0x7fffffffU})
        QVERIFY(decodePreview(pngClaiming(smallPng(), side, side)).isNull());
}

void PreviewBombsTest::countsScans_data()
{
    QTest::addColumn<QByteArray>("jpeg");
    QTest::addColumn<qsizetype>("scans");
    const QByteArray start("\xff\xd8");
    const QByteArray scan("\xff\xda\0\x02", 4);
    QTest::newRow("none") << start << qsizetype(0);
    QTest::newRow("one") << start + scan + "data" << qsizetype(1);
    QTest::newRow("behind stuffed bytes")
        << start + scan + QByteArray("\xff\0\xff\xd3\xff", 5) + scan << qsizetype(2);
    QTest::newRow("in the contents of a segment")
        << start + QByteArray("\xff\xe1\0\x06", 4) + scan + scan << qsizetype(1);
    QTest::newRow("behind the end") << start + scan + "\xff\xd9" + scan << qsizetype(1);
    QTest::newRow("cut before its length") << start + QByteArray("\xff\xda\0", 3) << qsizetype(1);
    QTest::newRow("prefix at the end") << start + scan + "\xff" << qsizetype(1);
    QTest::newRow("segment without an end") << start + "\xff\xe1\xff\xff" + scan << qsizetype(0);
    QTest::newRow("hidden behind a marker that has no contents")
        << start + scan + QByteArray("\xff\x02\xff\xff", 4) + scan << qsizetype(2);
}

void PreviewBombsTest::countsScans()
{
    QFETCH(const QByteArray, jpeg);
    QTEST(countJpegScans(jpeg), "scans");
}

void PreviewBombsTest::usualProgressivePictureIsShown()
{
    const QByteArray jpeg = progressiveJpeg(quarteredPicture(), 10);
    QCOMPARE(countJpegScans(jpeg), 10);
    QCOMPARE(quartersOf(decodePreview(jpeg)), "RGBW");
}

void PreviewBombsTest::fiftyScansAreShown()
{
    const QByteArray jpeg = progressiveJpeg(plainPicture({4096, 4096}), 50);
    QCOMPARE(countJpegScans(jpeg), 50);
    QCOMPARE(decodePreview(jpeg).size(), QSize(1200, 1200));
}

void PreviewBombsTest::moreScansAreNotShown_data()
{
    QTest::addColumn<qsizetype>("scans");
    for (const qsizetype scans : {51, 300, 100'000})
        QTest::addRow("%lld scans", static_cast<long long>(scans)) << scans;
}

void PreviewBombsTest::moreScansAreNotShown()
{
    QFETCH(const qsizetype, scans);
    const QByteArray jpeg = progressiveJpeg(quarteredPicture(), scans);
    QCOMPARE(countJpegScans(jpeg), scans);
    QVERIFY(jpeg.size() <= MaximumPreviewSize);
    QVERIFY(decodePreview(jpeg).isNull());
}

void PreviewBombsTest::scansInAThumbnailDoNotCount()
{
    const QByteArray thumbnail = progressiveJpeg(plainPicture({16, 16}), 60);
    const QByteArray jpeg = withExif(encoded(quarteredPicture(), "jpeg"), exifOrientation(1) + thumbnail);
    QCOMPARE(countJpegScans(jpeg), 1);
    QCOMPARE(quartersOf(decodePreview(jpeg)), "RGBW");
}

void PreviewBombsTest::tenThousandFrames()
{
    QList<QImage> frames{quarteredPicture()};
    frames.resize(10'000, plainPicture({64, 32}));
    const QByteArray data = animatedWebp(frames);
    QVERIFY(data.size() <= MaximumPreviewSize);
    QCOMPARE(quartersOf(decodePreview(data)), "RGBW");
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::PreviewBombsTest)
#include "preview_bombs_test.moc"
