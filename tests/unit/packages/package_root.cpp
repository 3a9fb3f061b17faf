#include "tests/unit/packages/package_root.h"

#include "packages/archive_extraction.h"
#include "packages/atomic_file.h"
#include "packages/incoming_file.h"
#include "packages/incoming_package.h"
#include "packages/package_cache.h"
#include "packages/path_safety.h"
#include "packages/product_identity.h"
#include "tests/support/zip_builder/archive_samples.h"
#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/package_fixture.h"

#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

void worksIn(const QString &root)
{
    const ComponentProduct product = zipProduct(baseArchive().build());
    IncomingPackage incoming(root, product);
    incoming.append(baseArchive().build());
    QCOMPARE(incoming.store().error, QString());
    const QString path = findCachedPackage(root, product);
    QCOMPARE(path, cachedPackagePath(root, product));

    ProductComponent component;
    component.asset_path = u"pack/wanted.txt"_s;
    component.asset_kind = u"file"_s;
    const ProductFileResult file = extractPackage(root, product, path, component);
    QCOMPARE(file.error, QString());
    QCOMPARE(fileContent(file.path).size(), 600);
    QCOMPARE(extractPackage(root, product, path, component).error, QString());
    const ProductFileResult whole = extractPackage(root, product, path, std::nullopt);
    QCOMPARE(whole.error, QString());
    QCOMPARE(fileContent(whole.path), baseArchive().build());
    dropPackageRecord(root, product);
    QVERIFY(findCachedPackage(root, product).isEmpty());
}

void refusesAllIn(const QString &root)
{
    const QByteArray bytes = baseArchive().build();
    const ComponentProduct product = zipProduct(bytes);
    QVERIFY(!isInsideRoot(root, root + u"/x"_s));
    QVERIFY(!writeFileAtomically(root, root + u"/x"_s, "bytes"));
    IncomingPackage incoming(root, product);
    incoming.append(bytes);
    QCOMPARE(incoming.store().error, u"Download.SaveFailed"_s);
    IncomingFile file(root);
    file.setName(u"file.zip"_s);
    file.append("bytes");
    QCOMPARE(file.store().error, u"Download.SaveFailed"_s);
    QVERIFY(findCachedPackage(root, product).isEmpty());
    QCOMPARE(extractPackage(root, product, cachedPackagePath(root, product), std::nullopt).error,
             u"Component.UnsafePath"_s);
}

} // namespace quillmar::test
