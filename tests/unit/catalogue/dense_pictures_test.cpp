#include "catalogue/picture_view.h"
#include "tests/support/libobs_fake/libobs_fake.h"
#include "tests/unit/catalogue/catalogue_fixture.h"
#include "tests/unit/catalogue/details_fixture.h"
#include "tests/unit/catalogue/picture_samples.h"
#include "tests/unit/catalogue/preview_fixture.h"

#include <QApplication>
#include <QDialog>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// Every second pixel black, the others white: any scaling but none turns some of them grey.
QImage chequered(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, (x + y) % 2 == 0 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
    }
    return image;
}

/// The label paints the very pixels of `image` in its middle.
bool paintsSharply(QLabel *label, const QImage &image)
{
    const QImage shown = label->grab().toImage();
    const QPoint corner((shown.width() - image.width()) / 2, (shown.height() - image.height()) / 2);
    return shown.copy(QRect(corner, image.size())).convertToFormat(QImage::Format_RGB32) == image;
}

} // namespace

/// Pictures where every logical pixel is two by two real ones: nothing is drawn at half its sharpness.
class DensePicturesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fittedPicture_data();
    void fittedPicture();
    void pictureOfTheScreensOwnPixelsStaysAsItIs();
    void card();
    void details();
    void enlarged();
};

void DensePicturesTest::fittedPicture_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("place");
    QTest::addColumn<QSize>("pixels");
    QTest::newRow("larger than the place") << QSize(1600, 1200) << QSize(400, 300) << QSize(800, 600);
    QTest::newRow("as many pixels as the place") << QSize(800, 600) << QSize(400, 300) << QSize(800, 600);
    QTest::newRow("smaller, fills the place") << QSize(80, 60) << QSize(400, 300) << QSize(800, 600);
    QTest::newRow("wide") << QSize(2000, 500) << QSize(400, 300) << QSize(800, 200);
    QTest::newRow("high") << QSize(500, 2000) << QSize(400, 300) << QSize(150, 600);
    QTest::newRow("line") << QSize(1600, 1) << QSize(400, 300) << QSize(800, 1);
    QTest::newRow("no place") << QSize(100, 100) << QSize(0, 0) << QSize(2, 2);
}

void DensePicturesTest::fittedPicture()
{
    QFETCH(QSize, picture);
    QFETCH(QSize, place);
    const QWidget widget;
    QCOMPARE(widget.devicePixelRatio(), 2.0);
    const QPixmap fitted = fittedPixmap(plainPicture(picture), place, &widget);
    QTEST(fitted.size(), "pixels");
    QCOMPARE(fitted.devicePixelRatio(), 2.0);
    QCOMPARE(fitted.deviceIndependentSize() * 2, QSizeF(fitted.size()));
}

void DensePicturesTest::pictureOfTheScreensOwnPixelsStaysAsItIs()
{
    const QWidget widget;
    const QImage picture = chequered({800, 600});
    const QPixmap fitted = fittedPixmap(picture, {400, 300}, &widget);
    QVERIFY(fitted.toImage().convertToFormat(QImage::Format_RGB32) == picture);
}

void DensePicturesTest::card()
{
    TlsService service;
    const QImage picture = chequered({520, 280});
    service.handle("/a", TlsService::always(TlsService::response(200, encoded(picture, "png"))));
    const Localisation texts = LocaleFiles().localisation(EnglishCode);
    ProductPreviews previews;
    QJsonObject object = product(u"Frame"_s);
    object.insert(u"preview_gallery"_s, QJsonArray{QJsonObject{{u"url"_s, addressOf(u"/a"_s).toString()}}});
    ProductCard card(object, {texts, nullptr, &previews}, [] {}, nullptr);
    card.resize(500, 600);
    card.show();
    QLabel *label = CardView(&card).preview();
    QTRY_VERIFY_WITH_TIMEOUT(!label->pixmap().isNull(), LongDeadlineMs);
    QCOMPARE(label->pixmap().size(), QSize(520, 280));
    QCOMPARE(label->pixmap().deviceIndependentSize(), QSizeF(260, 140));
    QVERIFY(paintsSharply(label, picture));
}

void DensePicturesTest::details()
{
    DetailsFixture fixture;
    const QImage picture = chequered({800, 600});
    fixture.service.handle("/p0", TlsService::always(TlsService::response(200, encoded(picture, "png"))));
    const auto details = fixture.open(DetailsFixture::product(1));
    const DetailsView view(details.get());
    QTRY_VERIFY_WITH_TIMEOUT(view.showsPicture(), LongDeadlineMs);
    QCOMPARE(view.preview()->pixmap().size(), QSize(800, 600));
    QCOMPARE(view.pictureSize(), QSize(400, 300));
    QVERIFY(paintsSharply(view.preview(), picture));
}

void DensePicturesTest::enlarged()
{
    QWidget parent;
    const QImage picture = chequered({2200, 1600});
    openEnlargedView(picture, u"View"_s, &parent);
    const auto *view = parent.findChild<QDialog *>();
    QVERIFY(view);
    auto *label = view->findChild<QLabel *>();
    QCOMPARE(label->pixmap().size(), QSize(2200, 1600));
    QCOMPARE(label->pixmap().deviceIndependentSize(), QSizeF(1100, 800));
    QVERIFY(paintsSharply(label, picture));
}

} // namespace quillmar::test

int main(int argc, char *argv[])
{
    qputenv("QT_SCALE_FACTOR", "2");
    QApplication application(argc, argv);
    const quillmar::test::LibobsFake libobs;
    quillmar::test::DensePicturesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "dense_pictures_test.moc"
