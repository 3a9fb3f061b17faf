#pragma once

#include "packages/product_downloads.h"
#include "ui/localisation.h"

#include <QJsonArray>
#include <QWidget>

#include <functional>

namespace quillmar
{

/// What the catalogue's widgets need of the rest of the module. All references outlive the widgets except `downloads`,
/// which is held through guarded pointers.
struct CatalogueServices {
    const Localisation &localisation;
    QPointer<ProductDownloads> downloads;
};

/// The catalogue area of the dock: a search field and a category filter above a scrolling column of product cards.
class ProductList : public QWidget
{
    Q_OBJECT

public:
    /// `quotaChanged` is called after a direct download has used quota.
    ProductList(CatalogueServices services, std::function<void()> quotaChanged);

    /// Replaces every card and the category list, and resets both filters. Elements that are not objects are skipped.
    void setProducts(const QJsonArray &products);

    /// Applies texts and direction of the current language.
    void retranslate();
};

} // namespace quillmar
