#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUrl>

namespace quillmar
{

/// One image of a gallery. Addresses are parsed tolerantly and not judged here.
struct PreviewEntry {
    QUrl url;
    QUrl fallback_url;
    QString revision; ///< changes when the image behind `url` changes
    QString label;
};

/// One component of a product, as the service describes it. Plain values; nothing in it has been checked.
struct ProductComponent {
    QString component_key;
    QString component_name;
    QString component_type;
    QString asset_path; ///< '/'-separated path inside the package
    QString asset_kind; ///< "file" or "folder"
    QString file_mime;
    QString insert_mode; ///< "overlay", "webcam_frame", "fullscreen_scene" or "stinger_transition"
    QString source_type; ///< "image" or "media"
    QString position;    ///< "center", "top_right", "bottom_right", "bottom_left" or empty
    bool auto_insert_enabled = false;
    bool media_loop = false;
    qint32 width = 0;  ///< pixels; 0: default
    qint32 height = 0; ///< pixels; 0: default
    qint32 transition_point_ms = 300;
    qint32 sort_order = 0;
    QString variant_label;
    QList<PreviewEntry> previews; ///< at most 32
};

/// One product of the account. Plain values, copied freely between threads; nothing in it has been checked.
struct ComponentProduct {
    QString product_key;
    QString product_version;
    QString file_name;
    QString file_mime;
    QString product_name;
    QString description;
    QString sha256;                     ///< lower-cased; empty: unknown
    QList<PreviewEntry> previews;       ///< at most 32
    qint64 file_size = 0;               ///< bytes; 0 or less: unknown
    QList<ProductComponent> components; ///< ascending `sort_order`, equal ones in the order of the service
};

/// Reads a product object of the service. Never fails: a missing key or a value of another JSON type takes
/// the field's default, and integers must be whole and fit the field.
ComponentProduct parseComponentProduct(const QJsonObject &object);

/// The component names an asset that can be taken out of the package at all.
bool hasUsableAsset(const ProductComponent &component);

/// The component describes something that OBS can show: a file of a known kind and a matching insert mode.
bool isInsertable(const ProductComponent &component);

/// Image ("png", "jpg", "jpeg", "webp") or media ("webm", "mp4") extension, lower-case without dot.
bool isImageSuffix(const QString &suffix);
bool isMediaSuffix(const QString &suffix);

/// The metadata is sound: safe key, a version, and a digest that is empty or 64 lower-case hexadecimal
/// digits. Gates every download, cache and extraction step.
bool isValid(const ComponentProduct &product);

} // namespace quillmar
