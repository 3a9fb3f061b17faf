#include "tests/unit/catalogue/catalogue_fixture.h"

#include <QPointer>
#include <QScrollArea>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class ProductListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void layout();
    void header();
    void scrollArea();
    void skipsElementsThatAreNotObjects();
    void cardsKeepTheOrderAndTheMessageStaysLast();
    void replacesEveryCard();
    void categoriesInOrderOfAppearance();
    void trimmedCategoriesAreOne();
    void categoriesAreCaseSensitive();
    void blankCategoryAddsNoEntry();
    void productWithoutCategoryIsListedUnderAllOnly();
    void searchIsCaseInsensitive();
    void blanksAreAnEmptySearch();
    void searchAndCategoryTogether();
    void noResultsMessage();
    void noResultsForACategoryAndASearch();
    void emptyCatalogueShowsNothing();
    void newProductsResetTheFilters();
    void resettingFiresNoSignals();
    void signalBlockingIsRestored();
    void cardsBecomeVisibleWithTheList();
    void filterWorksWhileVisible();
    void toolTipFollowsTheCategory();
    void retranslates();
    void tenThousandProducts();
    void dyingListTakesItsCards();

private:
    QLineEdit *search() const { return list_->findChild<QLineEdit *>(); }
    CategoryComboBox *categories() const { return list_->findChild<CategoryComboBox *>(); }
    QScrollArea *scrolling() const { return list_->findChild<QScrollArea *>(); }
    QVBoxLayout *column() const { return qobject_cast<QVBoxLayout *>(scrolling()->widget()->layout()); }
    QLabel *noResults() const
    {
        return qobject_cast<QLabel *>(column()->itemAt(column()->count() - 1)->widget());
    }
    QStringList categoryTexts() const
    {
        QStringList texts;
        for (int index = 0; index < categories()->count(); ++index)
            texts.append(categories()->itemText(index));
        return texts;
    }

    Localisation texts_ = LocaleFiles().localisation(EnglishCode);
    std::unique_ptr<ProductList> list_;
};

void ProductListTest::init()
{
    texts_.setLanguage(EnglishCode);
    list_ = std::make_unique<ProductList>(CatalogueServices{texts_, nullptr}, [] {});
}

void ProductListTest::layout()
{
    QVERIFY(!list_->parentWidget());
    const auto *outer = qobject_cast<QVBoxLayout *>(list_->layout());
    QVERIFY(outer);
    QCOMPARE(outer->contentsMargins(), QMargins());
    QCOMPARE(outer->spacing(), 12);
    QCOMPARE(outer->count(), 2);
    QCOMPARE(outer->stretch(0), 0);
    QCOMPARE(outer->stretch(1), 1);
    QCOMPARE(outer->itemAt(1)->widget(), scrolling());
}

void ProductListTest::header()
{
    const auto *row = qobject_cast<QHBoxLayout *>(list_->layout()->itemAt(0)->widget()->layout());
    QVERIFY(row);
    QCOMPARE(row->contentsMargins(), QMargins());
    QCOMPARE(row->spacing(), 8);
    QCOMPARE(row->itemAt(0)->widget(), search());
    QCOMPARE(row->itemAt(1)->widget(), categories());
    QCOMPARE(row->stretch(0), 1);
    QCOMPARE(row->stretch(1), 0);
    QCOMPARE(search()->minimumWidth(), 0);
    QCOMPARE(search()->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(search()->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(categories()->minimumWidth(), 70);
    QCOMPARE(categories()->sizePolicy().horizontalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(categories()->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(categories()->sizeAdjustPolicy(), QComboBox::AdjustToMinimumContentsLengthWithIcon);
    QCOMPARE(categories()->styleSheet(), u"QComboBox { background: #151a17; color: white; border: 1px solid "
                                         "#3a443d; border-radius: 7px; padding: 10px 4px; }"_s);
    QCOMPARE(categoryTexts(), QStringList{u"All categories"_s});
    QCOMPARE(categories()->itemData(0).toString(), QString());
}

void ProductListTest::scrollArea()
{
    QVERIFY(scrolling()->widgetResizable());
    QCOMPARE(scrolling()->frameShape(), QFrame::NoFrame);
    QCOMPARE(scrolling()->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(column()->contentsMargins(), QMargins());
    QCOMPARE(column()->spacing(), 12);
    QCOMPARE(column()->alignment(), Qt::AlignTop);
    QCOMPARE(column()->count(), 1);
    QVERIFY(noResults()->wordWrap());
    QVERIFY(noResults()->isHidden());
}

void ProductListTest::skipsElementsThatAreNotObjects()
{
    list_->setProducts({5, product(u"A"_s), u"text"_s, QJsonArray{product(u"no"_s)}, product(u"B"_s), true});
    QCOMPARE(shownNames(*list_), (QStringList{u"A"_s, u"B"_s}));
}

void ProductListTest::cardsKeepTheOrderAndTheMessageStaysLast()
{
    list_->setProducts({product(u"C"_s), product(u"A"_s), product(u"B"_s)});
    QCOMPARE(column()->count(), 4);
    QStringList names;
    for (int place = 0; place < 3; ++place)
        names.append(CardView(column()->itemAt(place)->widget()).name()->text());
    QCOMPARE(names, (QStringList{u"C"_s, u"A"_s, u"B"_s}));
    QCOMPARE(noResults()->text(), u"No product matches. Change your search or the category."_s);
}

void ProductListTest::replacesEveryCard()
{
    list_->setProducts({product(u"A"_s), product(u"B"_s)});
    const QPointer<ProductCard> old = cardsOf(*list_).first();
    list_->setProducts({product(u"C"_s)});
    QVERIFY2(old.isNull(), "destroyed at once");
    QCOMPARE(shownNames(*list_), QStringList{u"C"_s});
    QCOMPARE(column()->count(), 2);
}

void ProductListTest::categoriesInOrderOfAppearance()
{
    list_->setProducts({product(u"1"_s, {}, u"Scenes"_s), product(u"2"_s, {}, u"Frames"_s),
                        product(u"3"_s, {}, u"Scenes"_s), product(u"4"_s, {}, u"Clips"_s)});
    QCOMPARE(categoryTexts(), (QStringList{u"All categories"_s, u"Scenes"_s, u"Frames"_s, u"Clips"_s}));
    QCOMPARE(categories()->itemData(2).toString(), u"Frames"_s);
}

void ProductListTest::trimmedCategoriesAreOne()
{
    list_->setProducts({product(u"1"_s, {}, u"Overlay"_s), product(u"2"_s, {}, u" Overlay "_s)});
    QCOMPARE(categoryTexts(), (QStringList{u"All categories"_s, u"Overlay"_s}));
    categories()->setCurrentIndex(1);
    QCOMPARE(shownNames(*list_), (QStringList{u"1"_s, u"2"_s}));
}

void ProductListTest::categoriesAreCaseSensitive()
{
    list_->setProducts({product(u"1"_s, {}, u"overlay"_s), product(u"2"_s, {}, u"Overlay"_s)});
    QCOMPARE(categories()->count(), 3);
    categories()->setCurrentIndex(1);
    QCOMPARE(shownNames(*list_), QStringList{u"1"_s});
    categories()->setCurrentIndex(0);
    search()->setText(u"OVERLAY"_s);
    QCOMPARE(shownNames(*list_), (QStringList{u"1"_s, u"2"_s}));
}

void ProductListTest::blankCategoryAddsNoEntry()
{
    list_->setProducts({product(u"1"_s, {}, u"  \t"_s), product(u"2"_s)});
    QCOMPARE(categories()->count(), 1);
}

void ProductListTest::productWithoutCategoryIsListedUnderAllOnly()
{
    list_->setProducts({product(u"1"_s), product(u"2"_s, {}, u"Frames"_s)});
    QCOMPARE(shownNames(*list_), (QStringList{u"1"_s, u"2"_s}));
    categories()->setCurrentIndex(1);
    QCOMPARE(shownNames(*list_), QStringList{u"2"_s});
}

void ProductListTest::searchIsCaseInsensitive()
{
    list_->setProducts({product(u"A"_s, u"A webcam frame"_s), product(u"B"_s, u"A clip"_s)});
    search()->setText(u"FRAME"_s);
    QCOMPARE(shownNames(*list_), QStringList{u"A"_s});
}

void ProductListTest::blanksAreAnEmptySearch()
{
    list_->setProducts({product(u"A"_s), product(u"B"_s)});
    search()->setText(u"   "_s);
    QCOMPARE(shownNames(*list_).size(), 2);
    QVERIFY(noResults()->isHidden());
}

void ProductListTest::searchAndCategoryTogether()
{
    list_->setProducts({product(u"Night"_s, {}, u"Frames"_s), product(u"Day"_s, {}, u"Frames"_s),
                        product(u"Night"_s, {}, u"Clips"_s)});
    categories()->setCurrentIndex(1);
    search()->setText(u" night "_s);
    QCOMPARE(shownNames(*list_).size(), 1);
    QVERIFY(!cardsOf(*list_).first()->isHidden());
}

void ProductListTest::noResultsMessage()
{
    list_->setProducts({product(u"A"_s)});
    search()->setText(u"nothing like it"_s);
    QVERIFY(!noResults()->isHidden());
    QCOMPARE(shownNames(*list_), QStringList());
    search()->clear();
    QVERIFY(noResults()->isHidden());
    QCOMPARE(shownNames(*list_), QStringList{u"A"_s});
}

void ProductListTest::noResultsForACategoryAndASearch()
{
    list_->setProducts({product(u"A"_s, {}, u"Frames"_s), product(u"B"_s)});
    categories()->setCurrentIndex(1);
    QVERIFY(noResults()->isHidden());
    search()->setText(u"B"_s);
    QVERIFY(!noResults()->isHidden());
}

void ProductListTest::emptyCatalogueShowsNothing()
{
    list_->setProducts({product(u"A"_s, {}, u"Frames"_s)});
    list_->setProducts({});
    QCOMPARE(cardsOf(*list_).size(), 0);
    QCOMPARE(categories()->count(), 1);
    QVERIFY(noResults()->isHidden());
    search()->setText(u"x"_s);
    QVERIFY(!noResults()->isHidden());
}

void ProductListTest::newProductsResetTheFilters()
{
    list_->setProducts({product(u"A"_s, {}, u"Frames"_s), product(u"B"_s, {}, u"Clips"_s)});
    categories()->setCurrentIndex(2);
    search()->setText(u"zzz"_s);
    list_->setProducts({product(u"C"_s, {}, u"Frames"_s)});
    QCOMPARE(search()->text(), QString());
    QCOMPARE(categories()->currentIndex(), 0);
    QCOMPARE(categories()->toolTip(), u"All categories"_s);
    QCOMPARE(shownNames(*list_), QStringList{u"C"_s});
    QVERIFY(noResults()->isHidden());
}

void ProductListTest::resettingFiresNoSignals()
{
    list_->setProducts({product(u"A"_s, {}, u"Frames"_s)});
    categories()->setCurrentIndex(1);
    search()->setText(u"A"_s);
    QSignalSpy texts(search(), &QLineEdit::textChanged);
    QSignalSpy indexes(categories(), &QComboBox::currentIndexChanged);
    list_->setProducts({});
    QCOMPARE(texts.count(), 0);
    QCOMPARE(indexes.count(), 0);
}

void ProductListTest::signalBlockingIsRestored()
{
    list_->setProducts({});
    QVERIFY(!search()->signalsBlocked());
    QVERIFY(!categories()->signalsBlocked());
    search()->blockSignals(true);
    list_->setProducts({});
    QVERIFY(search()->signalsBlocked());
    QVERIFY(!categories()->signalsBlocked());
}

void ProductListTest::cardsBecomeVisibleWithTheList()
{
    list_->resize(300, 600);
    list_->show();
    list_->setProducts({product(u"A"_s), product(u"B"_s)});
    const auto cards = cardsOf(*list_);
    for (const ProductCard *card : cards)
        QVERIFY(card->isVisible());
    QVERIFY(QTest::qWaitForWindowExposed(list_.get()));
    QTRY_VERIFY(cards.last()->y() >= cards.first()->geometry().bottom());
}

void ProductListTest::filterWorksWhileVisible()
{
    list_->resize(300, 600);
    list_->setProducts({product(u"A"_s), product(u"B"_s)});
    list_->show();
    search()->setFocus();
    QTest::keyClicks(search(), u"b"_s);
    QCOMPARE(shownNames(*list_), QStringList{u"B"_s});
    QVERIFY(cardsOf(*list_).last()->isVisible());
    QTest::keyClick(search(), Qt::Key_Backspace);
    for (const ProductCard *card : cardsOf(*list_))
        QVERIFY(card->isVisible());
}

void ProductListTest::toolTipFollowsTheCategory()
{
    list_->setProducts({product(u"A"_s, {}, u"Frames"_s)});
    QCOMPARE(categories()->toolTip(), u"All categories"_s);
    categories()->setCurrentIndex(1);
    QCOMPARE(categories()->toolTip(), u"Frames"_s);
}

void ProductListTest::retranslates()
{
    list_->setProducts({product(u"A"_s, u"text"_s, u"Frames"_s)});
    QCOMPARE(list_->layoutDirection(), Qt::LeftToRight);
    QCOMPARE(search()->alignment(), Qt::AlignLeft | Qt::AlignVCenter | Qt::AlignAbsolute);
    QCOMPARE(noResults()->alignment(), Qt::AlignLeft | Qt::AlignTop | Qt::AlignAbsolute);
    texts_.setLanguage(PersianCode);
    list_->retranslate();
    for (const QWidget *widget : std::initializer_list<const QWidget *>{list_.get(), search(), categories(),
                                                                        noResults(), cardsOf(*list_).first()})
        QCOMPARE(widget->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(categoryTexts(), (QStringList{u"همهٔ دسته‌ها"_s, u"Frames"_s}));
    QCOMPARE(categories()->accessibleName(), u"فیلتر دسته"_s);
    QCOMPARE(categories()->toolTip(), u"همهٔ دسته‌ها"_s);
    QCOMPARE(search()->placeholderText(), u"جستجو"_s);
    QCOMPARE(search()->accessibleName(), u"جستجو"_s);
    QCOMPARE(search()->alignment(), Qt::AlignRight | Qt::AlignVCenter | Qt::AlignAbsolute);
    QCOMPARE(noResults()->alignment(), Qt::AlignRight | Qt::AlignTop | Qt::AlignAbsolute);
    QVERIFY(noResults()->text().startsWith(u"محصولی پیدا نشد"_s));
    QVERIFY(CardView(cardsOf(*list_).first()).description()->text().contains(u"دسته: Frames"_s));
}

void ProductListTest::tenThousandProducts()
{
    QJsonArray products;
    for (int number = 0; number < 10000; ++number)
        products.append(product(u"Product %1"_s.arg(number), u"text"_s, u"Category %1"_s.arg(number)));
    list_->setProducts(products);
    QCOMPARE(cardsOf(*list_).size(), 10000);
    QCOMPARE(categories()->count(), 10001);
    search()->setText(u"product 9999"_s);
    QCOMPARE(shownNames(*list_), QStringList{u"Product 9999"_s});
    QCoreApplication::sendPostedEvents(); // as the event loop does before the next list comes
}

void ProductListTest::dyingListTakesItsCards()
{
    list_->setProducts({product(u"A"_s)});
    const QPointer<ProductCard> card = cardsOf(*list_).first();
    list_.reset();
    QVERIFY(card.isNull());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::ProductListTest)
#include "product_list_test.moc"
