#include "demo/catalogue/workshop.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

QString save(const QString &path, const QImage &image)
{
    QImageWriter writer(path);
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix != "png"_L1)
        writer.setQuality(88);
    if (writer.write(image))
        return {};
    return u"%1: %2"_s.arg(path, writer.errorString());
}

QString digestOf(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return {};
    return QString::fromLatin1(hash.result().toHex());
}

} // namespace

Workshop::Workshop(const QString &folder) : folder_(QDir(folder).absolutePath())
{
    for (const QString &part : {u"packages"_s, u"previews"_s, u"staging"_s})
        QDir(folder_ + u'/' + part).removeRecursively();
    QFile::remove(folder_ + u"/products.json"_s);
    if (!QDir().mkpath(folder_ + u"/previews"_s))
        note(u"%1 cannot be made"_s.arg(folder_));
}

void Workshop::addPicture(const QString &key, const QString &path, const QImage &image)
{
    note(save(stagingPath(key, path), image));
}

void Workshop::addClip(const QString &key, const QString &path, const Clip &clip)
{
    note(writeClip(stagingPath(key, path), clip));
}

void Workshop::pack(const QString &key, const QString &fileName, Archiver archiver)
{
    note(writeArchive(archiver, folder_ + u"/staging/"_s + key, packagePath(key, fileName)));
}

void Workshop::ship(const QString &key, const QString &fileName)
{
    const QString from = stagingPath(key, fileName);
    if (!QFile::rename(from, packagePath(key, fileName)))
        note(u"%1 cannot be moved"_s.arg(from));
}

QString Workshop::addPreview(const QString &name, const QImage &image)
{
    note(save(folder_ + u"/previews/"_s + name, image));
    return previewAddress(name);
}

QString Workshop::addPreviewFile(const QString &name, const QByteArray &bytes)
{
    QFile file(folder_ + u"/previews/"_s + name);
    if (bytes.isEmpty() || !file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() ||
        !file.flush())
        note(u"%1 cannot be written"_s.arg(file.fileName()));
    return previewAddress(name);
}

QString Workshop::previewAddress(const QString &name)
{
    return u"https://" QUILLMAR_SERVICE_HOST "/previews/"_s + name;
}

void Workshop::addProduct(QJsonObject product, Digest digest)
{
    const QString path =
        packagePath(product.value("product_key"_L1).toString(), product.value("file_name"_L1).toString());
    if (!QFile::exists(path))
        note(u"%1 is missing"_s.arg(path));
    if (!product.contains("file_size"_L1))
        product.insert("file_size"_L1, QFileInfo(path).size());
    if (!product.contains("sha256"_L1)) {
        const QString hex = digestOf(path);
        product.insert("sha256"_L1, digest == Digest::UpperCase ? hex.toUpper() : hex);
    }
    products_.append(product);
}

QStringList Workshop::finish()
{
    QDir(folder_ + u"/staging"_s).removeRecursively();
    if (!errors_.isEmpty())
        return errors_;
    QFile file(folder_ + u"/products.json"_s);
    const QByteArray json = QJsonDocument(products_).toJson();
    if (!file.open(QIODevice::WriteOnly) || file.write(json) != json.size())
        note(u"%1: %2"_s.arg(file.fileName(), file.errorString()));
    return errors_;
}

QString Workshop::stagingPath(const QString &key, const QString &path)
{
    const QString full = folder_ + u"/staging/"_s + key + u'/' + path;
    QDir().mkpath(QFileInfo(full).path());
    return full;
}

QString Workshop::packagePath(const QString &key, const QString &fileName)
{
    const QString full = folder_ + u"/packages/"_s + key + u'/' + fileName;
    QDir().mkpath(QFileInfo(full).path());
    return full;
}

void Workshop::note(const QString &error)
{
    if (!error.isEmpty())
        errors_.append(error);
}

} // namespace quillmar::demo
