#include "tests/unit/packages/extraction_folder.h"

#include "packages/product_identity.h"

#include <QFileInfo>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

ExtractionFolder::ExtractionFolder() : top_(QFileInfo(temporary_.path()).canonicalFilePath())
{
    product.product_key = u"pack"_s;
    product.product_version = u"1.0"_s;
    product.file_name = u"Pack.zip"_s;
    putFile(top_ + u"/neighbour.txt", "must stay");
    putFile(root() + u"/other-product/file.txt", "must stay too");
}

QString ExtractionFolder::packagePath() const
{
    return cachedPackagePath(root(), product);
}

QString ExtractionFolder::components() const
{
    return outputDirectory(root(), product) + u"/Components";
}

void ExtractionFolder::storePackage(const QByteArray &bytes) const
{
    putFile(packagePath(), bytes);
}

void ExtractionFolder::putComponent(const QString &path, const QByteArray &bytes) const
{
    putFile(components() + u'/' + path, bytes);
}

ProductFileResult ExtractionFolder::extractWhole() const
{
    return extractPackage(root(), product, packagePath(), std::nullopt);
}

ProductFileResult ExtractionFolder::extract(const QString &asset, const QString &kind) const
{
    ProductComponent component;
    component.asset_path = asset;
    component.asset_kind = kind;
    return extractPackage(root(), product, packagePath(), component);
}

QMap<QString, QByteArray> ExtractionFolder::surroundings() const
{
    QMap<QString, QByteArray> tree = snapshot();
    for (const QString &own : {u"Quillmar/pack"_s, u"Quillmar/.quillmar-cache"_s}) {
        tree.remove(own);
        tree.removeIf([&own](const auto &entry) { return entry.key().startsWith(own + u'/'); });
    }
    return tree;
}

QMap<QString, QByteArray> ExtractionFolder::extracted() const
{
    QMap<QString, QByteArray> files;
    for (const auto &[path, what] : treeBelow(components()).asKeyValueRange()) {
        if (isFile(what))
            files.insert(path, fileContent(components() + u'/' + path));
    }
    return files;
}

} // namespace quillmar::test
