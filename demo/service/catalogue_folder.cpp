#include "demo/service/catalogue_folder.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{

QString CatalogueFolder::load(const QString &folder)
{
    const QDir dir(folder);
    QFile file(dir.filePath(u"products.json"_s));
    if (!file.open(QIODevice::ReadOnly))
        return u"%1 cannot be read: %2"_s.arg(file.fileName(), file.errorString());
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isArray())
        return u"%1 is not a JSON array"_s.arg(file.fileName());
    for (const QJsonValue &value : document.array()) {
        const QJsonObject product = value.toObject();
        const QString path = dir.filePath(u"packages/%1/%2"_s.arg(product.value("product_key"_L1).toString(),
                                                                  product.value("file_name"_L1).toString()));
        if (!QFile::exists(path))
            return u"%1 is missing"_s.arg(path);
        addProduct(product, path);
    }
    makeCrowd();
    const QDir previews(dir.filePath(u"previews"_s));
    for (const QString &name : previews.entryList(QDir::Files))
        previews_.insert(name, previews.filePath(name));
    return {};
}

void CatalogueFolder::makeCrowd()
{
    for (qsizetype i = 0; !products_.isEmpty() && i < CrowdSize; ++i) {
        QJsonObject product = products_.at(i % products_.size()).toObject();
        const QString key = product.value("product_key"_L1).toString();
        const QString ownKey = u"%1-%2"_s.arg(key).arg(i + 1);
        product.insert("product_key"_L1, ownKey);
        product.insert("product_name"_L1, QString(product.value("product_name"_L1).toString() + u" №"_s +
                                                  QString::number(i + 1)));
        crowd_.append(product);
        packages_.insert(ownKey, packages_.value(key));
    }
}

void CatalogueFolder::addProduct(const QJsonObject &product, const QString &packagePath)
{
    products_.append(product);
    packages_.insert(product.value("product_key"_L1).toString(),
                     {packagePath, product.value("file_name"_L1).toString(),
                      product.value("file_mime"_L1).toString().toLatin1()});
}

} // namespace quillmar::demo
