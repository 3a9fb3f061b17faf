#include "packages/product_identity.h"

#include "packages/sha256.h"

namespace quillmar
{

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype kOutputDigits = 16;

} // namespace

QString productIdentity(const ComponentProduct &product)
{
    QByteArray bytes;
    for (const QString &text : {product.product_key, product.product_version, product.file_name}) {
        bytes.append(text.toUtf8());
        bytes.append('\0');
    }
    bytes.append(QByteArray::number(product.file_size));
    if (!product.sha256.isEmpty()) {
        bytes.append('\0');
        bytes.append(product.sha256.toUtf8());
    }
    return QString::fromLatin1(sha256Hex(QByteArrayView(bytes)));
}

QString cacheDirectory(const QString &root, const ComponentProduct &product)
{
    return root + u'/' + CacheFolderName + u'/' + productIdentity(product);
}

QString cachedPackagePath(const QString &root, const ComponentProduct &product)
{
    return cacheDirectory(root, product) + "/product"_L1;
}

QString cachedRecordPath(const QString &root, const ComponentProduct &product)
{
    return cacheDirectory(root, product) + "/manifest.json"_L1;
}

QString outputDirectory(const QString &root, const ComponentProduct &product)
{
    return root + u'/' + product.product_key + u'/' + productIdentity(product).left(kOutputDigits);
}

} // namespace quillmar
