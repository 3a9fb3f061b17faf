#include "packages/component_product.h"

#include "packages/path_safety.h"

#include <QJsonArray>

#include <algorithm>
#include <limits>

namespace quillmar
{

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype kMaxPreviews = 32;
constexpr qint32 kDefaultTransitionPointMs = 300;
constexpr quint32 kMaxTransitionPointMs = 120'000;
constexpr qsizetype kSha256Digits = 64;

QString readText(const QJsonObject &object, QLatin1StringView key)
{
    return object.value(key).toString();
}

QUrl readUrl(const QJsonObject &object, QLatin1StringView key)
{
    return QUrl(readText(object, key), QUrl::TolerantMode);
}

qint32 readInt32(const QJsonObject &object, QLatin1StringView key, qint32 fallback)
{
    const qint64 value = object.value(key).toInteger(fallback);
    const bool fits =
        value >= std::numeric_limits<qint32>::min() && value <= std::numeric_limits<qint32>::max();
    return fits ? static_cast<qint32>(value) : fallback;
}

/// A negative point is as meaningless as one beyond two minutes; seen as unsigned, both exceed the limit.
qint32 saneTransitionPoint(qint32 milliseconds)
{
    return static_cast<quint32>(milliseconds) > kMaxTransitionPointMs ? kDefaultTransitionPointMs
                                                                      : milliseconds;
}

PreviewEntry readPreview(const QJsonObject &object)
{
    return {readUrl(object, "url"_L1), readUrl(object, "fallback_url"_L1), readText(object, "revision"_L1),
            readText(object, "label"_L1)};
}

QList<PreviewEntry> readPreviews(const QJsonObject &object)
{
    QList<PreviewEntry> previews;
    const QJsonArray gallery = object.value("preview_gallery"_L1).toArray();
    for (const QJsonValue &element : gallery) {
        if (previews.size() == kMaxPreviews)
            break;
        previews.append(readPreview(element.toObject()));
    }
    if (previews.isEmpty() && !readText(object, "preview_image"_L1).isEmpty())
        previews.append(
            {readUrl(object, "preview_image"_L1), {}, readText(object, "preview_revision"_L1), {}});
    return previews;
}

ProductComponent readComponent(const QJsonObject &object)
{
    ProductComponent component;
    component.component_key = readText(object, "component_key"_L1);
    component.variant_label = readText(object, "variant_label"_L1);
    component.previews = readPreviews(object);
    component.component_name = readText(object, "component_name"_L1);
    component.component_type = readText(object, "component_type"_L1);
    component.asset_path = readText(object, "asset_path"_L1);
    component.asset_kind = readText(object, "asset_kind"_L1);
    component.file_mime = readText(object, "file_mime"_L1);
    component.auto_insert_enabled = object.value("auto_insert_enabled"_L1).toBool();
    component.insert_mode = readText(object, "insert_mode"_L1);
    component.source_type = readText(object, "source_type"_L1);
    component.position = readText(object, "position"_L1);
    component.width = readInt32(object, "width"_L1, 0);
    component.height = readInt32(object, "height"_L1, 0);
    component.media_loop = object.value("media_loop"_L1).toBool();
    component.transition_point_ms =
        saneTransitionPoint(readInt32(object, "transition_point_ms"_L1, kDefaultTransitionPointMs));
    component.sort_order = readInt32(object, "sort_order"_L1, 0);
    return component;
}

QList<ProductComponent> readComponents(const QJsonObject &object)
{
    QList<ProductComponent> components;
    const QJsonArray elements = object.value("components"_L1).toArray();
    for (const QJsonValue &element : elements) {
        if (element.isObject())
            components.append(readComponent(element.toObject()));
    }
    std::ranges::stable_sort(components, {}, &ProductComponent::sort_order);
    return components;
}

/// What follows the last '.' of the last segment, lower-cased.
QString suffixOf(const QString &path)
{
    const QString name = path.sliced(path.lastIndexOf(u'/') + 1);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? QString() : name.sliced(dot + 1).toLower();
}

bool modeTakesSource(const QString &insertMode, const QString &sourceType)
{
    if (insertMode == "stinger_transition"_L1)
        return sourceType == "media"_L1;
    const bool placed =
        insertMode == "overlay"_L1 || insertMode == "webcam_frame"_L1 || insertMode == "fullscreen_scene"_L1;
    return placed && (sourceType == "image"_L1 || sourceType == "media"_L1);
}

bool isLowerHex(QChar c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f');
}

} // namespace

ComponentProduct parseComponentProduct(const QJsonObject &object)
{
    ComponentProduct product;
    product.product_key = readText(object, "product_key"_L1);
    product.product_version = readText(object, "product_version"_L1);
    product.file_name = readText(object, "file_name"_L1);
    product.file_mime = readText(object, "file_mime"_L1);
    product.file_size = object.value("file_size"_L1).toInteger(0);
    product.product_name = readText(object, "product_name"_L1);
    product.description = readText(object, "description"_L1);
    product.sha256 = readText(object, "sha256"_L1).toLower();
    product.previews = readPreviews(object);
    product.components = readComponents(object);
    return product;
}

bool hasUsableAsset(const ProductComponent &component)
{
    return !component.asset_path.isEmpty() &&
           (component.asset_kind == "file"_L1 || component.asset_kind == "folder"_L1);
}

bool isInsertable(const ProductComponent &component)
{
    const QString suffix = suffixOf(component.asset_path);
    const bool isImage = component.source_type == "image"_L1;
    if (!(isImage ? isImageSuffix(suffix) : isMediaSuffix(suffix)))
        return false;
    return hasUsableAsset(component) && component.asset_kind == "file"_L1 &&
           modeTakesSource(component.insert_mode, component.source_type);
}

bool isImageSuffix(const QString &suffix)
{
    return suffix == "png"_L1 || suffix == "jpg"_L1 || suffix == "jpeg"_L1 || suffix == "webp"_L1;
}

bool isMediaSuffix(const QString &suffix)
{
    return suffix == "webm"_L1 || suffix == "mp4"_L1;
}

bool isValid(const ComponentProduct &product)
{
    const QString &digest = product.sha256;
    const bool digestIsSound =
        digest.isEmpty() || (digest.size() == kSha256Digits && std::ranges::all_of(digest, isLowerHex));
    return isSafeProductKey(product.product_key) && !product.product_version.isEmpty() && digestIsSound;
}

} // namespace quillmar
