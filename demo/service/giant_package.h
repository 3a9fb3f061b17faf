#pragma once

#include <QJsonObject>
#include <QString>

namespace quillmar::demo
{

struct GiantPackage {
    QString path;
    QJsonObject product; ///< as the products route lists it
    QString error;       ///< empty on success, else a sentence
};

/// A package of exactly `bytes` bytes (4 KiB to 2 GiB): a ZIP with stored entries of at most 256 MiB each,
/// the first of which is the product's one component. Its bytes depend on `bytes` alone. Written to
/// `folder`/giant once and used again; never held in memory. Blocks.
GiantPackage makeGiantPackage(const QString &folder, qint64 bytes);

} // namespace quillmar::demo
