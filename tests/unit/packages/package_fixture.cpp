#include "tests/unit/packages/package_fixture.h"

#include "packages/incoming_package.h"
#include "packages/package_cache.h"
#include "packages/product_identity.h"
#include "tests/unit/packages/file_tree.h"

#include <QCryptographicHash>
#include <QJsonDocument>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

QString digestOf(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

ComponentProduct zipProduct(const QByteArray &package)
{
    ComponentProduct product;
    product.product_key = u"pack"_s;
    product.product_version = u"1.0"_s;
    product.file_name = u"Pack.zip"_s;
    product.file_size = package.size();
    product.sha256 = digestOf(package);
    return product;
}

PackageFixture::PackageFixture() : product(zipProduct(bytes())) {}

QString PackageFixture::packagePath() const
{
    return cachedPackagePath(root(), product);
}

QString PackageFixture::recordPath() const
{
    return cachedRecordPath(root(), product);
}

ProductFileResult PackageFixture::store(const QByteArray &package) const
{
    IncomingPackage incoming(root(), product);
    incoming.append(package);
    return incoming.store();
}

QString PackageFixture::find() const
{
    return findCachedPackage(root(), product);
}

QJsonObject PackageFixture::record() const
{
    return QJsonDocument::fromJson(fileContent(recordPath())).object();
}

void PackageFixture::putRecord(const QJsonObject &record) const
{
    putFile(recordPath(), QJsonDocument(record).toJson());
}

} // namespace quillmar::test
