#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <optional>

/// Product objects as the service lists them.
namespace quillmar::demo
{

struct ComponentText {
    QString key = {};
    QString name = {};
    QString assetPath = {};
    QString mime = {};
    QString insertMode = {};
    QString sourceType = {};
    QString assetKind = QStringLiteral("file");
    QString position = {};
    bool autoInsert = true;
    bool loop = false;
    int width = 0;
    int height = 0;
    std::optional<int> transitionPoint = {}; ///< ms; left out when not set
    int sortOrder = 0;
    QString variant = {};
    QJsonArray gallery = {};
};

struct ProductText {
    QString key = {};
    QString version = {};
    QString name = {};
    QString description = {};
    QString category = {};
    QString fileName = {};
    QString mime = {};
    QJsonArray gallery = {};
    QJsonArray components = {};
};

QJsonObject toJson(const ComponentText &component);
QJsonObject toJson(const ProductText &product);

/// MIME type of a picture or clip, by its suffix.
QString mimeOf(const QString &path);

/// One element of a gallery.
QJsonObject picture(const QString &address, const QString &label, const QString &fallback = {});

} // namespace quillmar::demo
