#pragma once

#include "packages/component_product.h"
#include "packages/product_file_result.h"

#include <QJsonObject>
#include <QTemporaryDir>

namespace quillmar::test
{

/// Lower-case hexadecimal SHA-256.
QString digestOf(const QByteArray &bytes);

/// A product whose package is the ZIP archive `package`.
ComponentProduct zipProduct(const QByteArray &package);

/// An empty package root in a temporary folder, and one product whose size and digest are those of bytes().
class PackageFixture
{
public:
    PackageFixture();

    static QByteArray bytes() { return "the package"; }

    ComponentProduct product;

    QString folder() const { return folder_.path(); }
    QString filePath(const QString &path) const { return folder_.filePath(path); }
    QString root() const { return filePath(QStringLiteral("دانلود/Quillmar")); }
    QString packagePath() const;
    QString recordPath() const;

    ProductFileResult store() const { return store(bytes()); }
    ProductFileResult store(const QByteArray &package) const;

    /// Path of the stored package, or empty.
    QString find() const;

    QJsonObject record() const;
    void putRecord(const QJsonObject &record) const;

private:
    QTemporaryDir folder_;
};

} // namespace quillmar::test
