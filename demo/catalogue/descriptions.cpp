#include "demo/catalogue/descriptions.h"

using namespace Qt::StringLiterals;

namespace quillmar::demo
{

QJsonObject toJson(const ComponentText &component)
{
    QJsonObject object{{u"component_key"_s, component.key},
                       {u"component_name"_s, component.name},
                       {u"component_type"_s, component.insertMode},
                       {u"asset_path"_s, component.assetPath},
                       {u"asset_kind"_s, component.assetKind},
                       {u"file_mime"_s, component.mime},
                       {u"insert_mode"_s, component.insertMode},
                       {u"source_type"_s, component.sourceType},
                       {u"position"_s, component.position},
                       {u"auto_insert_enabled"_s, component.autoInsert},
                       {u"media_loop"_s, component.loop},
                       {u"width"_s, component.width},
                       {u"height"_s, component.height},
                       {u"sort_order"_s, component.sortOrder},
                       {u"variant_label"_s, component.variant},
                       {u"preview_gallery"_s, component.gallery}};
    if (component.transitionPoint)
        object.insert(u"transition_point_ms"_s, *component.transitionPoint);
    return object;
}

QJsonObject toJson(const ProductText &product)
{
    return {{u"product_key"_s, product.key},      {u"product_version"_s, product.version},
            {u"product_name"_s, product.name},    {u"description"_s, product.description},
            {u"category"_s, product.category},    {u"file_name"_s, product.fileName},
            {u"file_mime"_s, product.mime},       {u"preview_gallery"_s, product.gallery},
            {u"components"_s, product.components}};
}

QString mimeOf(const QString &path)
{
    const QString suffix = path.section(u'.', -1);
    const bool isClip = suffix == "mp4"_L1 || suffix == "webm"_L1;
    return (isClip ? u"video/"_s : u"image/"_s) + (suffix == "jpg"_L1 ? u"jpeg"_s : suffix);
}

QJsonObject picture(const QString &address, const QString &label, const QString &fallback)
{
    return {{u"url"_s, address}, {u"fallback_url"_s, fallback}, {u"revision"_s, u"1"_s}, {u"label"_s, label}};
}

} // namespace quillmar::demo
