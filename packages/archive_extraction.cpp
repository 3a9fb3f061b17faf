#include "packages/archive_extraction.h"

#include "packages/atomic_file.h"
#include "packages/path_safety.h"
#include "packages/product_identity.h"
#include "packages/zip_entry_reader.h"
#include "packages/zip_index.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <algorithm>

namespace quillmar
{

using namespace Qt::StringLiterals;

namespace
{

ProductFileResult refused()
{
    return ProductFileResult::failure(u"Component.UnsafePath"_s);
}
ProductFileResult missing()
{
    return ProductFileResult::failure(u"Component.FileMissing"_s);
}
ProductFileResult invalid()
{
    return ProductFileResult::failure(u"Component.InvalidArchive"_s);
}
ProductFileResult unsaved()
{
    return ProductFileResult::failure(u"Download.SaveFailed"_s);
}

/// Only a regular file: opening a pipe would wait for its writer.
bool openPackage(QFile &package)
{
    return QFileInfo(package.fileName()).isFile() &&
           package.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool isZip(const ComponentProduct &product)
{
    return product.file_mime == u"application/zip" ||
           product.file_name.endsWith(u".zip", Qt::CaseInsensitive);
}

/// Takes the files of one component out of an archive.
class ComponentExtraction
{
public:
    /// `folder` is where the archive's paths begin, `asset` the safe path of the component in it.
    ComponentExtraction(const QString &root, const QString &folder, const QString &asset, bool assetIsFolder)
        : root_(root), folder_(folder), asset_(asset), assetIsFolder_(assetIsFolder)
    {
    }

    ProductFileResult run(QFile &package)
    {
        const ZipIndex index = readZipIndex(package);
        if (index.verdict == ZipIndex::Verdict::Malformed)
            return invalid();
        if (index.verdict == ZipIndex::Verdict::UnsafeEntry || !allInsideRoot(index.entries))
            return refused();
        return writeSelected(package, index.entries);
    }

private:
    QString destination(const QString &path) const { return folder_ + u'/' + path; }

    bool allInsideRoot(const QList<ZipEntry> &entries)
    {
        return std::all_of(entries.cbegin(), entries.cend(),
                           [this](const ZipEntry &entry) { return isInside(entry.path); });
    }

    /// The answer of the inside-root test for the destination of `path`. A folder that does not exist holds
    /// no link, so nothing below it is looked at; ten thousand entries would otherwise each walk up to the
    /// top of the volume.
    bool isInside(const QString &path)
    {
        const QString target = destination(path);
        for (qsizetype end = folder_.size(); end >= 0; end = target.indexOf(u'/', end + 1)) {
            const QString above = target.left(end);
            auto exists = exists_.constFind(above);
            if (exists == exists_.cend()) {
                if (!isInsideRoot(root_, above))
                    return false;
                exists = exists_.insert(above, QFileInfo::exists(above));
            }
            if (!*exists)
                return true;
        }
        return isInsideRoot(root_, target);
    }

    bool isSelected(const ZipEntry &entry) const
    {
        if (!assetIsFolder_)
            return entry.kind == ZipEntry::Kind::File && entry.path == asset_;
        const bool isAssetItself = entry.kind == ZipEntry::Kind::Directory && entry.path == asset_;
        return isAssetItself || entry.path.startsWith(asset_ + u'/');
    }

    ProductFileResult writeSelected(QFile &package, const QList<ZipEntry> &entries)
    {
        bool anySelected = false;
        for (const ZipEntry &entry : entries) {
            if (!isSelected(entry))
                continue;
            anySelected = true;
            const ProductFileResult written = writeEntry(package, entry);
            if (!written.isOk())
                return written;
        }
        return anySelected ? ProductFileResult::success(destination(asset_)) : missing();
    }

    ProductFileResult writeEntry(QFile &package, const ZipEntry &entry)
    {
        const QString target = destination(entry.path);
        if (entry.kind == ZipEntry::Kind::Directory)
            return makeFolder(root_, target) ? ProductFileResult::success(target) : unsaved();
        return isHeld(package, entry, target) ? ProductFileResult::success(target)
                                              : writeFile(package, entry, target);
    }

    /// The target is a file of the very bytes of `entry`. Files of another size are not even opened.
    bool isHeld(QFile &package, const ZipEntry &entry, const QString &target)
    {
        const QFileInfo info(target);
        QFile held(target);
        if (!info.isFile() || info.size() != entry.size || !isInsideRoot(root_, target) ||
            !held.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return false;
        bool same = true;
        const bool sound = reader_.read(
            package, entry, [&](QByteArrayView bytes) { same = same && held.read(bytes.size()) == bytes; });
        return sound && same;
    }

    /// The bytes flow into a temporary file, which takes the target's place once they have proved right. A
    /// failure to write does not end the reading: a damaged archive is to be reported as such.
    ProductFileResult writeFile(QFile &package, const ZipEntry &entry, const QString &target)
    {
        PendingFile file(root_, target);
        bool written = file.open();
        const bool sound = reader_.read(
            package, entry, [&](QByteArrayView bytes) { written = written && file.write(bytes); });
        if (!sound)
            return invalid();
        // The other worker may have put the same there meanwhile, and may hold it right now.
        const bool isThere = (written && file.commit()) || isHeld(package, entry, target);
        return isThere ? ProductFileResult::success(target) : unsaved();
    }

    QString root_;
    QString folder_;
    QString asset_;
    bool assetIsFolder_;
    ZipEntryReader reader_;
    QHash<QString, bool> exists_; ///< folders that passed the inside-root test, and whether they exist
};

ProductFileResult copyWhole(const QString &root, QFile &package, const QString &target)
{
    return copyRangeAtomically(root, target, package, 0, package.size()) ? ProductFileResult::success(target)
                                                                         : unsaved();
}

ProductFileResult copyPackage(const QString &root, const ComponentProduct &product,
                              const QString &packagePath)
{
    const QString fileName = safeRelativePath(product.file_name);
    if (fileName.isEmpty() || fileName.contains(u'/'))
        return refused();
    QFile package(packagePath);
    if (!openPackage(package))
        return ProductFileResult::failure(u"Download.Failed"_s);
    return copyWhole(root, package, outputDirectory(root, product) + u'/' + fileName);
}

ProductFileResult extractComponent(const QString &root, const ComponentProduct &product,
                                   const QString &packagePath, const ProductComponent &component)
{
    const QString asset = safeRelativePath(component.asset_path);
    const bool isFolder = component.asset_kind == u"folder";
    if (asset.isEmpty() || !(isFolder || component.asset_kind == u"file"))
        return refused();

    const QString folder = outputDirectory(root, product) + u"/Components";
    QFile package(packagePath);
    if (isZip(product))
        return openPackage(package) ? ComponentExtraction(root, folder, asset, isFolder).run(package)
                                    : invalid();
    if (isFolder || asset != safeRelativePath(product.file_name) || !openPackage(package))
        return missing();
    return copyWhole(root, package, folder + u'/' + asset);
}

} // namespace

ProductFileResult extractPackage(const QString &root, const ComponentProduct &product,
                                 const QString &packagePath, const std::optional<ProductComponent> &component)
{
    if (!isValid(product) || !isInsideRoot(root, packagePath) ||
        packagePath != cachedPackagePath(root, product))
        return refused();
    return component ? extractComponent(root, product, packagePath, *component)
                     : copyPackage(root, product, packagePath);
}

} // namespace quillmar
