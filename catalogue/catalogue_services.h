#pragma once

#include "catalogue/product_previews.h"
#include "packages/product_downloads.h"
#include "ui/localisation.h"

#include <QPointer>

#include <functional>

class QLabel;
class QPushButton;

namespace quillmar
{

/// What the catalogue's widgets need of the rest of the module. `localisation` outlives the widgets;
/// `downloads` and `previews` may die before them.
struct CatalogueServices {
    /// Saves the file of the product `productKey`, of `fileSize` bytes when that is above 0, as it is,
    /// showing every state on the button and the label, and calls `quotaChanged` when quota was used.
    using DirectDownload = std::function<void(QPushButton *button, QLabel *status, const QString &productKey,
                                              std::function<void()> quotaChanged, qint64 fileSize)>;

    const Localisation &localisation;
    QPointer<ProductDownloads> downloads;
    QPointer<ProductPreviews> previews = {};
    DirectDownload startDirectDownload = {}; ///< empty: the download buttons are disabled
};

} // namespace quillmar
