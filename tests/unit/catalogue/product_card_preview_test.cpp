#include "catalogue/product_previews.h"
#include "tests/unit/catalogue/catalogue_fixture.h"
#include "tests/unit/catalogue/picture_samples.h"
#include "tests/unit/catalogue/preview_fixture.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// Two screens side by side, of which ScaleFactors gives the second twice as many pixels per length.
constexpr char Screens[] = R"({"synchronousWindowSystemEvents": true, "screens": [
    {"name": "plain", "x": 0, "y": 0, "width": 1200, "height": 900},
    {"name": "dense", "x": 1200, "y": 0, "width": 1200, "height": 900}]})";
constexpr char ScaleFactors[] = "plain=1;dense=2";
constexpr QPoint OnPlain{100, 100};
constexpr QPoint OnDense{1400, 100};

} // namespace

class ProductCardPreviewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void pictureSize_data();
    void pictureSize();
    void narrowCardShowsItAtTheWidthOfItsLabel();
    void pictureFollowsTheWidth();
    void firstOfSeveralIsShown();
    void withoutPictureTheTextStays_data();
    void withoutPictureTheTextStays();
    void languageSwitchKeepsThePicture();
    void languageSwitchBeforeThePicture();
    void pictureHasAName();
    void keptPictureIsShownAtOnce();
    void cardGoneBeforeItsPicture();
    void loaderGoneBeforeTheCard();
    void densePixelsAreFilled();
    void changeOfTheScreen();

private:
    std::unique_ptr<ProductCard> card(const QStringList &paths, int width = 500);
    static QPixmap waitForPicture(const ProductCard &card);

    Localisation texts_ = LocaleFiles().localisation(EnglishCode);
    std::unique_ptr<TlsService> service_;
    std::unique_ptr<ProductPreviews> previews_;
};

void ProductCardPreviewTest::init()
{
    texts_.setLanguage(EnglishCode);
    service_ = std::make_unique<TlsService>();
    previews_ = std::make_unique<ProductPreviews>();
    service_->handle(
        "/a", TlsService::always(TlsService::response(200, encoded(quarteredPicture({2000, 500}), "png"))));
}

void ProductCardPreviewTest::cleanup()
{
    previews_.reset();
    service_.reset();
}

std::unique_ptr<ProductCard> ProductCardPreviewTest::card(const QStringList &paths, int width)
{
    QJsonArray gallery;
    for (const QString &path : paths)
        gallery.append(QJsonObject{{u"url"_s, addressOf(path).toString()}, {u"label"_s, path}});
    QJsonObject object = product(u"Frame"_s);
    object.insert(u"preview_gallery"_s, gallery);
    const CatalogueServices services{texts_, nullptr, previews_.get()};
    auto card = std::make_unique<ProductCard>(object, services, [] {}, nullptr);
    card->resize(width, 600);
    card->show();
    return card;
}

QPixmap ProductCardPreviewTest::waitForPicture(const ProductCard &card)
{
    const QLabel *label = CardView(&card).preview();
    const bool hasCome = QTest::qWaitFor([label] { return !label->pixmap().isNull(); }, LongDeadlineMs);
    return hasCome ? label->pixmap() : QPixmap();
}

void ProductCardPreviewTest::pictureSize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("shown");
    QTest::newRow("2000x500") << QSize(2000, 500) << QSize(260, 65);
    QTest::newRow("as large as what is kept") << QSize(520, 280) << QSize(260, 140);
    QTest::newRow("high") << QSize(100, 700) << QSize(20, 140);
    QTest::newRow("square") << QSize(900, 900) << QSize(140, 140);
    QTest::newRow("small") << QSize(26, 14) << QSize(260, 140);
    QTest::newRow("line") << QSize(2000, 1) << QSize(260, 1);
}

void ProductCardPreviewTest::pictureSize()
{
    QFETCH(const QSize, size);
    service_->handle("/b", TlsService::always(TlsService::response(200, encoded(plainPicture(size), "png"))));
    const auto card = this->card({u"/b"_s});
    QTEST(waitForPicture(*card).size(), "shown");
    QCOMPARE(CardView(card.get()).preview()->height(), 140);
    QCOMPARE(CardView(card.get()).preview()->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
}

void ProductCardPreviewTest::narrowCardShowsItAtTheWidthOfItsLabel()
{
    const auto card = this->card({u"/a"_s}, 226);
    QCOMPARE(CardView(card.get()).preview()->width(), 200);
    QCOMPARE(waitForPicture(*card).size(), QSize(200, 50));
}

void ProductCardPreviewTest::pictureFollowsTheWidth()
{
    const auto card = this->card({u"/a"_s});
    QCOMPARE(waitForPicture(*card).size(), QSize(260, 65));
    const QLabel *label = CardView(card.get()).preview();
    card->resize(226, 600);
    QCOMPARE(label->pixmap().size(), QSize(200, 50));
    card->resize(800, 600);
    QCOMPARE(label->pixmap().size(), QSize(260, 65));
    // Taken from what is kept each time, so it has lost nothing.
    QCOMPARE(quartersOf(label->pixmap().toImage()), "RGBW");
}

void ProductCardPreviewTest::firstOfSeveralIsShown()
{
    const auto card = this->card({u"/a"_s, u"/b"_s, u"/c"_s});
    QCOMPARE(quartersOf(waitForPicture(*card).toImage()), "RGBW");
    QCOMPARE(service_->requests().size(), 1);
}

void ProductCardPreviewTest::withoutPictureTheTextStays_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::newRow("no address") << QStringList();
    QTest::newRow("not there") << QStringList(u"/missing"_s);
    QTest::newRow("no picture") << QStringList(u"/broken"_s);
}

void ProductCardPreviewTest::withoutPictureTheTextStays()
{
    QFETCH(const QStringList, paths);
    service_->handle("/broken", TlsService::always(TlsService::response(200, "<html>")));
    const auto card = this->card(paths);
    // Answered after whatever this card has asked for.
    const auto second = this->card({u"/a"_s});
    QVERIFY(!waitForPicture(*second).isNull());
    const auto third = this->card({u"/a?again"_s});
    QVERIFY(!waitForPicture(*third).isNull());
    QVERIFY(CardView(card.get()).preview()->pixmap().isNull());
    QCOMPARE(CardView(card.get()).preview()->text(), texts_.translate("Product.PreviewUnavailable"));
    QCOMPARE(service_->requests().size(), paths.size() + 2);
}

void ProductCardPreviewTest::languageSwitchKeepsThePicture()
{
    const auto card = this->card({u"/a"_s});
    QVERIFY(!waitForPicture(*card).isNull());
    texts_.setLanguage(PersianCode);
    card->retranslate();
    QVERIFY(!CardView(card.get()).preview()->pixmap().isNull());
    QCOMPARE(CardView(card.get()).preview()->text(), QString());
}

void ProductCardPreviewTest::languageSwitchBeforeThePicture()
{
    const auto card = this->card({u"/a"_s});
    texts_.setLanguage(PersianCode);
    card->retranslate();
    QCOMPARE(CardView(card.get()).preview()->text(), u"پیش‌نمایش موجود نیست"_s);
    QCOMPARE(waitForPicture(*card).size(), QSize(260, 65));
}

void ProductCardPreviewTest::pictureHasAName()
{
    const auto card = this->card({u"/a"_s});
    QCOMPARE(CardView(card.get()).preview()->accessibleName(), QString());
    QVERIFY(!waitForPicture(*card).isNull());
    QCOMPARE(CardView(card.get()).preview()->accessibleName(), u"Frame"_s);
}

void ProductCardPreviewTest::keptPictureIsShownAtOnce()
{
    QVERIFY(!waitForPicture(*card({u"/a"_s})).isNull());
    const auto again = card({u"/a"_s}, 226);
    QCOMPARE(CardView(again.get()).preview()->pixmap().size(), QSize(200, 50));
    QCOMPARE(service_->requests().size(), 1);
}

void ProductCardPreviewTest::cardGoneBeforeItsPicture()
{
    QList<WireConnection> held;
    service_->handle("/held", hold(held));
    auto gone = card({u"/held"_s});
    QTRY_COMPARE(held.size(), 1);
    gone.reset();
    held.first().send(TlsService::response(200, encoded(quarteredPicture(), "png")));
    const auto stays = card({u"/a"_s});
    QVERIFY(!waitForPicture(*stays).isNull());
}

void ProductCardPreviewTest::loaderGoneBeforeTheCard()
{
    const auto before = card({u"/a"_s});
    previews_.reset();
    const auto after = card({u"/a"_s});
    before->resize(300, 600);
    before->retranslate();
    QCOMPARE(CardView(before.get()).preview()->text(), texts_.translate("Product.PreviewUnavailable"));
    QCOMPARE(CardView(after.get()).preview()->text(), texts_.translate("Product.PreviewUnavailable"));
}

void ProductCardPreviewTest::densePixelsAreFilled()
{
    const auto card = this->card({u"/a"_s});
    card->move(OnDense);
    QTRY_COMPARE(card->devicePixelRatio(), 2.0);
    QTRY_COMPARE(waitForPicture(*card).devicePixelRatio(), 2.0);
    const QPixmap shown = waitForPicture(*card);
    QCOMPARE(shown.size(), QSize(520, 130));
    QCOMPARE(shown.deviceIndependentSize(), QSizeF(260, 65));
    card->resize(226, 600);
    QCOMPARE(waitForPicture(*card).size(), QSize(400, 100));
}

void ProductCardPreviewTest::changeOfTheScreen()
{
    const auto card = this->card({u"/a"_s});
    QCOMPARE(waitForPicture(*card).size(), QSize(260, 65));
    card->move(OnDense);
    QTRY_COMPARE(waitForPicture(*card).size(), QSize(520, 130));
    card->move(OnPlain);
    QTRY_COMPARE(waitForPicture(*card).size(), QSize(260, 65));
    QCOMPARE(waitForPicture(*card).devicePixelRatio(), 1.0);
}

} // namespace quillmar::test

int main(int argc, char *argv[])
{
    // The name of the file must not have a ':' in it.
    const QTemporaryDir folder;
    const QString formerFolder = QDir::currentPath();
    QFile screens(u"screens.json"_s);
    if (!QDir::setCurrent(folder.path()) || !screens.open(QIODevice::WriteOnly) ||
        screens.write(quillmar::test::Screens) < 0)
        return 1;
    screens.close();
    const QByteArray platform = "offscreen:configfile=" + screens.fileName().toUtf8();
    qputenv("QT_QPA_PLATFORM", platform);
    qputenv("QT_SCREEN_SCALE_FACTORS", quillmar::test::ScaleFactors);
    QApplication application(argc, argv);
    QDir::setCurrent(formerFolder);
    quillmar::test::ProductCardPreviewTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "product_card_preview_test.moc"
