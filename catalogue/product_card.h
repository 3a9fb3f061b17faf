#pragma once

#include "catalogue/catalogue_services.h"
#include "packages/component_product.h"

#include <QFrame>
#include <QPixmap>

#include <functional>

class QJsonObject;
class QVBoxLayout;

namespace quillmar
{

class ComponentActions;
class ProductDetails;

/// One product of the catalogue: preview, name, description, and either a download button with a status line
/// or, for a product with components, the panel of its components.
///
///     +- quillmarProductCard ---------------+
///     |             preview                 |
///     |  name                               |
///     |  description, category, version     |
///     |  [download]   status                |  product without components
///     |  [details]                          |
///     |  component actions                  |  product with components
///     +-------------------------------------+
class ProductCard : public QFrame
{
    Q_OBJECT

public:
    /// `product` is an object of the service's list; nothing in it is trusted. `quotaChanged` goes to the
    /// direct download as it is.
    ProductCard(const QJsonObject &product, const CatalogueServices &services,
                const std::function<void()> &quotaChanged, QWidget *parent);

    /// As the service gave it, not trimmed.
    const QString &category() const { return category_; }

    /// Whether the name, the description or the category contains `query`, ignoring case. An empty query is
    /// contained in everything.
    bool containsText(const QString &query) const;

    /// Applies texts and direction of the current language.
    void retranslate();

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void buildLabels();
    void describe();
    void layOut();
    void addDetailsButton();
    void openDetails();
    void addDirectDownload(const CatalogueServices &services, const std::function<void()> &quotaChanged);
    void addComponentActions();
    QString descriptionText() const;
    void requestPreview();
    void showPreview(const QImage &image);
    void updatePreviewPixmap();

    const Localisation &localisation_;
    const QPointer<ProductDownloads> downloads_;
    const QPointer<ProductPreviews> previews_;
    ComponentProduct product_;
    QString category_;
    QLabel *previewLabel_ = nullptr;
    QLabel *nameLabel_ = nullptr;
    QLabel *descriptionLabel_ = nullptr;
    QLabel *statusLabel_ = nullptr;
    QPushButton *downloadButton_ = nullptr;
    QPushButton *detailsButton_ = nullptr;
    ComponentActions *componentActions_ = nullptr; ///< only for a product with components
    QPointer<ProductDetails> details_;             ///< while it is open
    QVBoxLayout *layout_ = nullptr;
    QPixmap preview_; ///< null until a picture has come
};

} // namespace quillmar
