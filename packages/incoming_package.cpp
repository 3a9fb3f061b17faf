#include "packages/incoming_package.h"

#include "packages/package_cache.h"
#include "packages/path_safety.h"
#include "packages/product_identity.h"

#include <QFile>
#include <QFileInfo>

namespace quillmar
{

using namespace Qt::StringLiterals;

IncomingPackage::IncomingPackage(const QString &root, const ComponentProduct &product)
    : root_(root), product_(product), path_(cachedPackagePath(root, product)), file_(root, path_)
{
}

void IncomingPackage::append(QByteArrayView bytes)
{
    if (size_ == 0 && !bytes.isEmpty() && isValid(product_))
        file_.open();
    size_ += bytes.size();
    hash_.add(bytes);
    file_.write(bytes);
}

ProductFileResult IncomingPackage::store()
{
    const QByteArray digest = hash_.hexDigest();
    if (!isAsDescribed(digest)) {
        file_.discard();
        return ProductFileResult::failure(u"Download.Failed"_s);
    }
    if (!save(digest) || !writePackageRecord(root_, product_, size_, digest))
        return ProductFileResult::failure(u"Download.SaveFailed"_s);
    return ProductFileResult::success(path_);
}

bool IncomingPackage::isAsDescribed(const QByteArray &digest) const
{
    if (!isValid(product_) || size_ == 0 || digest.isEmpty())
        return false;
    if (product_.file_size > 0 && product_.file_size != size_)
        return false;
    return product_.sha256.isEmpty() || product_.sha256.toLatin1() == digest;
}

bool IncomingPackage::isOnDisk(const QByteArray &digest) const
{
    QFile file(path_);
    const QFileInfo info(path_);
    return info.isFile() && info.size() == size_ && file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) &&
           sha256Hex(file) == digest;
}

/// A package that is on disk already is good even when the disk had no room for a second copy, or when
/// another process put it there meanwhile and does not let it be replaced right now.
bool IncomingPackage::save(const QByteArray &digest)
{
    if (!file_.prepareFolder()) {
        file_.discard();
        return false;
    }
    if (!isOnDisk(digest))
        return file_.commit() || (isInsideRoot(root_, path_) && isOnDisk(digest));
    file_.discard();
    return true;
}

} // namespace quillmar
