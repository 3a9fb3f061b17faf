#include "demo/catalogue/pack.h"

using namespace Qt::StringLiterals;

namespace quillmar::demo
{

void Pack::add(ComponentText component, const QString &preview, const QImage &shown)
{
    const QJsonObject entry = picture(workshop_.addPreview(preview, shown), component.name);
    gallery_.append(entry);
    component.gallery = {entry};
    addUnshown(component);
}

void Pack::publish(ProductText product, Archiver archiver, const QString &coverName, const QImage &cover,
                   const QString &coverLabel)
{
    product.key = key_;
    product.fileName = key_ + u".zip"_s;
    product.mime = u"application/zip"_s;
    workshop_.pack(key_, product.fileName, archiver);
    gallery_.prepend(picture(workshop_.addPreview(coverName, cover), coverLabel));
    product.gallery = gallery_;
    product.components = components_;
    workshop_.addProduct(toJson(product));
}

} // namespace quillmar::demo
