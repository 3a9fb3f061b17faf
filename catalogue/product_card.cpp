#include "catalogue/product_card.h"

#include "catalogue/product_details.h"
#include "obs/component_actions.h"
#include "ui/button.h"
#include "ui/plain_tool_tip.h"
#include "ui/selectable_label.h"
#include "ui/wrapping_label.h"

#include <QEvent>
#include <QJsonObject>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr QLatin1StringView CardStyle{
    "QFrame#quillmarProductCard { background-color: #151a17; border: 1px solid #55ff22; border-radius: 8px; }"
    "QFrame#quillmarProductCard QLabel { background: transparent; border: none; }"};
constexpr QLatin1StringView NameStyle{"font-size: 14px; font-weight: 700; color: #55ff22;"};

/// Largest place of the preview on the card, and what is kept for it: enough for twice as many pixels.
constexpr QSize ShownPreview{260, 140};
constexpr QSize KeptPreview{520, 280};

/// Longest description shown whole, and what is left of a longer one before the ellipsis; UTF-16 units.
constexpr qsizetype WholeDescription = 240;
constexpr qsizetype CutDescription = 237;

QString shortened(const QString &description)
{
    if (description.size() <= WholeDescription)
        return description;
    return leftWithoutSplitting(description, CutDescription) + u'…';
}

} // namespace

ProductCard::ProductCard(const QJsonObject &product, const CatalogueServices &services,
                         const std::function<void()> &quotaChanged, QWidget *parent)
    : QFrame(parent),
      localisation_(services.localisation),
      downloads_(services.downloads),
      previews_(services.previews),
      product_(parseComponentProduct(product)),
      category_(product.value("category"_L1).toString())
{
    setObjectName("quillmarProductCard"_L1);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
    setStyleSheet(CardStyle);
    setAccessibleName(product_.product_name);
    buildLabels();
    layOut();
    addDetailsButton();
    if (product_.components.isEmpty())
        addDirectDownload(services, quotaChanged);
    else
        addComponentActions();
    retranslate();
    // Only now: a layout in place asks to be done again for every widget and every text.
    setLayout(layout_);
    requestPreview();
}

void ProductCard::buildLabels()
{
    previewLabel_ = new WrappingLabel(this);
    previewLabel_->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    previewLabel_->setFixedHeight(ShownPreview.height());
    previewLabel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    nameLabel_ = new WrappingLabel(this);
    nameLabel_->setText(product_.product_name);
    nameLabel_->setStyleSheet(NameStyle);
    descriptionLabel_ = new WrappingLabel(this);
    describe();
    downloadButton_ = newButton(this);
    statusLabel_ = new SelectableLabel(this);
}

void ProductCard::describe()
{
    const QString whole = product_.description.simplified();
    descriptionLabel_->setProperty("productName", product_.product_name);
    descriptionLabel_->setProperty("productDescription", shortened(whole));
    setPlainToolTip(descriptionLabel_, whole);
    descriptionLabel_->setProperty("productCategory", category_);
    descriptionLabel_->setProperty("productVersion", product_.product_version);
}

void ProductCard::layOut()
{
    layout_ = new QVBoxLayout;
    layout_->setContentsMargins(12, 12, 12, 12);
    layout_->setSpacing(10);
    layout_->addWidget(previewLabel_);
    layout_->addWidget(nameLabel_);
    layout_->addWidget(descriptionLabel_);
    layout_->addWidget(downloadButton_);
    layout_->addWidget(statusLabel_);
}

void ProductCard::addDetailsButton()
{
    detailsButton_ = newButton(this);
    layout_->addWidget(detailsButton_);
    connect(detailsButton_, &QPushButton::clicked, this, &ProductCard::openDetails);
}

void ProductCard::openDetails()
{
    if (!details_) {
        details_ = new ProductDetails(product_, localisation_, downloads_, previews_, this);
        // A closed dialog is destroyed by the event loop, which may be later than the next click.
        connect(details_, &QDialog::finished, this, [this] { details_.clear(); });
    }
    details_->applyLanguage(localisation_.isRightToLeft());
    details_->show();
    details_->raise();
    details_->activateWindow();
}

void ProductCard::addDirectDownload(const CatalogueServices &services,
                                    const std::function<void()> &quotaChanged)
{
    if (!services.startDirectDownload) {
        downloadButton_->setEnabled(false);
        return;
    }
    connect(downloadButton_, &QPushButton::clicked, this,
            [this, start = services.startDirectDownload, quotaChanged] {
                start(downloadButton_, statusLabel_, product_.product_key, quotaChanged, product_.file_size);
            });
}

void ProductCard::addComponentActions()
{
    downloadButton_->hide();
    statusLabel_->hide();
    componentActions_ = new ComponentActions(product_, downloads_, localisation_, this, /*expanded=*/false);
    layout_->addWidget(componentActions_);
}

void ProductCard::requestPreview()
{
    if (previews_ && !product_.previews.isEmpty())
        previews_->request(product_.previews.first(), this,
                           [this](const QImage &image) { showPreview(image); });
}

void ProductCard::showPreview(const QImage &image)
{
    if (image.isNull())
        return;
    preview_ = QPixmap::fromImage(image.scaled(KeptPreview, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    previewLabel_->setAccessibleName(product_.product_name);
    updatePreviewPixmap();
}

/// Fills the place with as many pixels as the screen has there.
void ProductCard::updatePreviewPixmap()
{
    if (preview_.isNull())
        return;
    const qreal ratio = previewLabel_->devicePixelRatio();
    const QSize place(std::clamp(previewLabel_->width(), 1, ShownPreview.width()), ShownPreview.height());
    const QSize size = preview_.size().scaled(place * ratio, Qt::KeepAspectRatio).expandedTo({1, 1});
    const QPixmap shown = previewLabel_->pixmap();
    if (shown.size() == size && shown.devicePixelRatio() == ratio)
        return;
    QPixmap scaled = preview_.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(ratio);
    previewLabel_->setPixmap(scaled);
}

bool ProductCard::event(QEvent *event)
{
    const bool isHandled = QFrame::event(event);
    if (event->type() == QEvent::DevicePixelRatioChange)
        updatePreviewPixmap();
    return isHandled;
}

void ProductCard::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    updatePreviewPixmap();
}

bool ProductCard::containsText(const QString &query) const
{
    return product_.product_name.contains(query, Qt::CaseInsensitive) ||
           product_.description.contains(query, Qt::CaseInsensitive) ||
           category_.contains(query, Qt::CaseInsensitive);
}

QString ProductCard::descriptionText() const
{
    const auto property = [this](const char *name) { return descriptionLabel_->property(name).toString(); };
    return property("productDescription") + u"\n\n"_s + localisation_.translate("Product.Category") +
           u": "_s + property("productCategory") + u'\n' + localisation_.translate("Product.Version") +
           u": "_s + property("productVersion");
}

void ProductCard::retranslate()
{
    const Qt::LayoutDirection direction = localisation_.direction();
    setLayoutDirection(direction);
    for (QLabel *label : {nameLabel_, descriptionLabel_, statusLabel_}) {
        label->setLayoutDirection(direction);
        label->setAlignment(localisation_.readingSide() | Qt::AlignTop | Qt::AlignAbsolute);
    }
    descriptionLabel_->setText(descriptionText());
    downloadButton_->setText(localisation_.translate("Product.Download"));
    detailsButton_->setText(localisation_.translate("Gallery.Details"));
    if (details_)
        details_->applyLanguage(localisation_.isRightToLeft());
    if (componentActions_)
        componentActions_->retranslate(direction);
    if (preview_.isNull())
        previewLabel_->setText(localisation_.translate("Product.PreviewUnavailable"));
    localisation_.renderTranslatedText(statusLabel_);
}

} // namespace quillmar
