#pragma once

#include "packages/component_product.h"

#include <QJsonObject>
#include <QList>
#include <QString>

namespace quillmar::test
{

/// One product of the demo's catalogue as it lies on disk: raw, parsed, and where its package is.
struct CatalogueProduct {
    QJsonObject json;
    ComponentProduct parsed;
    QString packagePath;
};

/// All products, in order; empty when the catalogue cannot be read.
QList<CatalogueProduct> readCatalogue();

/// Path of a preview picture whose address is on the service host, else empty.
QString previewPath(const QUrl &address);

/// Puts the package where extraction expects it below `root` and takes `component` out of it. Result: its
/// path, or the error key.
QString takeOut(const QString &root, const CatalogueProduct &product, const ProductComponent &component);

/// The one component that its archive lacks on purpose.
inline constexpr QLatin1StringView kMissingAsset("pictures/gone.png");

} // namespace quillmar::test
