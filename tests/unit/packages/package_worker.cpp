#include "packages/archive_extraction.h"
#include "packages/incoming_package.h"
#include "packages/package_cache.h"
#include "packages/product_identity.h"
#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/package_fixture.h"

/// Stores the package in a file, or takes its folder "Frames" out of it, as a process of its own that can be
/// killed in between.
///
///     package_worker store|extract ROOT PACKAGE TIMES
///
/// Exits with 0 when each time ended well.
int main(int argc, char **argv)
{
    using namespace quillmar;
    if (argc != 5) {
        return 2;
    }
    const QString root = QString::fromLocal8Bit(argv[2]);
    const QByteArray package = test::fileContent(QString::fromLocal8Bit(argv[3]));
    const ComponentProduct product = test::zipProduct(package);
    const bool stores = QByteArrayView(argv[1]) == "store";
    for (int left = QByteArray(argv[4]).toInt(); left > 0; --left) {
        ProductFileResult result;
        if (stores) {
            dropPackageRecord(root, product);
            IncomingPackage incoming(root, product);
            incoming.append(package);
            result = incoming.store();
        } else {
            ProductComponent frames;
            frames.asset_path = QStringLiteral("Frames");
            frames.asset_kind = QStringLiteral("folder");
            result = extractPackage(root, product, cachedPackagePath(root, product), frames);
        }
        if (!result.isOk()) {
            return 1;
        }
    }
    return 0;
}
