#include "catalogue/product_list.h"

#include "catalogue/category_combo_box.h"
#include "catalogue/product_card.h"
#include "ui/plain_tool_tip.h"

#include <QHBoxLayout>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSet>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr QLatin1StringView CategoryStyle{
    "QComboBox { background: #151a17; color: white; border: 1px solid #3a443d; "
    "border-radius: 7px; padding: 10px 4px; }"};

/// Takes the cards out of sight while many of them change, so that the column is laid out and polished once
/// instead of once per card. Nothing is painted in between.
class HiddenWhileChanging
{
public:
    explicit HiddenWhileChanging(QWidget *widget) : widget_(widget), wasHidden_(widget->isHidden())
    {
        widget_->hide();
    }
    ~HiddenWhileChanging() { widget_->setHidden(wasHidden_); }
    Q_DISABLE_COPY_MOVE(HiddenWhileChanging)

private:
    QWidget *widget_;
    bool wasHidden_;
};

} // namespace

ProductList::ProductList(CatalogueServices services, std::function<void()> quotaChanged)
    : services_(std::move(services)), quotaChanged_(std::move(quotaChanged))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    buildHeader(layout);
    buildScrollArea(layout);
    connect(search_, &QLineEdit::textChanged, this, &ProductList::applyFilter);
    connect(categories_, &QComboBox::currentIndexChanged, this, &ProductList::chooseCategory);
    retranslate();
}

ProductList::~ProductList() = default;

void ProductList::buildHeader(QVBoxLayout *layout)
{
    auto *header = new QWidget(this);
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    search_ = new QLineEdit(header);
    search_->setMinimumWidth(0);
    search_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    row->addWidget(search_, 1);
    categories_ = new CategoryComboBox(header);
    categories_->setMinimumWidth(70);
    categories_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    categories_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    categories_->setStyleSheet(CategoryStyle);
    categories_->addItem(services_.localisation.translate("Products.AllCategories"), QString());
    row->addWidget(categories_, 0);
    layout->addWidget(header, 0);
}

void ProductList::buildScrollArea(QVBoxLayout *layout)
{
    scrollArea_ = new QScrollArea(this);
    scrollArea_->setWidgetResizable(true);
    scrollArea_->setFrameShape(QFrame::NoFrame);
    scrollArea_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout->addWidget(scrollArea_, 1);

    container_ = new QWidget;
    cardLayout_ = new QVBoxLayout(container_);
    cardLayout_->setContentsMargins(0, 0, 0, 0);
    cardLayout_->setSpacing(12);
    cardLayout_->setAlignment(Qt::AlignTop);
    noResults_ = new QLabel(container_);
    noResults_->setWordWrap(true);
    noResults_->hide();
    cardLayout_->addWidget(noResults_);
    scrollArea_->setWidget(container_);
}

void ProductList::setProducts(const QJsonArray &products)
{
    const HiddenWhileChanging hidden(container_);
    removeCards();
    const QSignalBlocker searchBlocker(search_);
    const QSignalBlocker categoriesBlocker(categories_);
    resetFilters();
    for (const auto &product : products) {
        if (product.isObject())
            addCard(product.toObject());
    }
    orderTabStops();
    addCategories();
    applyFilter();
}

void ProductList::removeCards()
{
    // The list is emptied first: a card that dies may let go of the focus and so call back into this widget.
    qDeleteAll(std::exchange(cards_, {}));
}

void ProductList::resetFilters()
{
    search_->clear();
    categories_->clear();
    categories_->addItem(services_.localisation.translate("Products.AllCategories"), QString());
    nameCategory();
}

void ProductList::addCard(const QJsonObject &product)
{
    auto *card = new ProductCard(product, services_, quotaChanged_, container_);
    cards_.append(card);
    cardLayout_->insertWidget(cardLayout_->count() - 1, card);
}

/// Qt puts new widgets behind everything in the window, which is all of OBS; the Tab key is to go on from the
/// list to its cards.
void ProductList::orderTabStops()
{
    QWidget *before = scrollArea_;
    for (const ProductCard *card : std::as_const(cards_)) {
        const QList<QPushButton *> buttons = card->findChildren<QPushButton *>();
        for (QPushButton *button : buttons) {
            setTabOrder(before, button);
            before = button;
        }
    }
}

void ProductList::addCategories()
{
    QSet<QString> known;
    for (const ProductCard *card : std::as_const(cards_)) {
        const QString category = card->category().trimmed();
        if (category.isEmpty() || known.contains(category))
            continue;
        known.insert(category);
        categories_->addItem(category, category);
    }
}

void ProductList::chooseCategory()
{
    nameCategory();
    applyFilter();
}

/// The drop-down may be too narrow for it, and a screen reader tells by it which products are listed.
void ProductList::nameCategory()
{
    const QString category = categories_->currentText();
    setPlainToolTip(categories_, category);
    scrollArea_->setAccessibleName(category);
}

void ProductList::applyFilter()
{
    const QString query = search_->text().trimmed();
    const QString category = categories_->currentData().toString();
    QList<ProductCard *> appearing;
    bool anyVisible = false;
    for (ProductCard *card : std::as_const(cards_)) {
        const bool visible = matches(*card, query, category);
        anyVisible = anyVisible || visible;
        if (!visible)
            card->hide();
        else if (card->isHidden())
            appearing.append(card);
    }
    if (!appearing.isEmpty()) {
        const HiddenWhileChanging hidden(container_);
        for (ProductCard *card : std::as_const(appearing))
            card->show();
    }
    noResults_->setVisible(!anyVisible && isFilterActive(query));
}

bool ProductList::matches(const ProductCard &card, const QString &query, const QString &category) const
{
    if (!category.isEmpty() && card.category().trimmed() != category)
        return false;
    return card.containsText(query);
}

bool ProductList::isFilterActive(const QString &query) const
{
    return !query.isEmpty() || categories_->currentIndex() > 0;
}

void ProductList::retranslate()
{
    const Localisation &texts = services_.localisation;
    const Qt::Alignment side = texts.readingSide() | Qt::AlignAbsolute;
    setLayoutDirection(texts.direction());
    categories_->setLayoutDirection(texts.direction());
    categories_->setItemText(0, texts.translate("Products.AllCategories"));
    categories_->setAccessibleName(texts.translate("Products.CategoryFilter"));
    categories_->setAccessibleDescription(categories_->accessibleName());
    nameCategory();
    search_->setLayoutDirection(texts.direction());
    search_->setAlignment(side | Qt::AlignVCenter);
    search_->setPlaceholderText(texts.translate("Products.SearchPlaceholder"));
    search_->setAccessibleName(texts.translate("Products.SearchPlaceholder"));
    noResults_->setLayoutDirection(texts.direction());
    noResults_->setAlignment(side | Qt::AlignTop);
    noResults_->setText(texts.translate("Products.NoSearchResults"));
    for (ProductCard *card : std::as_const(cards_))
        card->retranslate();
}

} // namespace quillmar
