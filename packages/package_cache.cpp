#include "packages/package_cache.h"

#include "packages/atomic_file.h"
#include "packages/path_safety.h"
#include "packages/product_identity.h"
#include "packages/sha256.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace quillmar
{

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 kMaxRecordBytes = 8192;

/// The record at `path`; empty when it is too large, unreadable or not a JSON object. A FIFO in its place is
/// not opened.
QJsonObject readRecord(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.read(kMaxRecordBytes + 1);
    return bytes.size() > kMaxRecordBytes ? QJsonObject() : QJsonDocument::fromJson(bytes).object();
}

bool hasRecordedSize(const QString &path, const ComponentProduct &product, const QJsonObject &record)
{
    const QFileInfo info(path);
    if (!info.isFile() || info.size() != record.value("size"_L1).toInteger(0))
        return false;
    return product.file_size <= 0 || info.size() == product.file_size;
}

bool hasRecordedDigest(const QString &path, const ComponentProduct &product, const QJsonObject &record)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    const QByteArray digest = sha256Hex(file);
    if (digest.isEmpty() || digest != record.value("sha256"_L1).toString().toLatin1())
        return false;
    return product.sha256.isEmpty() || digest == product.sha256.toLatin1();
}

} // namespace

QString findCachedPackage(const QString &root, const ComponentProduct &product)
{
    if (!isValid(product))
        return {};
    const QString packagePath = cachedPackagePath(root, product);
    const QString recordPath = cachedRecordPath(root, product);
    if (!isInsideRoot(root, packagePath) || !isInsideRoot(root, recordPath))
        return {};
    const QJsonObject record = readRecord(recordPath);
    const bool isOurs = record.value("identity"_L1).toString() == productIdentity(product);
    const bool isIntact = isOurs && hasRecordedSize(packagePath, product, record) &&
                          hasRecordedDigest(packagePath, product, record);
    return isIntact ? packagePath : QString();
}

bool writePackageRecord(const QString &root, const ComponentProduct &product, qint64 size,
                        const QByteArray &sha256)
{
    const QJsonObject record{{u"identity"_s, productIdentity(product)},
                             {u"product_key"_s, product.product_key},
                             {u"product_version"_s, product.product_version},
                             {u"size"_s, size},
                             {u"sha256"_s, QString::fromLatin1(sha256)}};
    const QByteArray bytes = QJsonDocument(record).toJson(QJsonDocument::Indented);
    return writeFileAtomically(root, cachedRecordPath(root, product), bytes);
}

void dropPackageRecord(const QString &root, const ComponentProduct &product)
{
    const QString path = cachedRecordPath(root, product);
    if (isValid(product) && isInsideRoot(root, path))
        QFile::remove(path);
}

} // namespace quillmar
