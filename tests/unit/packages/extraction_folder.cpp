#include "tests/unit/packages/extraction_folder.h"

#include "packages/product_identity.h"

#include <QDir>
#include <QDirIterator>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

ExtractionFolder::ExtractionFolder() : top_(QFileInfo(temporary_.path()).canonicalFilePath())
{
    product.product_key = u"pack"_s;
    product.product_version = u"1.0"_s;
    product.file_name = u"Pack.zip"_s;
    writeFile(top_ + u"/neighbour.txt", "must stay");
    writeFile(root() + u"/other-product/file.txt", "must stay too");
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
    writeFile(packagePath(), bytes);
}

void ExtractionFolder::putComponent(const QString &path, const QByteArray &bytes) const
{
    writeFile(components() + u'/' + path, bytes);
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

QMap<QString, QByteArray> ExtractionFolder::snapshot() const
{
    QMap<QString, QByteArray> found;
    QDirIterator walk(top_, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QFileInfo info = walk.nextFileInfo();
        const QString path = info.filePath().sliced(top_.size() + 1);
        if (info.isSymLink())
            found.insert(path, "link to " + info.symLinkTarget().toUtf8());
        else if (info.isDir())
            found.insert(path + u'/', {});
        else
            found.insert(path, info.isFile() ? contentOf(info.filePath()) : QByteArray("special"));
    }
    return found;
}

QMap<QString, QByteArray> ExtractionFolder::extracted() const
{
    QMap<QString, QByteArray> found;
    QDirIterator walk(components(), QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString path = walk.next();
        found.insert(path.sliced(components().size() + 1), contentOf(path));
    }
    return found;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    const bool written = QDir().mkpath(QFileInfo(path).absolutePath()) && file.open(QIODevice::WriteOnly) &&
                         file.write(bytes) == bytes.size() && file.flush();
    if (!written)
        qFatal("cannot write %ls", qUtf16Printable(path));
}

} // namespace quillmar::test
