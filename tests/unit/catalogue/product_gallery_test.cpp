#include "tests/unit/catalogue/details_fixture.h"

#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

/// How the dialog loads, fits, enlarges and walks through its pictures.
class ProductGalleryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void emptyGallery();
    void emptyGalleryOfAComponent();
    void galleryOfOne();
    void galleryOfFive();
    void nextTwiceQuickly();
    void nextStaysUnderThePointer();
    void lateImageOfAnotherEntry();
    void failureCanBeRetried();
    void failureIsNotEnlarged();
    void lostLoaderIsAFailure();
    void resizingFitsThePicture();
    void pictureIsNeverLargerThanItsPlace_data();
    void pictureIsNeverLargerThanItsPlace();
    void severalEnlargedViews();
    void languageSwitchWhileAPictureIsShown();
    void goneWhileTheReplyIsOnItsWay();

private:
    std::optional<DetailsFixture> f_;
};

void ProductGalleryTest::emptyGallery()
{
    const auto details = f_->open(DetailsFixture::product(0));
    const DetailsView view(details.get());
    QCOMPARE(view.preview()->text(), u"No preview available"_s);
    QCOMPARE(view.caption()->text(), u"Overview"_s);
    for (const QPushButton *button : {view.previous(), view.next(), view.retry()})
        QVERIFY(button->isHidden());
    QVERIFY(!view.enlarge()->isEnabled());
    QCOMPARE(f_->service.connects().size(), 0);
}

void ProductGalleryTest::emptyGalleryOfAComponent()
{
    const auto details = f_->open(DetailsFixture::pack());
    const DetailsView view(details.get());
    view.entries()->setCurrentIndex(2);
    QCOMPARE(view.caption()->text(), u"Component"_s);
    QCOMPARE(view.preview()->text(), u"No preview available"_s);
    QVERIFY(view.retry()->isHidden());
}

void ProductGalleryTest::galleryOfOne()
{
    f_->serve("p0", {40, 30});
    const auto details = f_->open(DetailsFixture::product(1));
    const DetailsView view(details.get());
    QVERIFY(view.previous()->isHidden());
    QVERIFY(view.next()->isHidden());
    QVERIFY(!view.retry()->isHidden());
    QVERIFY(!view.enlarge()->isEnabled());
    QCOMPARE(view.preview()->text(), u"Loading preview…"_s);
    QCOMPARE(view.caption()->text(), u"Overview · 1/1 · view 0"_s);
    QTRY_VERIFY(view.showsPicture());
    QVERIFY(view.retry()->isHidden());
    QVERIFY(view.enlarge()->isEnabled());
}

void ProductGalleryTest::galleryOfFive()
{
    for (int i = 0; i < 5; ++i)
        f_->serve("p" + QByteArray::number(i), {40, 30}, QColor(50 * i, 0, 0));
    const auto details = f_->open(DetailsFixture::product(5));
    const DetailsView view(details.get());
    for (int i = 0; i < 5; ++i) {
        QVERIFY(!view.previous()->isHidden() && !view.next()->isHidden());
        QCOMPARE(view.previous()->isEnabled(), i > 0);
        QCOMPARE(view.next()->isEnabled(), i < 4);
        QCOMPARE(view.caption()->text(), u"Overview · %1/5 · view %2"_s.arg(i + 1).arg(i));
        QTRY_VERIFY(view.showsPicture());
        QCOMPARE(view.pictureColour(), QColor(50 * i, 0, 0));
        view.next()->click();
    }
    view.previous()->click();
    QCOMPARE(view.caption()->text(), u"Overview · 4/5 · view 3"_s);
    QVERIFY(view.showsPicture()); // from memory, at once
    QCOMPARE(f_->requests("p3"), 1);
}

void ProductGalleryTest::nextTwiceQuickly()
{
    QList<WireConnection> held;
    f_->serve("p0", {40, 30}, Qt::red);
    f_->hold("p1", held);
    f_->serve("p2", {40, 30}, Qt::blue);
    const auto details = f_->open(DetailsFixture::product(3));
    const DetailsView view(details.get());
    QTRY_VERIFY(view.showsPicture());
    view.next()->click();
    view.next()->click();
    QVERIFY(!view.showsPicture());
    QTRY_COMPARE(held.size(), 1);
    QTRY_VERIFY(view.showsPicture());
    QCOMPARE(view.pictureColour(), QColor(Qt::blue));
    held.first().send(TlsService::response(200, pngBytes({40, 30}, Qt::green), "image/png"));
    // The picture that came too late is in memory once the loader has taken it.
    QTRY_VERIFY_WITH_TIMEOUT(([this] {
                                 bool isKnown = false;
                                 QObject receiver;
                                 f_->previews->request(
                                     DetailsFixture::product(3).previews.at(1), &receiver,
                                     [&isKnown](const QImage &image) { isKnown = !image.isNull(); });
                                 return isKnown;
                             }()),
                             20'000);
    QCOMPARE(view.pictureColour(), QColor(Qt::blue));
    QCOMPARE(view.caption()->text(), u"Overview · 3/3 · view 2"_s);
}

void ProductGalleryTest::nextStaysUnderThePointer()
{
    QList<WireConnection> held;
    f_->serve("p0", {40, 30});
    f_->hold("p1", held);
    const auto details = f_->open(DetailsFixture::product(3));
    const DetailsView view(details.get());
    QTRY_VERIFY(view.showsPicture());
    QTRY_VERIFY(view.next()->x() > view.previous()->x());
    const QRect place = view.next()->geometry();
    view.next()->click();
    QVERIFY(view.retry()->isVisible());
    QTRY_COMPARE(held.size(), 1);
    view.content->layout()->activate();
    QCOMPARE(view.next()->geometry(), place);
    held.first().send(TlsService::response(200, pngBytes({40, 30}, Qt::red), "image/png"));
    QTRY_VERIFY(view.showsPicture());
    QVERIFY(!view.retry()->isVisible());
    view.content->layout()->activate();
    QCOMPARE(view.next()->geometry(), place);
}

void ProductGalleryTest::lateImageOfAnotherEntry()
{
    QList<WireConnection> held;
    f_->hold("p0", held);
    f_->serve("frame", {40, 30}, Qt::blue);
    const auto details = f_->open(DetailsFixture::pack());
    const DetailsView view(details.get());
    QTRY_COMPARE(held.size(), 1);
    view.entries()->setCurrentIndex(1);
    QTRY_VERIFY(view.showsPicture());
    held.first().send(TlsService::response(404, {}));
    f_->serve("p1", {40, 30}, Qt::green);
    QObject receiver;
    bool hasCome = false;
    f_->previews->request(DetailsFixture::pack().previews.at(1), &receiver,
                          [&hasCome](const QImage &) { hasCome = true; });
    QTRY_VERIFY(hasCome);
    QCOMPARE(view.pictureColour(), QColor(Qt::blue));
    QVERIFY(view.retry()->isHidden());
}

void ProductGalleryTest::failureCanBeRetried()
{
    f_->service.handle("/p0", TlsService::always(TlsService::response(200, "no picture", "image/png")));
    const auto details = f_->open(DetailsFixture::product(2));
    const DetailsView view(details.get());
    QTRY_COMPARE(view.preview()->text(), u"The preview could not be loaded. Press “Try again”."_s);
    QVERIFY(!view.retry()->isHidden());
    QVERIFY(!view.enlarge()->isEnabled());
    f_->serve("p0", {40, 30});
    view.retry()->click();
    QCOMPARE(view.preview()->text(), u"Loading preview…"_s);
    QCOMPARE(view.caption()->text(), u"Overview · 1/2 · view 0"_s);
    QTRY_VERIFY(view.showsPicture());
    QCOMPARE(f_->requests("p0"), 2);
    QCOMPARE(f_->requests("p1"), 0);
    QVERIFY(view.retry()->isHidden());
}

void ProductGalleryTest::failureIsNotEnlarged()
{
    const auto details = f_->open(DetailsFixture::product(1));
    const DetailsView view(details.get());
    QTRY_VERIFY(view.preview()->text().startsWith(u"The preview could not be loaded"_s));
    view.enlarge()->click();
    QVERIFY(view.enlarged().isEmpty());
}

void ProductGalleryTest::lostLoaderIsAFailure()
{
    f_->previews.reset();
    const auto details = f_->open(DetailsFixture::product(1));
    const DetailsView view(details.get());
    QVERIFY(view.preview()->text().startsWith(u"The preview could not be loaded"_s));
    view.retry()->click();
    QVERIFY(!view.retry()->isHidden());
}

void ProductGalleryTest::resizingFitsThePicture()
{
    f_->serve("p0", {1500, 300});
    const auto details = f_->open(DetailsFixture::product(1));
    const DetailsView view(details.get());
    QTRY_VERIFY(view.showsPicture());
    for (const int width : {500, 900, 300, 1600}) {
        details->resize(width, 700);
        QTRY_COMPARE(view.pictureSize().width(), std::min(view.preview()->width(), 1500));
        QCOMPARE(view.preview()->height(), 300);
    }
}

void ProductGalleryTest::pictureIsNeverLargerThanItsPlace_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::newRow("wide") << QSize(1500, 100);
    QTest::newRow("high") << QSize(100, 1100);
    QTest::newRow("one line") << QSize(1600, 1);
    QTest::newRow("one column") << QSize(1, 1200);
    QTest::newRow("one pixel") << QSize(1, 1);
}

void ProductGalleryTest::pictureIsNeverLargerThanItsPlace()
{
    QFETCH(const QSize, picture);
    f_->serve("p0", picture);
    const auto details = f_->open(DetailsFixture::product(1));
    const DetailsView view(details.get());
    QTRY_VERIFY(view.showsPicture());
    const QSize place = view.preview()->size();
    QVERIFY(view.pictureSize().width() <= place.width() && view.pictureSize().height() <= place.height());
    QVERIFY(view.pictureSize().width() == place.width() || view.pictureSize().height() == place.height());
}

void ProductGalleryTest::severalEnlargedViews()
{
    f_->serve("p0", {1600, 900});
    f_->serve("p1", {300, 600});
    const auto details = f_->open(DetailsFixture::product(2));
    const DetailsView view(details.get());
    QTRY_VERIFY(view.showsPicture());
    view.enlarge()->click();
    view.enlarge()->click();
    view.next()->click();
    QTRY_VERIFY(view.showsPicture());
    view.enlarge()->click();
    const QList<QDialog *> views = view.enlarged();
    QCOMPARE(views.size(), 3);
    for (const QDialog *enlarged : views)
        QVERIFY(enlarged->isVisible() && !enlarged->isModal());
    const auto sizeOf = [](const QDialog *enlarged) {
        return enlarged->findChild<QLabel *>()->pixmap().deviceIndependentSize().toSize();
    };
    QCOMPARE(sizeOf(views.first()), QSize(1100, 618));
    QCOMPARE(sizeOf(views.last()), QSize(400, 800));
    QCOMPARE(views.first()->windowTitle(), u"Overview · 1/2 · view 0"_s);
    QCOMPARE(views.last()->windowTitle(), u"Overview · 2/2 · view 1"_s);
    QTest::keyClick(views.at(1), Qt::Key_Escape);
    QTRY_COMPARE(view.enlarged().size(), 2);
    QVERIFY(details->isVisible());
    const QPointer<QDialog> left = views.first();
    f_->previews.reset();
    details->close();
    QVERIFY(left);
}

void ProductGalleryTest::languageSwitchWhileAPictureIsShown()
{
    f_->serve("p0", {40, 30});
    const auto details = f_->open(DetailsFixture::product(1));
    const DetailsView view(details.get());
    QTRY_VERIFY(view.showsPicture());
    f_->texts.setLanguage(PersianCode);
    details->applyLanguage(true);
    QVERIFY(view.showsPicture());
    QCOMPARE(view.preview()->accessibleName(), u"نمای کلی · 1/1 · view 0"_s);
    QCOMPARE(f_->requests("p0"), 1);
}

void ProductGalleryTest::goneWhileTheReplyIsOnItsWay()
{
    QList<WireConnection> held;
    f_->hold("p0", held);
    auto details = f_->open(DetailsFixture::product(1));
    QTRY_COMPARE(held.size(), 1);
    details.reset();
    held.first().send(TlsService::response(200, pngBytes({40, 30}, Qt::red), "image/png"));
    f_->serve("p0", {40, 30});
    const auto next = f_->open(DetailsFixture::product(1));
    QTRY_VERIFY(DetailsView(next.get()).showsPicture());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::ProductGalleryTest)
#include "product_gallery_test.moc"
