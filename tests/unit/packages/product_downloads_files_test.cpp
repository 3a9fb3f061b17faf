#include "packages/product_downloads.h"

#include "packages/package_cache.h"
#include "packages/product_identity.h"
#include "tests/unit/packages/download_fixture.h"
#include "tests/unit/packages/file_tree.h"

#include <QFileInfo>
#include <QTest>

#include <optional>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

/// What materialize() makes of a package.
class ProductDownloadsFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void materializesTheWholePackage();
    void materializesAComponent();
    void damagedArchiveIsForgotten();
    void unsafePathKeepsThePackage();
    void materializeCopiesItsArguments();
    void materializeWithoutContextIsNotAnswered();
    void sameComponentTwiceAtOnce();

private:
    ProductFileResult materialized(const QString &path, const std::optional<ProductComponent> &component);

    std::optional<DownloadFixture> f_;
};

namespace
{

ProductComponent fileComponent(const QString &path)
{
    ProductComponent component;
    component.asset_path = path;
    component.asset_kind = u"file"_s;
    return component;
}

} // namespace

ProductFileResult ProductDownloadsFilesTest::materialized(const QString &path,
                                                          const std::optional<ProductComponent> &component)
{
    const auto outcome = std::make_shared<Outcome>();
    f_->downloads->materialize(f_->product, path, component, &f_->context, f_->completionFor(outcome));
    if (outcome->calls != 0 || !QTest::qWaitFor([&outcome] { return outcome->calls == 1; }))
        return ProductFileResult::failure(u"not answered once, later"_s);
    return outcome->result;
}

void ProductDownloadsFilesTest::materializesTheWholePackage()
{
    const ProductFileResult result = materialized(f_->acquired().path, std::nullopt);
    QCOMPARE(result.error, QString());
    QCOMPARE(result.path, outputDirectory(f_->root(), f_->product) + u"/Pack.bin"_s);
    QCOMPARE(fileContent(result.path), f_->bytes);
}

void ProductDownloadsFilesTest::materializesAComponent()
{
    const ProductFileResult result = materialized(f_->acquired().path, fileComponent(u"Pack.bin"_s));
    QCOMPARE(result.error, QString());
    QCOMPARE(result.path, outputDirectory(f_->root(), f_->product) + u"/Components/Pack.bin"_s);
    QCOMPARE(materialized(f_->acquired().path, fileComponent(u"other.png"_s)).error,
             u"Component.FileMissing"_s);
}

void ProductDownloadsFilesTest::damagedArchiveIsForgotten()
{
    f_->product.file_name = u"Pack.zip"_s;
    const QString path = f_->acquired().path;
    QCOMPARE(materialized(path, fileComponent(u"a.png"_s)).error, u"Component.InvalidArchive"_s);
    QVERIFY(!QFileInfo::exists(cachedRecordPath(f_->root(), f_->product)));
    QVERIFY(QFileInfo::exists(path));
    QCOMPARE(f_->acquired().path, path);
    QCOMPARE(f_->files(), 2);
}

void ProductDownloadsFilesTest::unsafePathKeepsThePackage()
{
    f_->product.file_name = u"Pack.zip"_s;
    const QString path = f_->acquired().path;
    QCOMPARE(materialized(path, fileComponent(u"../a.png"_s)).error, u"Component.UnsafePath"_s);
    QCOMPARE(materialized(f_->folder() + u"/elsewhere"_s, fileComponent(u"a.png"_s)).error,
             u"Component.UnsafePath"_s);
    QCOMPARE(findCachedPackage(f_->root(), f_->product), path);
}

void ProductDownloadsFilesTest::materializeCopiesItsArguments()
{
    QString path = f_->acquired().path;
    const auto outcome = std::make_shared<Outcome>();
    {
        ComponentProduct product = f_->product;
        std::optional<ProductComponent> component = fileComponent(u"Pack.bin"_s);
        f_->downloads->materialize(product, path, component, &f_->context, f_->completionFor(outcome));
        product = {};
        component.reset();
        path.clear();
    }
    QTRY_COMPARE(outcome->calls, 1);
    QVERIFY(outcome->result.isOk());
}

void ProductDownloadsFilesTest::materializeWithoutContextIsNotAnswered()
{
    const QString path = f_->acquired().path;
    const auto nobody = std::make_shared<Outcome>();
    const auto gone = std::make_shared<Outcome>();
    auto receiver = std::make_unique<QObject>();
    f_->downloads->materialize(f_->product, path, std::nullopt, nullptr, f_->completionFor(nobody));
    f_->downloads->materialize(f_->product, path, std::nullopt, receiver.get(), f_->completionFor(gone));
    receiver.reset();
    for (int i = 0; i < 3; ++i)
        QVERIFY(materialized(path, std::nullopt).isOk());
    f_->downloads.reset();
    QCOMPARE(nobody->calls, 0);
    QCOMPARE(gone->calls, 0);
}

void ProductDownloadsFilesTest::sameComponentTwiceAtOnce()
{
    const QString path = f_->acquired().path;
    QList<std::shared_ptr<Outcome>> outcomes;
    for (int i = 0; i < 50; ++i) {
        outcomes.append(std::make_shared<Outcome>());
        f_->downloads->materialize(f_->product, path, fileComponent(u"Pack.bin"_s), &f_->context,
                                   f_->completionFor(outcomes.last()));
    }
    for (const auto &outcome : std::as_const(outcomes)) {
        QTRY_COMPARE(outcome->calls, 1);
        QVERIFY(outcome->result.isOk());
        QCOMPARE(fileContent(outcome->result.path), f_->bytes);
    }
}

QTEST_GUILESS_MAIN(ProductDownloadsFilesTest)
#include "product_downloads_files_test.moc"
