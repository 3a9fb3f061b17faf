#include "bench/naive_catalogue.h"

#include <QComboBox>
#include <QFrame>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace quillmar::bench
{

using namespace Qt::StringLiterals;

namespace
{

constexpr QLatin1StringView CardStyle{
    "QFrame#quillmarProductCard { background-color: #151a17; border: 1px solid #55ff22; border-radius: 8px; }"
    "QFrame#quillmarProductCard QLabel { background: transparent; border: none; }"};
constexpr QLatin1StringView ComponentStyle{
    "QFrame#quillmarComponentCard { background-color: #111a15; border: 1px solid #365c2c; "
    "border-radius: 7px; }"};

QString buttonStyle(bool insert)
{
    const QString style =
        u"QPushButton { background-color: %1; color: #101810; border: none; border-radius: 6px; padding: "
        u"6px 8px; font-size: 13px; }"
        u"QPushButton:hover { background-color: %2; }"
        u"QPushButton:pressed { background-color: %3; }"
        u"QPushButton:disabled { background-color: %4; color: #17201d; }"_s;
    return insert ? style.arg(u"#18C8F4"_s, u"#50D8F8"_s, u"#10A6CE"_s, u"#528B99"_s)
                  : style.arg(u"#FF9D00"_s, u"#FFB638"_s, u"#D98200"_s, u"#A88855"_s);
}

QLabel *createLabel(QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

QLabel *createHiddenStatus(QWidget *parent)
{
    QLabel *label = createLabel(parent);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->hide();
    return label;
}

} // namespace

NaiveCatalogue::NaiveCatalogue(const Localisation &localisation) : localisation_(localisation)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    auto *header = new QWidget(this);
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    search_ = new QLineEdit(header);
    row->addWidget(search_, 1);
    categories_ = new QComboBox(header);
    categories_->setMinimumWidth(70);
    categories_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    row->addWidget(categories_, 0);
    layout->addWidget(header, 0);
    auto *scrollArea = new QScrollArea(this);
    scrollArea->setWidgetResizable(true);
    scrollArea->setFrameShape(QFrame::NoFrame);
    scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout->addWidget(scrollArea, 1);
    container_ = new QWidget;
    cardLayout_ = new QVBoxLayout(container_);
    cardLayout_->setContentsMargins(0, 0, 0, 0);
    cardLayout_->setSpacing(12);
    cardLayout_->setAlignment(Qt::AlignTop);
    noResults_ = new QLabel(container_);
    noResults_->setWordWrap(true);
    noResults_->hide();
    cardLayout_->addWidget(noResults_);
    scrollArea->setWidget(container_);
    setLayoutDirection(localisation_.direction());
    connect(search_, &QLineEdit::textChanged, this, &NaiveCatalogue::applyFilter);
}

void NaiveCatalogue::setProducts(const QJsonArray &products)
{
    for (const Card &card : std::as_const(cards_))
        delete card.widget;
    cards_.clear();
    search_->clear();
    categories_->clear();
    categories_->addItem(localisation_.translate("Products.AllCategories"), QString());
    for (const auto &product : products)
        addCard(product.toObject());
    applyFilter();
}

void NaiveCatalogue::addCard(const QJsonObject &object)
{
    auto *widget = new QFrame(container_);
    const Card card{widget, parseComponentProduct(object), object.value("category"_L1).toString()};
    fillCard(widget, card.product, card.category);
    if (categories_->findData(card.category) < 0)
        categories_->addItem(card.category, card.category);
    cardLayout_->insertWidget(cardLayout_->count() - 1, widget);
    cards_.append(card);
}

void NaiveCatalogue::fillCard(QWidget *widget, const ComponentProduct &product, const QString &category)
{
    widget->setObjectName("quillmarProductCard"_L1);
    widget->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
    widget->setStyleSheet(CardStyle);
    auto *layout = new QVBoxLayout(widget);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->setSpacing(10);
    auto *preview = new QLabel(widget);
    preview->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    preview->setFixedHeight(140);
    preview->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    preview->setWordWrap(true);
    auto *name = createLabel(widget);
    name->setText(product.product_name);
    name->setStyleSheet(u"font-size: 14px; font-weight: 700; color: #55ff22;"_s);
    auto *description = createLabel(widget);
    description->setToolTip(product.description);
    auto *download = new QPushButton(widget);
    auto *status = createLabel(widget);
    status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *details = new QPushButton(widget);
    for (QWidget *part :
         std::initializer_list<QWidget *>{preview, name, description, download, status, details})
        layout->addWidget(part);
    if (!product.components.isEmpty()) {
        download->hide();
        status->hide();
        layout->addWidget(createActions(product, widget));
    }
    widget->setLayoutDirection(localisation_.direction());
    for (QLabel *label : {name, description, status})
        turn(label);
    description->setText(product.description + u"\n\n"_s + localisation_.translate("Product.Category") +
                         u": "_s + category + u'\n' + localisation_.translate("Product.Version") + u": "_s +
                         product.product_version);
    download->setText(localisation_.translate("Product.Download"));
    details->setText(localisation_.translate("Gallery.Details"));
    preview->setText(localisation_.translate("Product.PreviewUnavailable"));
}

QWidget *NaiveCatalogue::createActions(const ComponentProduct &product, QWidget *parent)
{
    auto *actions = new QWidget(parent);
    auto *layout = new QVBoxLayout(actions);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *toggle = new QPushButton(actions);
    toggle->setCheckable(true);
    layout->addWidget(toggle);
    auto *folded = new QWidget(actions);
    layout->addWidget(folded);
    folded->hide();
    connect(toggle, &QPushButton::toggled, folded, &QWidget::setVisible);
    auto *cards = new QVBoxLayout(folded);
    cards->setContentsMargins(0, 0, 0, 0);
    cards->setSpacing(8);
    for (const ProductComponent &component : product.components)
        addComponent(cards, component, folded);
    layout->addWidget(createAction("Component.FullDownload", false, actions));
    layout->addWidget(createHiddenStatus(actions));
    actions->setLayoutDirection(localisation_.direction());
    toggle->setText(localisation_.translate("Component.Contents")
                        .replace("%1"_L1, QString::number(product.components.size())));
    const QList<QLabel *> labels = actions->findChildren<QLabel *>();
    for (QLabel *label : labels)
        label->setAlignment(localisation_.readingSide() | Qt::AlignAbsolute | Qt::AlignTop);
    return actions;
}

void NaiveCatalogue::addComponent(QBoxLayout *layout, const ProductComponent &component, QWidget *parent)
{
    auto *card = new QFrame(parent);
    card->setObjectName("quillmarComponentCard"_L1);
    card->setStyleSheet(ComponentStyle);
    layout->addWidget(card);
    auto *cardLayout = new QVBoxLayout(card);
    cardLayout->setContentsMargins(8, 8, 8, 8);
    cardLayout->setSpacing(6);
    auto *title = createLabel(card);
    title->setText(component.component_name);
    cardLayout->addWidget(title);
    auto *row = new QHBoxLayout;
    row->setSpacing(6);
    cardLayout->addLayout(row);
    row->addWidget(createAction("Component.Add", true, card), 1);
    cardLayout->addWidget(createHiddenStatus(card));
    row->addWidget(createAction("Product.Download", false, card), 1);
    cardLayout->addWidget(createHiddenStatus(card));
}

QPushButton *NaiveCatalogue::createAction(const char *key, bool insert, QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setStyleSheet(buttonStyle(insert));
    button->setText(localisation_.translate(key));
    return button;
}

void NaiveCatalogue::turn(QLabel *label) const
{
    label->setLayoutDirection(localisation_.direction());
    label->setAlignment(localisation_.readingSide() | Qt::AlignTop | Qt::AlignAbsolute);
}

void NaiveCatalogue::applyFilter()
{
    const QString query = search_->text().trimmed();
    bool any = false;
    for (const Card &card : std::as_const(cards_)) {
        const bool visible = card.product.product_name.contains(query, Qt::CaseInsensitive) ||
                             card.product.description.contains(query, Qt::CaseInsensitive) ||
                             card.category.contains(query, Qt::CaseInsensitive);
        card.widget->setVisible(visible);
        any = any || visible;
    }
    noResults_->setVisible(!any && !query.isEmpty());
}

} // namespace quillmar::bench
