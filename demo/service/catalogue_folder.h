#pragma once

#include <QHash>
#include <QJsonArray>
#include <QString>

namespace quillmar::demo
{

/// The product folder that the service offers, as the catalogue program lays it out:
/// products.json, packages/KEY/FILE and previews/NAME.
class CatalogueFolder
{
public:
    struct Package {
        QString path; ///< empty: no such package
        QString fileName;
        QByteArray contentType;
    };

    /// Empty on success, else a sentence that says what is wrong with the folder.
    QString load(const QString &folder);

    /// Adds one product whose package lies anywhere.
    void addProduct(const QJsonObject &product, const QString &packagePath);

    const QJsonArray &products() const { return products_; }

    /// Number of products in a crowd.
    static constexpr qsizetype CrowdSize = 300;

    /// Products with keys and names of their own that share the texts, pictures and packages of products() in
    /// turn; none when there is nothing to share.
    const QJsonArray &crowd() const { return crowd_; }
    Package package(const QString &productKey) const { return packages_.value(productKey); }

    /// Path of a preview picture, empty when there is none. Only names found in the folder are served.
    QString preview(const QString &name) const { return previews_.value(name); }

private:
    void makeCrowd();

    QJsonArray products_;
    QJsonArray crowd_;
    QHash<QString, Package> packages_;
    QHash<QString, QString> previews_;
};

} // namespace quillmar::demo
