#include "catalogue/preview_decoder.h"
#include "tests/unit/catalogue/picture_samples.h"

#include <QBuffer>
#include <QImageReader>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class PreviewDecoderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shownFormats_data() { addFormats(); }
    void shownFormats();
    void otherFormatsAreNotShown_data();
    void otherFormatsAreNotShown();
    void wrongSignatureIsNotShown_data() { addFormats(); }
    void wrongSignatureIsNotShown();
    void bodySize_data();
    void bodySize();
    void declaredSize_data();
    void declaredSize();
    void cutPictures_data() { addFormats(); }
    void cutPictures();
    void largePicturesAreScaled_data();
    void largePicturesAreScaled();
    void orientation_data();
    void orientation();
    void brokenExif_data();
    void brokenExif();
    void orientationOfOtherFormats();
    void sixteenBitsPerChannel();
    void transparencyIsKept_data() { addFormats(); }
    void transparencyIsKept();
    void animationShowsItsFirstFrame();

private:
    static void addFormats();
};

void PreviewDecoderTest::addFormats()
{
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("PNG") << QByteArray("png");
    QTest::newRow("JPEG") << QByteArray("jpeg");
    QTest::newRow("WebP") << QByteArray("webp");
}

void PreviewDecoderTest::shownFormats()
{
    QFETCH(const QByteArray, format);
    const QImage image = decodePreview(encoded(quarteredPicture(), format));
    QCOMPARE(image.size(), QSize(64, 32));
    QCOMPARE(quartersOf(image), "RGBW");
}

void PreviewDecoderTest::otherFormatsAreNotShown_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<bool>("isPicture");
    const QByteArray gif = QByteArray::fromBase64("R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7");
    const QImage picture = quarteredPicture();
    QTest::newRow("GIF") << gif << true;
    QTest::newRow("BMP") << encoded(picture, "bmp") << true;
    QTest::newRow("ICO") << encoded(picture, "ico") << true;
    QTest::newRow("PPM") << encoded(picture, "ppm") << true;
    // Not every system has the plug-ins for these two.
    const QByteArrayList formats = QImageReader::supportedImageFormats();
    QTest::newRow("TIFF") << encoded(picture, "tiff") << formats.contains("tiff");
    QTest::newRow("SVG") << QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"8\" height=\"8\">"
                                       "<rect width=\"8\" height=\"8\"/></svg>")
                         << formats.contains("svg");
    QTest::newRow("PDF") << QByteArray("%PDF-1.4\n1 0 obj<</Type/Catalog>>endobj\ntrailer<</Root 1 0 R>>\n")
                         << false;
    QTest::newRow("HTML") << QByteArray("<!doctype html><html><body>not here</body></html>") << false;
    QTest::newRow("ZIP") << QByteArray("PK\x05\x06") + QByteArray(18, '\0') << false;
    QTest::newRow("WAV") << QByteArray("RIFF\x24\0\0\0WAVEfmt ", 16) << false;
    QTest::newRow("one byte") << QByteArray(1, '\x89') << false;
    QTest::newRow("signature of PNG alone") << QByteArray("\x89PNG\r\n\x1a\n") << false;
    QTest::newRow("signature of JPEG alone") << QByteArray("\xff\xd8") << false;
    QTest::newRow("signature of RIFF alone") << QByteArray("RIFF") << false;
    QTest::newRow("signature of WebP alone") << QByteArray("RIFF\x04\0\0\0WEBP", 12) << false;
}

void PreviewDecoderTest::otherFormatsAreNotShown()
{
    QFETCH(const QByteArray, data);
    QFETCH(const bool, isPicture);
    QCOMPARE(!QImage::fromData(data).isNull(), isPicture);
    QVERIFY(decodePreview(data).isNull());
}

void PreviewDecoderTest::wrongSignatureIsNotShown()
{
    QFETCH(const QByteArray, format);
    QByteArray data = encoded(quarteredPicture(), format);
    data[1] = char(data.at(1) ^ 1);
    QVERIFY(decodePreview(data).isNull());
}

void PreviewDecoderTest::bodySize_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("0 bytes") << qsizetype(0) << false;
    QTest::newRow("8,388,608 bytes") << qsizetype(8'388'608) << true;
    QTest::newRow("8,388,609 bytes") << qsizetype(8'388'609) << false;
}

void PreviewDecoderTest::bodySize()
{
    QFETCH(const qsizetype, size);
    const QByteArray jpeg = encoded(quarteredPicture(), "jpeg");
    const QByteArray data = size == 0 ? QByteArray() : padded(jpeg, size);
    QCOMPARE(data.size(), size);
    QTEST(!decodePreview(data).isNull(), "isShown");
}

void PreviewDecoderTest::declaredSize_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QSize>("expected");
    for (const char *format : {"png", "jpeg", "webp"}) {
        const auto row = [format](const char *size) -> QTestData & {
            return QTest::addRow("%s %s", format, size);
        };
        const auto real = [format](QSize size) { return encoded(plainPicture(size), format, 75); };
        row("8192x2048") << real({8192, 2048}) << QSize(1600, 400);
        row("2048x8192") << real({2048, 8192}) << QSize(300, 1200);
        row("4096x4096") << real({4096, 4096}) << QSize(1200, 1200);
        row("8192x1") << real({8192, 1}) << QSize(1600, 1);
        row("4097x4096") << real({4097, 4096}) << QSize();
        row("8193x1") << real({8193, 1}) << QSize();
        row("1x8193") << real({1, 8193}) << QSize();
    }
    const QByteArray png = encoded(plainPicture({8, 8}), "png");
    QTest::newRow("png 0x0") << pngClaiming(png, 0, 0) << QSize();
    QTest::newRow("png 65535x65535") << pngClaiming(png, 65535, 65535) << QSize();
    QTest::newRow("png -1x-1") << pngClaiming(png, 0xffffffffU, 0xffffffffU) << QSize();
    const QByteArray jpeg = encoded(plainPicture({8, 8}), "jpeg");
    QTest::newRow("jpeg 0x0") << jpegClaiming(jpeg, 0, 0) << QSize();
    QTest::newRow("jpeg 65535x65535") << jpegClaiming(jpeg, 65535, 65535) << QSize();
    const QImage dot = plainPicture({8, 8});
    QTest::newRow("webp claim that is true") << webpClaiming(8, 8, dot) << QSize(8, 8);
    QTest::newRow("webp 16777216x1") << webpClaiming(16777216, 1, dot) << QSize();
    QTest::newRow("webp 65535x65535") << webpClaiming(65535, 65535, dot) << QSize();
}

void PreviewDecoderTest::declaredSize()
{
    QFETCH(const QByteArray, data);
    QVERIFY(!data.isEmpty());
    QFETCH(const QSize, expected);
    const QImage image = decodePreview(data);
    QCOMPARE(image.isNull(), expected.isEmpty());
    QCOMPARE(image.size(), expected.isEmpty() ? QSize(0, 0) : expected);
}

/// A JPEG that is cut may still be shown, with what is missing in grey; the others are not.
void PreviewDecoderTest::cutPictures()
{
    QFETCH(const QByteArray, format);
    const QByteArray data = encoded(quarteredPicture({320, 200}), format);
    for (int sixteenths = 0; sixteenths < 16; ++sixteenths) {
        const QImage image = decodePreview(data.first(data.size() * sixteenths / 16));
        if (format == "jpeg")
            QVERIFY(image.isNull() || image.size() == QSize(320, 200));
        else
            QVERIFY2(image.isNull(), QByteArray::number(sixteenths).constData());
    }
    QCOMPARE(decodePreview(data).size(), QSize(320, 200));
}

void PreviewDecoderTest::largePicturesAreScaled_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("as large as is kept") << QSize(1600, 1200) << QSize(1600, 1200);
    QTest::newRow("one column too wide") << QSize(1601, 1200) << QSize(1600, 1199);
    QTest::newRow("one row too high") << QSize(1600, 1201) << QSize(1598, 1200);
    QTest::newRow("too wide") << QSize(3200, 100) << QSize(1600, 50);
    QTest::newRow("too high") << QSize(100, 2400) << QSize(50, 1200);
    QTest::newRow("small") << QSize(3, 2) << QSize(3, 2);
}

void PreviewDecoderTest::largePicturesAreScaled()
{
    QFETCH(const QSize, size);
    QTEST(decodePreview(encoded(plainPicture(size), "jpeg")).size(), "expected");
}

void PreviewDecoderTest::orientation_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<QByteArray>("quarters");
    const QList<QByteArray> turned{"RGBW", "GRWB", "WBGR", "BWRG", "RBGW", "BRWG", "WGBR", "GWRB"};
    for (int i = 0; i < turned.size(); ++i)
        QTest::addRow("%d", i + 1) << i + 1 << turned.at(i);
    for (const int ignored : {0, 9, 65535})
        QTest::addRow("%d, ignored", ignored) << ignored << QByteArray("RGBW");
}

void PreviewDecoderTest::orientation()
{
    QFETCH(const int, orientation);
    const QByteArray jpeg = encoded(quarteredPicture(), "jpeg");
    const QImage image = decodePreview(withExif(jpeg, exifOrientation(quint16(orientation))));
    QTEST(quartersOf(image), "quarters");
    const bool isOnItsSide = orientation >= 5 && orientation <= 8;
    QCOMPARE(image.size(), isOnItsSide ? QSize(32, 64) : QSize(64, 32));
}

void PreviewDecoderTest::brokenExif_data()
{
    QTest::addColumn<QByteArray>("exif");
    const QByteArray good = exifOrientation(6);
    const auto changed = [&good](qsizetype position, const QByteArray &bytes) {
        return QByteArray(good).replace(position, bytes.size(), bytes);
    };
    QTest::newRow("nothing in it") << QByteArray();
    QTest::newRow("marker alone") << good.first(6);
    QTest::newRow("cut in the head") << good.first(10);
    QTest::newRow("cut in the table") << good.first(18);
    QTest::newRow("unknown byte order") << changed(6, "XX");
    QTest::newRow("table before the head") << changed(10, QByteArray(4, '\0'));
    QTest::newRow("table behind the end") << changed(10, QByteArray(4, '\x7f'));
    QTest::newRow("table at -1") << changed(10, QByteArray(4, '\xff'));
    QTest::newRow("orientation as a text") << changed(18, QByteArray("\0\x02", 2));
    QTest::newRow("noise") << QByteArray("Exif\0\0", 6) + QByteArray("\xa5\x3c\xff").repeated(1000);
}

void PreviewDecoderTest::brokenExif()
{
    QFETCH(const QByteArray, exif);
    const QImage image = decodePreview(withExif(encoded(quarteredPicture(), "jpeg"), exif));
    QCOMPARE(quartersOf(image), "RGBW");
}

/// What Qt does with it by itself is what is shown.
void PreviewDecoderTest::orientationOfOtherFormats()
{
    const QByteArray exif = exifOrientation(6).sliced(6);
    const QByteArray png = withPngChunks(encoded(quarteredPicture(), "png"), pngChunk("eXIf", exif));
    QVERIFY(!decodePreview(png).isNull());
    QBuffer buffer;
    buffer.setData(png);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    QCOMPARE(quartersOf(decodePreview(png)), quartersOf(reader.read()));
}

void PreviewDecoderTest::sixteenBitsPerChannel()
{
    const QImage deep = quarteredPicture().convertToFormat(QImage::Format_RGBA64);
    const QImage image = decodePreview(encoded(deep, "png"));
    QCOMPARE(quartersOf(image), "RGBW");
    QCOMPARE(image.depth(), 32);
}

void PreviewDecoderTest::transparencyIsKept()
{
    QFETCH(const QByteArray, format);
    QImage glass = quarteredPicture().convertToFormat(QImage::Format_ARGB32);
    QImage opacity(glass.size(), QImage::Format_Alpha8);
    opacity.fill(100);
    glass.setAlphaChannel(opacity);
    const QImage image = decodePreview(encoded(glass, format));
    QCOMPARE(image.pixelColor(8, 8).alpha(), format == "jpeg" ? 255 : 100);
}

void PreviewDecoderTest::animationShowsItsFirstFrame()
{
    const QByteArray data =
        animatedWebp({quarteredPicture(), plainPicture({64, 32}), plainPicture({64, 32}, Qt::black)});
    const QImage image = decodePreview(data);
    QCOMPARE(image.size(), QSize(64, 32));
    QCOMPARE(quartersOf(image), "RGBW");
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::PreviewDecoderTest)
#include "preview_decoder_test.moc"
