#pragma once

#include "packages/component_product.h"
#include "packages/product_downloads.h"
#include "ui/localisation.h"

#include <QPointer>
#include <QWidget>

namespace quillmar
{

/// Lists the components of one product, each with a button that puts it into OBS and one that downloads it, and a button
/// for the whole package. Several actions may run at once; each shows its state under its own button.
///
/// Texts are set by retranslate() only, which must run once before the widget is first shown.
class ComponentActions : public QWidget
{
    Q_OBJECT

public:
    /// `localisation` outlives the widget; `downloads` may die before it. `expanded` shows the list open for good,
    /// without the button that folds it.
    ComponentActions(const ComponentProduct &product, ProductDownloads *downloads, const Localisation &localisation,
                     QWidget *parent, bool expanded);

    void retranslate(Qt::LayoutDirection direction);
};

} // namespace quillmar
