// Verification and extraction beside the tools that everybody has, on the same file in the same run.
//
//   package_speed [MEBIBYTES] [FOLDER]
//
// Every figure is the best of three. A ratio above 1 means that the module is faster than the tool. Needs
// sha256sum, zip, unzip, 7z and bsdtar.

#include "bench/process_memory.h"

#include "packages/archive_extraction.h"
#include "packages/package_cache.h"
#include "packages/product_identity.h"
#include "packages/sha256.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <limits>

namespace
{

using namespace quillmar;
using namespace Qt::StringLiterals;

constexpr double kMebi = 1024.0 * 1024.0;

[[noreturn]] void fail(const QString &why)
{
    std::fprintf(stderr, "%s\n", qPrintable(why));
    std::exit(1);
}

void run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        fail(program + u" failed");
}

double bestSeconds(const std::function<void()> &prepare, const std::function<void()> &work)
{
    double best = std::numeric_limits<double>::max();
    for (int round = 0; round < 3; ++round) {
        prepare();
        QElapsedTimer clock;
        clock.start();
        work();
        best = std::min(best, static_cast<double>(clock.nsecsElapsed()) / 1e9);
    }
    return best;
}

/// Random bytes: as little to compress as in a video.
QByteArray randomBytes(qsizetype length)
{
    QByteArray bytes(length, Qt::Uninitialized);
    QRandomGenerator random(1);
    random.generate(bytes.begin(), bytes.end());
    return bytes;
}

/// Words of a small vocabulary with random bytes in between, about 3:1.
QByteArray mixedBytes(qsizetype length)
{
    const QByteArray words = randomBytes(1 << 16);
    QRandomGenerator random(2);
    QByteArray bytes;
    bytes.reserve(length + 64);
    while (bytes.size() < length) {
        const auto start = random.bounded(words.size() - 64);
        bytes += QByteArrayView(words).sliced(start, random.bounded(4, 48));
        bytes += QByteArray::number(random.bounded(1000));
    }
    bytes.truncate(length);
    return bytes;
}

/// A package in a cache of its own, with the component "pack".
class Package
{
public:
    Package(const QString &folder, const QString &level) : folder_(folder), root_(folder + u"/Quillmar")
    {
        product_.product_key = u"pack"_s;
        product_.product_version = u"1"_s;
        product_.file_name = u"pack.zip"_s;
        QDir().mkpath(cacheDirectory(root_, product_));
        QProcess zip;
        zip.setWorkingDirectory(folder_);
        zip.start(u"zip"_s, {u"-qr"_s, level, path(), u"pack"_s});
        if (!zip.waitForFinished(-1) || zip.exitCode() != 0)
            fail(u"zip failed"_s);
        // zip adds its own suffix
        QFile::rename(path() + u".zip", path());
        QFile file(path());
        if (!file.open(QIODevice::ReadOnly) ||
            !writePackageRecord(root_, product_, file.size(), sha256Hex(file)))
            fail(u"cannot write the record"_s);
    }

    QString path() const { return cachedPackagePath(root_, product_); }

    void verify() const
    {
        if (findCachedPackage(root_, product_).isEmpty())
            fail(u"the package does not verify"_s);
    }

    void removeExtracted() const
    {
        QDir(outputDirectory(root_, product_)).removeRecursively();
        QDir(toolFolder()).removeRecursively();
        QDir().mkpath(toolFolder());
    }

    void extract() const
    {
        ProductComponent component;
        component.asset_path = u"pack"_s;
        component.asset_kind = u"folder"_s;
        const ProductFileResult result = extractPackage(root_, product_, path(), component);
        if (!result.isOk())
            fail(result.error);
    }

    QString toolFolder() const { return folder_ + u"/tool"; }

private:
    QString folder_;
    QString root_;
    ComponentProduct product_;
};

void compare(const char *what, double ours, const char *tool, double theirs)
{
    std::printf("%-34s %7.3f s   %-10s %7.3f s   ratio %5.2f\n", what, ours, tool, theirs, theirs / ours);
    std::fflush(stdout);
}

void measureVerification(const Package &package)
{
    const auto nothing = [] {};
    const double ours = bestSeconds(nothing, [&] { package.verify(); });
    const double theirs = bestSeconds(nothing, [&] { run(u"sha256sum"_s, {package.path()}); });
    compare("verification", ours, "sha256sum", theirs);
}

void measureExtraction(const char *what, const Package &package, double largestMebi)
{
    const auto clean = [&] { package.removeExtracted(); };
    clean();
    bench::resetPeak();
    const qint64 before = bench::processMemory("VmRSS");
    package.extract();
    const double growth = static_cast<double>(bench::processMemory("VmHWM") - before) / kMebi;

    const double ours = bestSeconds(clean, [&] { package.extract(); });
    const QString into = package.toolFolder();
    compare(what, ours, "unzip",
            bestSeconds(clean, [&] { run(u"unzip"_s, {u"-q"_s, package.path(), u"-d"_s, into}); }));
    compare(what, ours, "7z", bestSeconds(clean, [&] {
                run(u"7z"_s, {u"x"_s, u"-bd"_s, u"-tzip"_s, QString(u"-o"_s + into), package.path()});
            }));
    compare(what, ours, "bsdtar",
            bestSeconds(clean, [&] { run(u"bsdtar"_s, {u"-xf"_s, package.path(), u"-C"_s, into}); }));
    std::printf("%-34s peak growth %.1f MiB, %.1f MiB of it the largest file\n", what, growth, largestMebi);
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) ||
        file.write(bytes) != bytes.size())
        fail(u"cannot write "_s + path);
}

void writeMany(const QString &folder)
{
    const QByteArray bytes = mixedBytes(1 << 16);
    for (int i = 0; i < 2000; ++i)
        writeFile(folder + u"/pack/" + QString::number(i % 50) + u'/' + QString::number(i) + u".png",
                  bytes.sliced(i, 20000));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int mebibytes = arguments.size() > 1 ? arguments[1].toInt() : 256;
    const QString base = arguments.size() > 2 ? arguments[2] : QDir::tempPath();
    const auto run = [&](const char *what, const QString &level,
                         const std::function<void(const QString &)> &fill, double largest, bool verify) {
        const QTemporaryDir work(base + u"/speed-XXXXXX");
        const QString folder = QFileInfo(work.path()).canonicalFilePath();
        fill(folder);
        const Package package(folder, level);
        if (verify)
            measureVerification(package);
        measureExtraction(what, package, largest);
    };
    const qsizetype length = qsizetype{mebibytes} << 20;
    const auto oneFile = [](const QByteArray &bytes) {
        return [&bytes](const QString &folder) { writeFile(folder + u"/pack/file.webm", bytes); };
    };
    const auto random = [&](const QString &folder) { oneFile(randomBytes(length))(folder); };
    const auto mixed = [&](const QString &folder) { oneFile(mixedBytes(length))(folder); };
    run("extraction, stored", u"-0"_s, random, 0, true);
    run("extraction, deflated, incompressible", u"-6"_s, random, mebibytes, false);
    run("extraction, deflated, mixed", u"-6"_s, mixed, mebibytes, false);
    run("extraction, 2,000 small files", u"-6"_s, writeMany, 0, false);
    return 0;
}
