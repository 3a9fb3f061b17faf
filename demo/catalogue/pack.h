#pragma once

#include "demo/catalogue/descriptions.h"
#include "demo/catalogue/workshop.h"

namespace quillmar::demo
{

/// A ZIP product while it is put together: components and gallery in the order in which they are added.
class Pack
{
public:
    Pack(Workshop &workshop, const QString &key) : workshop_(workshop), key_(key) {}

    /// Saves a preview picture and shows it in the component and in the gallery of the product.
    void add(ComponentText component, const QString &preview, const QImage &shown);

    /// A component that the gallery of the product does not show.
    void addUnshown(const ComponentText &component) { components_.append(toJson(component)); }

    /// Puts `cover` first in the gallery, packs what was added to the workshop under the key of the product
    /// and adds the product as KEY.zip.
    void publish(ProductText product, Archiver archiver, const QString &coverName, const QImage &cover,
                 const QString &coverLabel = QStringLiteral("Cover"));

private:
    Workshop &workshop_;
    QString key_;
    QJsonArray gallery_;
    QJsonArray components_;
};

} // namespace quillmar::demo
