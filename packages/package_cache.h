#pragma once

#include "packages/component_product.h"

#include <QByteArray>
#include <QString>

namespace quillmar
{

/// The packages on disk, one folder per product identity, each with the package as downloaded and a record of
/// it.
///
/// A record is written after its package, and one that does not describe the bytes beside it counts for
/// nothing; so an entry is complete or absent. Two processes may share the root. Any thread; the file system
/// is all that is shared.

/// Path of the verified package of `product`, or empty when there is none. Hashes the whole file, so it
/// blocks. Changes nothing on disk.
QString findCachedPackage(const QString &root, const ComponentProduct &product);

/// Records that the package of `product` on disk is `size` bytes with digest `sha256`. False when it was not
/// written.
bool writePackageRecord(const QString &root, const ComponentProduct &product, qint64 size,
                        const QByteArray &sha256);

/// Makes the cached package of `product` unknown, so that it is downloaded again.
void dropPackageRecord(const QString &root, const ComponentProduct &product);

} // namespace quillmar
