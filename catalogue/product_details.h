#pragma once

#include "catalogue/product_previews.h"
#include "packages/component_product.h"
#include "packages/product_downloads.h"
#include "ui/localisation.h"

#include <QDialog>
#include <QImage>
#include <QPointer>

class QBoxLayout;
class QComboBox;
class QLabel;
class QPushButton;

namespace quillmar
{

class ComponentActions;

/// Everything about one product: its text, a gallery for the product and one for each of its components, and
/// the actions of what is chosen.
///
///     name, key · version, description
///     [ overview or component        v]
///     +---------------------------------+
///     |             picture             |
///     +---------------------------------+
///     caption
///     [previous] [next] [retry] [enlarge]
///     component actions                     product with components
///
/// Destroys itself when it is closed. User-interface thread only.
class ProductDetails : public QDialog
{
    Q_OBJECT

public:
    /// `localisation` outlives the dialog; `downloads` and `previews` may die before it.
    ProductDetails(const ComponentProduct &product, const Localisation &localisation,
                   ProductDownloads *downloads, ProductPreviews *previews, QWidget *parent);

    /// Shows every text in the current language, laid out in this direction.
    void applyLanguage(bool rightToLeft);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void build();
    QBoxLayout *buildContent();
    void fillEntries();
    void buildPicture(QBoxLayout *layout);
    void buildButtons(QBoxLayout *layout);

    void selectEntry();
    void rebuildActions(const ComponentProduct &product);
    void step(qint32 by);
    void load();
    void takeImage(quint64 generation, const QImage &image);
    void showImage();
    void enlarge();
    QString captionText() const;

    const ComponentProduct product_;
    const Localisation &localisation_;
    const QPointer<ProductDownloads> downloads_;
    const QPointer<ProductPreviews> previews_;
    QBoxLayout *contentLayout_ = nullptr;
    QComboBox *entries_ = nullptr;
    QLabel *preview_ = nullptr;
    QLabel *header_ = nullptr;
    QLabel *caption_ = nullptr;
    QPushButton *previous_ = nullptr;
    QPushButton *next_ = nullptr;
    QPushButton *retry_ = nullptr;
    QPushButton *enlarge_ = nullptr;
    ComponentActions *actions_ = nullptr; ///< of the chosen entry; null for a product without components
    QList<PreviewEntry> gallery_;         ///< of the chosen entry
    qint32 index_ = 0;                    ///< in the gallery
    QImage image_;                        ///< null while it is loading and after a failure
    quint64 generation_ = 0;              ///< of the latest request; pictures of earlier ones come too late
    bool isRightToLeft_ = false;
    const char *messageKey_ = "Product.PreviewUnavailable"; ///< shown where there is no picture
};

} // namespace quillmar
