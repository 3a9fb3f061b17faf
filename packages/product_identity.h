#pragma once

#include "packages/component_product.h"

#include <QString>

namespace quillmar
{

/// 64 lower-case hexadecimal digits that tell one package from every other: the SHA-256 over key, version,
/// file name, size and, when known, digest. Names the cache directory of the package.
QString productIdentity(const ComponentProduct &product);

/// The folder of the package cache in the package root.
inline constexpr QLatin1StringView CacheFolderName{".quillmar-cache"};

/// root + "/.quillmar-cache/" + identity: the cache directory of a package. `root` is absolute and cleaned.
QString cacheDirectory(const QString &root, const ComponentProduct &product);

/// The package file and the identity record in that directory.
QString cachedPackagePath(const QString &root, const ComponentProduct &product);
QString cachedRecordPath(const QString &root, const ComponentProduct &product);

/// root + "/" + product key + "/" + first 16 digits of the identity: where the files of a package are put.
QString outputDirectory(const QString &root, const ComponentProduct &product);

} // namespace quillmar
