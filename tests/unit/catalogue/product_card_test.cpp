#include "obs/component_actions.h"
#include "tests/unit/catalogue/catalogue_fixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class ProductCardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { texts_.setLanguage(EnglishCode); }
    void frameAndLayout();
    void previewLabel();
    void nameLabel();
    void textLabelsShowPlainText();
    void descriptionTextInEnglish();
    void descriptionTextInPersian();
    void missingKeysAreEmpty();
    void wrongTypesAreEmpty();
    void descriptionLength_data();
    void descriptionLength();
    void captions();
    void languageSwitchTurnsTheCard();
    void languageSwitchKeepsTheStatusSuffix();
    void statusWithoutKeyIsLeftAlone();
    void withoutHandlerNothingCanBeDownloaded();
    void downloadButtonStartsTheDownload();
    void productWithComponentsHasNeitherDownloadNorStatus();
    void componentActionsFollowTheLanguage();
    void containsText_data();
    void containsText();

private:
    std::unique_ptr<ProductCard> card(const QJsonObject &object) const
    {
        return std::make_unique<ProductCard>(object, CatalogueServices{texts_, nullptr}, [] {}, nullptr);
    }

    Localisation texts_ = LocaleFiles().localisation(EnglishCode);
};

void ProductCardTest::frameAndLayout()
{
    const auto card = this->card(product(u"Frame"_s));
    QCOMPARE(card->objectName(), u"quillmarProductCard"_s);
    QCOMPARE(card->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(card->sizePolicy().verticalPolicy(), QSizePolicy::Maximum);
    QCOMPARE(
        card->styleSheet(),
        u"QFrame#quillmarProductCard { background-color: #151a17; border: 1px solid #55ff22; border-radius: "
        "8px; }QFrame#quillmarProductCard QLabel { background: transparent; border: none; }"_s);
    QCOMPARE(card->layout()->contentsMargins(), QMargins(12, 12, 12, 12));
    QCOMPARE(card->layout()->spacing(), 10);
    QCOMPARE(card->layout()->count(), 6);
}

void ProductCardTest::previewLabel()
{
    const auto card = this->card(product(u"Frame"_s));
    const QLabel *preview = CardView(card.get()).preview();
    QCOMPARE(preview->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
    QCOMPARE(preview->minimumHeight(), 140);
    QCOMPARE(preview->maximumHeight(), 140);
    QCOMPARE(preview->sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
    QCOMPARE(preview->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QVERIFY(preview->wordWrap());
    QCOMPARE(preview->text(), u"No preview available"_s);
}

void ProductCardTest::nameLabel()
{
    const auto card = this->card(product(u"Night frame"_s));
    QCOMPARE(CardView(card.get()).name()->text(), u"Night frame"_s);
    QCOMPARE(CardView(card.get()).name()->styleSheet(),
             u"font-size: 14px; font-weight: 700; color: #55ff22;"_s);
}

void ProductCardTest::textLabelsShowPlainText()
{
    const auto card = this->card(product(u"Frame"_s));
    const CardView view(card.get());
    for (const QLabel *label : {view.name(), view.description(), view.status()}) {
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QVERIFY(label->wordWrap());
        QCOMPARE(label->sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
        QCOMPARE(label->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    }
    QCOMPARE(view.status()->textInteractionFlags(), Qt::TextSelectableByMouse);
}

void ProductCardTest::descriptionTextInEnglish()
{
    const auto card = this->card(product(u"Frame"_s, u"  For a \n webcam "_s, u"Overlay"_s));
    const QLabel *description = CardView(card.get()).description();
    QCOMPARE(description->text(), u"For a webcam\n\n\u2066Category: Overlay\nVersion: 1.2.3"_s);
    QCOMPARE(description->toolTip(), u"For a webcam"_s);
    QCOMPARE(description->property("productName").toString(), u"Frame"_s);
    QCOMPARE(description->property("productDescription").toString(), u"For a webcam"_s);
    QCOMPARE(description->property("productCategory").toString(), u"Overlay"_s);
    QCOMPARE(description->property("productVersion").toString(), u"1.2.3"_s);
}

void ProductCardTest::descriptionTextInPersian()
{
    texts_.setLanguage(PersianCode);
    const auto card = this->card(product(u"Frame"_s, u"قاب"_s, u"روکش"_s));
    QCOMPARE(CardView(card.get()).description()->text(), u"قاب\n\n\u2067دسته: روکش\nنسخه: 1.2.3"_s);
}

void ProductCardTest::missingKeysAreEmpty()
{
    const auto card = this->card({});
    QCOMPARE(CardView(card.get()).name()->text(), QString());
    QCOMPARE(CardView(card.get()).description()->text(), u"\n\n\u2066Category: \nVersion: "_s);
    QCOMPARE(CardView(card.get()).description()->toolTip(), QString());
    QCOMPARE(card->category(), QString());
}

void ProductCardTest::wrongTypesAreEmpty()
{
    const auto card = this->card({{u"product_name"_s, 7},
                                  {u"description"_s, QJsonArray{1}},
                                  {u"category"_s, true},
                                  {u"product_version"_s, QJsonValue()},
                                  {u"components"_s, u"many"_s}});
    QCOMPARE(CardView(card.get()).name()->text(), QString());
    QCOMPARE(CardView(card.get()).description()->text(), u"\n\n\u2066Category: \nVersion: "_s);
}

void ProductCardTest::descriptionLength_data()
{
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("shown");
    QTest::newRow("240 units whole") << QString(240, u'd') << QString(240, u'd');
    QTest::newRow("241 units cut") << QString(241, u'd') << QString(QString(237, u'd') + u'…');
    QTest::newRow("240 units after simplifying")
        << QString(u"  "_s + QString(240, u'd') + u"\n\n"_s) << QString(240, u'd');
    QTest::newRow("pair at the cut") << QString(QString(236, u'd') + u"\U0001F600dddd"_s)
                                     << QString(QString(236, u'd') + u'…');
}

void ProductCardTest::descriptionLength()
{
    QFETCH(QString, description);
    QFETCH(QString, shown);
    const auto card = this->card(product(u"Frame"_s, description));
    const QLabel *label = CardView(card.get()).description();
    QCOMPARE(label->property("productDescription").toString(), shown);
    QVERIFY(label->text().startsWith(QString(shown + u"\n\n"_s)));
    QCOMPARE(label->toolTip(), description.simplified());
}

void ProductCardTest::captions()
{
    const auto card = this->card(product(u"Frame"_s));
    QCOMPARE(CardView(card.get()).download()->text(), u"Download"_s);
    QCOMPARE(CardView(card.get()).details()->text(), u"Details"_s);
}

void ProductCardTest::languageSwitchTurnsTheCard()
{
    const auto card = this->card(product(u"Frame"_s, u"text"_s, u"Overlay"_s));
    const CardView view(card.get());
    const QList<QLabel *> labels{view.name(), view.description(), view.status()};
    for (const QLabel *label : labels)
        QCOMPARE(label->alignment(), Qt::AlignLeft | Qt::AlignTop | Qt::AlignAbsolute);
    texts_.setLanguage(PersianCode);
    card->retranslate();
    QCOMPARE(card->layoutDirection(), Qt::RightToLeft);
    for (const QLabel *label : labels) {
        QCOMPARE(label->layoutDirection(), Qt::RightToLeft);
        QCOMPARE(label->alignment(), Qt::AlignRight | Qt::AlignTop | Qt::AlignAbsolute);
    }
    QCOMPARE(view.download()->text(), u"دانلود"_s);
    QCOMPARE(view.details()->text(), u"جزئیات"_s);
    QCOMPARE(view.preview()->text(), u"پیش‌نمایش موجود نیست"_s);
    QCOMPARE(view.description()->text(), u"text\n\n\u2067دسته: Overlay\nنسخه: 1.2.3"_s);
}

void ProductCardTest::languageSwitchKeepsTheStatusSuffix()
{
    const auto card = this->card(product(u"Frame"_s));
    QLabel *status = CardView(card.get()).status();
    texts_.setTranslatedText(status, u"Download.Success"_s, u"\n/home/x/a.zip"_s);
    texts_.setLanguage(PersianCode);
    card->retranslate();
    QCOMPARE(status->text(), u"ذخیره شد در:\n/home/x/a.zip"_s);
}

void ProductCardTest::statusWithoutKeyIsLeftAlone()
{
    const auto card = this->card(product(u"Frame"_s));
    card->retranslate();
    QCOMPARE(CardView(card.get()).status()->text(), QString());
}

void ProductCardTest::withoutHandlerNothingCanBeDownloaded()
{
    const auto card = this->card(product(u"Frame"_s));
    QVERIFY(!CardView(card.get()).download()->isHidden());
    QVERIFY(!CardView(card.get()).download()->isEnabled());
}

void ProductCardTest::downloadButtonStartsTheDownload()
{
    int quotaChanges = 0;
    QPushButton *button = nullptr;
    QLabel *status = nullptr;
    QString key;
    qint64 fileSize = -1;
    CatalogueServices services{texts_, nullptr};
    services.startDirectDownload = [&](QPushButton *b, QLabel *s, const QString &k,
                                       const std::function<void()> &q, qint64 size) {
        fileSize = size;
        button = b;
        status = s;
        key = k;
        q();
    };
    QJsonObject object = product(u"Frame"_s);
    object.insert(u"file_size"_s, 4711);
    const ProductCard card(object, services, [&] { ++quotaChanges; }, nullptr);
    const CardView view(&card);
    QVERIFY(view.download()->isEnabled());
    view.download()->click();
    QCOMPARE(button, view.download());
    QCOMPARE(status, view.status());
    QCOMPARE(key, u"key-Frame"_s);
    QCOMPARE(fileSize, 4711);
    QCOMPARE(quotaChanges, 1);
}

void ProductCardTest::productWithComponentsHasNeitherDownloadNorStatus()
{
    const auto card = this->card(productWithComponent(u"Pack"_s));
    const CardView view(card.get());
    QVERIFY(view.download()->isHidden());
    QVERIFY(view.status()->isHidden());
    QCOMPARE(card->layout()->count(), 7);
    QVERIFY(qobject_cast<ComponentActions *>(view.at(6)));
}

void ProductCardTest::componentActionsFollowTheLanguage()
{
    const auto card = this->card(productWithComponent(u"Pack"_s));
    const QWidget *actions = CardView(card.get()).at(6);
    QCOMPARE(actions->layoutDirection(), Qt::LeftToRight);
    texts_.setLanguage(PersianCode);
    card->retranslate();
    QCOMPARE(actions->layoutDirection(), Qt::RightToLeft);
}

void ProductCardTest::containsText_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<bool>("found");
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("name") << u"night"_s << true;
    QTest::newRow("description, other case") << u"FRAME"_s << true;
    QTest::newRow("category") << u"over"_s << true;
    QTest::newRow("beyond the shown description") << u"needle"_s << true;
    QTest::newRow("version is not searched") << u"1.2.3"_s << false;
    QTest::newRow("across fields") << u"nightwebcam"_s << false;
}

void ProductCardTest::containsText()
{
    QFETCH(QString, query);
    const QString description = u"a webcam frame "_s + QString(300, u'x') + u" needle"_s;
    const auto card = this->card(product(u"Night"_s, description, u"Overlay"_s));
    QTEST(card->containsText(query), "found");
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::ProductCardTest)
#include "product_card_test.moc"
