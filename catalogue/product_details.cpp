#include "catalogue/product_details.h"

#include "catalogue/picture_view.h"
#include "obs/component_actions.h"
#include "ui/button.h"
#include "ui/focus_ring.h"
#include "ui/wrapping_label.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr QSize InitialSize(720, 760);
constexpr int LeastPreviewHeight = 260;
constexpr int PreviewHeight = 300;

/// UTF-16 units of a text that goes where it is laid out as one line: the title of a window, an item of a
/// drop-down. No screen is wider, and a megabyte takes seconds.
constexpr qsizetype LongestLine = 1000;

QString boundedLine(const QString &text)
{
    return text.size() <= LongestLine ? text : QString(leftWithoutSplitting(text, LongestLine) + u'…');
}

QString headerText(const ComponentProduct &product)
{
    return product.product_name + u'\n' + product.product_key + u" · "_s + product.product_version + u'\n' +
           product.description;
}

QString entryText(const ProductComponent &component)
{
    if (component.variant_label.isEmpty())
        return component.component_name;
    return component.component_name + u" — "_s + component.variant_label;
}

bool isEnter(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

ProductDetails::ProductDetails(const ComponentProduct &product, const Localisation &localisation,
                               ProductDownloads *downloads, ProductPreviews *previews, QWidget *parent)
    : QDialog(parent),
      product_(product),
      localisation_(localisation),
      downloads_(downloads),
      previews_(previews),
      isRightToLeft_(localisation.isRightToLeft())
{
    setAttribute(Qt::WA_DeleteOnClose);
    resize(InitialSize);
    build();
    selectEntry();
}

void ProductDetails::build()
{
    contentLayout_ = buildContent();
    header_ = new WrappingLabel(this);
    header_->setText(headerText(product_));
    contentLayout_->addWidget(header_);
    entries_ = new QComboBox(this);
    fillEntries();
    contentLayout_->addWidget(entries_);
    buildPicture(contentLayout_);
    buildButtons(contentLayout_);
    // An alignment of the layout would take the labels for one line each.
    contentLayout_->addStretch();
    connect(entries_, &QComboBox::currentIndexChanged, this, &ProductDetails::selectEntry);
    entries_->setFocus();
    new FocusRing(this);
}

QBoxLayout *ProductDetails::buildContent()
{
    auto *scrollArea = new QScrollArea(this);
    scrollArea->setWidgetResizable(true);
    scrollArea->setAccessibleName(boundedLine(product_.product_name));
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    scrollArea->setWidget(content);
    auto *outer = new QVBoxLayout(this);
    outer->addWidget(scrollArea);
    return layout;
}

void ProductDetails::fillEntries()
{
    entries_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    entries_->installEventFilter(this);
    entries_->addItem(QString());
    for (const ProductComponent &component : product_.components)
        entries_->addItem(boundedLine(entryText(component)));
}

void ProductDetails::buildPicture(QBoxLayout *layout)
{
    preview_ = new WrappingLabel(this);
    preview_->setMinimumHeight(LeastPreviewHeight);
    preview_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    preview_->setFixedHeight(PreviewHeight);
    preview_->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    preview_->installEventFilter(this);
    layout->addWidget(preview_);
    caption_ = new WrappingLabel(this);
    layout->addWidget(caption_);
}

void ProductDetails::buildButtons(QBoxLayout *layout)
{
    auto *row = new QHBoxLayout;
    for (QPushButton **button : {&previous_, &next_, &retry_, &enlarge_}) {
        *button = newButton(this);
        row->addWidget(*button);
    }
    layout->addLayout(row);
    // It comes and goes with every picture; the others must not move under the pointer.
    QSizePolicy keepsItsPlace = retry_->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    retry_->setSizePolicy(keepsItsPlace);
    connect(previous_, &QPushButton::clicked, this, [this] { step(-1); });
    connect(next_, &QPushButton::clicked, this, [this] { step(+1); });
    connect(retry_, &QPushButton::clicked, this, &ProductDetails::load);
    connect(enlarge_, &QPushButton::clicked, this, &ProductDetails::enlarge);
}

void ProductDetails::selectEntry()
{
    ComponentProduct shown = product_;
    const qsizetype component = entries_->currentIndex() - 1;
    if (component >= 0) {
        shown.components = {product_.components.at(component)};
        gallery_ = shown.components.first().previews;
    } else {
        gallery_ = product_.previews;
    }
    rebuildActions(shown);
    index_ = 0;
    load();
}

void ProductDetails::rebuildActions(const ComponentProduct &product)
{
    delete std::exchange(actions_, nullptr);
    if (product_.components.isEmpty())
        return;
    actions_ = new ComponentActions(product, downloads_, localisation_, this, /*expanded=*/true);
    contentLayout_->insertWidget(contentLayout_->count() - 1, actions_);
}

void ProductDetails::step(qint32 by)
{
    index_ += by;
    load();
}

void ProductDetails::load()
{
    const quint64 generation = ++generation_;
    image_ = {};
    const bool isEmpty = gallery_.isEmpty();
    previous_->setVisible(gallery_.size() >= 2);
    next_->setVisible(gallery_.size() >= 2);
    previous_->setEnabled(index_ >= 1);
    next_->setEnabled(index_ + 1 < gallery_.size());
    enlarge_->setEnabled(false);
    retry_->setVisible(!isEmpty);
    messageKey_ = isEmpty ? "Product.PreviewUnavailable" : "Gallery.Loading";
    applyLanguage(isRightToLeft_);
    if (isEmpty)
        return;
    const auto take = [this, generation](const QImage &image) { takeImage(generation, image); };
    if (previews_)
        previews_->request(gallery_.at(index_), this, take);
    else
        take({});
}

void ProductDetails::takeImage(quint64 generation, const QImage &image)
{
    if (generation != generation_)
        return;
    image_ = image;
    messageKey_ = image.isNull() ? "Gallery.Error" : "Product.PreviewUnavailable";
    enlarge_->setEnabled(!image.isNull());
    retry_->setVisible(image.isNull());
    showImage();
}

void ProductDetails::showImage()
{
    if (image_.isNull()) {
        preview_->setPixmap({});
        preview_->setText(localisation_.translate(messageKey_));
        preview_->setAccessibleName({});
    } else {
        preview_->setPixmap(fittedPixmap(image_, preview_->size(), preview_));
        preview_->setAccessibleName(caption_->text());
    }
}

void ProductDetails::applyLanguage(bool rightToLeft)
{
    isRightToLeft_ = rightToLeft;
    const Qt::LayoutDirection direction = rightToLeft ? Qt::RightToLeft : Qt::LeftToRight;
    setLayoutDirection(direction);
    setWindowTitle(
        boundedLine(localisation_.translate("Gallery.Details") + u" — "_s + product_.product_name));
    entries_->setItemText(0, localisation_.translate("Gallery.Overview"));
    entries_->setAccessibleName(localisation_.translate("Gallery.Select"));
    entries_->setAccessibleDescription(entries_->accessibleName());
    previous_->setText(localisation_.translate("Gallery.Previous"));
    next_->setText(localisation_.translate("Gallery.Next"));
    retry_->setText(localisation_.translate("Gallery.Retry"));
    enlarge_->setText(localisation_.translate("Gallery.Enlarge"));
    caption_->setText(captionText());
    const Qt::Alignment side = rightToLeft ? Qt::AlignRight : Qt::AlignLeft;
    for (QLabel *label : {header_, caption_})
        label->setAlignment(side | Qt::AlignTop | Qt::AlignAbsolute);
    if (actions_)
        actions_->retranslate(direction);
    showImage();
}

QString ProductDetails::captionText() const
{
    const QString prefix =
        localisation_.translate(entries_->currentIndex() == 0 ? "Gallery.Overview" : "Gallery.Component");
    if (gallery_.isEmpty())
        return prefix;
    return prefix + u" · "_s + QString::number(index_ + 1) + u'/' + QString::number(gallery_.size()) +
           u" · "_s + gallery_.at(index_).label;
}

void ProductDetails::enlarge()
{
    if (!image_.isNull())
        openEnlargedView(image_, boundedLine(caption_->text()), this);
}

/// Enter presses the button that has the focus, never another one.
void ProductDetails::keyPressEvent(QKeyEvent *event)
{
    if (!isEnter(*event))
        QDialog::keyPressEvent(event);
}

bool ProductDetails::eventFilter(QObject *watched, QEvent *event)
{
    const bool isFit = event->type() == QEvent::Resize || event->type() == QEvent::DevicePixelRatioChange;
    if (watched == preview_ && isFit)
        showImage();
    if (watched == entries_ && event->type() == QEvent::Wheel) {
        // Whoever scrolls the dialog does not mean to choose another entry on the way.
        event->ignore();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace quillmar
