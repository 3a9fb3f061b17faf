#include "packages/archive_extraction.h"
#include "packages/product_identity.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdlib>

namespace
{

using namespace quillmar;
using namespace Qt::StringLiterals;

/// A package root for one process; it lives in memory where the system has a folder for that.
class Scratch
{
public:
    Scratch() : folder_(base() + u"/archive-fuzz-XXXXXX")
    {
        root_ = QFileInfo(folder_.path()).canonicalFilePath() + u"/Quillmar"_s;
        product_.product_key = u"pack"_s;
        product_.product_version = u"1"_s;
        product_.file_name = u"pack.zip"_s;
        QDir().mkpath(cacheDirectory(root_, product_));
    }

    void store(const uint8_t *data, size_t size) const
    {
        QFile file(cachedPackagePath(root_, product_));
        if (!file.open(QIODevice::WriteOnly) ||
            file.write(reinterpret_cast<const char *>(data), static_cast<qint64>(size)) !=
                static_cast<qint64>(size))
            std::abort();
    }

    void extract() const
    {
        ProductComponent component;
        component.asset_path = u"pack"_s;
        component.asset_kind = u"folder"_s;
        const ProductFileResult result =
            extractPackage(root_, product_, cachedPackagePath(root_, product_), component);
        if (result.isOk() != !result.path.isEmpty())
            std::abort();
    }

    /// Nothing may appear beside the root or outside the product's own folders in it.
    void checkSurroundings() const
    {
        const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
        const QStringList beside = QDir(folder_.path()).entryList(all);
        QStringList inside = QDir(root_).entryList(all);
        inside.removeAll(u"pack"_s);
        if (beside != QStringList{u"Quillmar"_s} || inside != QStringList{u".quillmar-cache"_s})
            std::abort();
    }

    void clean() const { QDir(root_ + u"/pack"_s).removeRecursively(); }

private:
    static QString base() { return QFileInfo(u"/dev/shm"_s).isWritable() ? u"/dev/shm"_s : QDir::tempPath(); }

    QTemporaryDir folder_;
    QString root_;
    ComponentProduct product_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const Scratch scratch;
    scratch.store(data, size);
    scratch.extract();
    scratch.checkSurroundings();
    scratch.clean();
    return 0;
}
