#pragma once

#include "packages/atomic_file.h"
#include "packages/body_sink.h"
#include "packages/component_product.h"
#include "packages/product_file_result.h"
#include "packages/sha256.h"

namespace quillmar
{

/// One package on its way into the cache: taken in pieces, hashed on the way, kept only when store() agrees.
///
/// What it answers is what it would answer if the whole package were checked first and written afterwards: a
/// disk that cannot take the bytes matters only when size and digest are right. An object that was not stored
/// leaves nothing behind. Blocks; any one thread at a time.
class IncomingPackage : public BodySink
{
public:
    /// `root` is absolute and cleaned.
    IncomingPackage(const QString &root, const ComponentProduct &product);

    /// Takes the next bytes. A failure to write them is remembered for store().
    void append(QByteArrayView bytes) override;

    /// Ends the package. The path of the cached package, or "Download.Failed" when the product is invalid,
    /// nothing came, or the size or digest is another than the product's, or "Download.SaveFailed" when the
    /// package or its record could not be written. Content that the cache holds already is not written again.
    /// Called once.
    ProductFileResult store() override;

private:
    bool isAsDescribed(const QByteArray &digest) const;
    bool isOnDisk(const QByteArray &digest) const;
    bool save(const QByteArray &digest);

    QString root_;
    ComponentProduct product_;
    QString path_;
    PendingFile file_;
    Sha256 hash_;
    qint64 size_ = 0;
};

} // namespace quillmar
