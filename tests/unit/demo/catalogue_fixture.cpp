#include "tests/unit/demo/catalogue_fixture.h"

#include "packages/archive_extraction.h"
#include "packages/product_identity.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace quillmar::test
{
namespace
{

const QString &folder()
{
    static const QString path = QStringLiteral(QUILLMAR_DEMO_CATALOGUE);
    return path;
}

} // namespace

QList<CatalogueProduct> readCatalogue()
{
    QFile file(folder() + u"/products.json"_s);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<CatalogueProduct> products;
    for (const QJsonValue &value : QJsonDocument::fromJson(file.readAll()).array()) {
        const QJsonObject json = value.toObject();
        const ComponentProduct parsed = parseComponentProduct(json);
        products.append(
            {json, parsed, folder() + u"/packages/%1/%2"_s.arg(parsed.product_key, parsed.file_name)});
    }
    return products;
}

QString previewPath(const QUrl &address)
{
    const QString path = address.path();
    if (address.scheme() != "https"_L1 || address.host() != QUILLMAR_SERVICE_HOST ""_L1 ||
        !path.startsWith("/previews/"_L1))
        return {};
    return folder() + path;
}

QString takeOut(const QString &root, const CatalogueProduct &product, const ProductComponent &component)
{
    const QString cached = cachedPackagePath(root, product.parsed);
    QDir().mkpath(QFileInfo(cached).path());
    if (!QFile::exists(cached))
        QFile::copy(product.packagePath, cached);
    const ProductFileResult result = extractPackage(root, product.parsed, cached, component);
    return result.error.isEmpty() ? result.path : result.error;
}

} // namespace quillmar::test
