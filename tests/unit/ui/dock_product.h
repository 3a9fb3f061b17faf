#pragma once

#include <QJsonArray>
#include <QJsonObject>

namespace quillmar::test
{

/// A product for the dock as the service describes one; with components it has one.
struct DockProduct {
    QString description;
    QString category = QStringLiteral("Overlays");

    QJsonObject operator()(const QString &name, bool withComponents) const;
};

inline QJsonObject DockProduct::operator()(const QString &name, bool withComponents) const
{
    using namespace Qt::StringLiterals;
    QJsonObject object{{u"product_key"_s, name},
                       {u"product_name"_s, name},
                       {u"description"_s, description},
                       {u"category"_s, category},
                       {u"product_version"_s, u"1.0.0"_s}};
    if (withComponents)
        object.insert(u"components"_s, QJsonArray{QJsonObject{{u"component_name"_s, u"Webcam frame"_s},
                                                              {u"asset_path"_s, u"a/b.png"_s},
                                                              {u"auto_insert_enabled"_s, true},
                                                              {u"insert_mode"_s, u"overlay"_s},
                                                              {u"source_type"_s, u"image"_s},
                                                              {u"asset_kind"_s, u"file"_s}}});
    return object;
}

} // namespace quillmar::test
