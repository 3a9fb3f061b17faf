#include "packages/atomic_file.h"
#include "tests/support/zip_builder/zip_builder.h"
#include "tests/unit/packages/extraction_folder.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <functional>
#include <thread>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

namespace
{

constexpr int kRounds = 300;

/// How many of all calls failed when two threads make them at the same time. `prepare` comes before each
/// round.
int failuresOfTwo(const std::function<void()> &prepare, const std::function<bool()> &work)
{
    std::atomic_int failures = 0;
    for (int round = 0; round < kRounds; ++round) {
        prepare();
        std::atomic_int ready = 0;
        const auto run = [&] {
            for (++ready; ready < 2;)
                std::this_thread::yield();
            failures += work() ? 0 : 1;
        };
        std::thread other(run);
        run();
        other.join();
    }
    return failures;
}

} // namespace

/// Two workers that write the same file with the same bytes at once: both succeed.
class AtomicFileWorkersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newFile();
    void sameComponent();
};

void AtomicFileWorkersTest::newFile()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"root/a/target"_s);
    const QByteArray bytes = noise(50'000);
    const int failures =
        failuresOfTwo([&] { QFile::remove(path); },
                      [&] { return writeFileAtomically(folder.filePath(u"root"_s), path, bytes); });
    QCOMPARE(failures, 0);
    QCOMPARE(fileContent(path), bytes);
    QCOMPARE(treeBelow(folder.path()).size(), 3);
}

void AtomicFileWorkersTest::sameComponent()
{
    const QByteArray frame = noise(50'000);
    ExtractionFolder folder;
    folder.storePackage(zipOf({deflatedItem("pack/frame.png", frame)}));
    const int failures = failuresOfTwo([&] { QFile::remove(folder.components() + u"/pack/frame.png"_s); },
                                       [&] { return folder.extractFile(u"pack/frame.png"_s).isOk(); });
    QCOMPARE(failures, 0);
    QCOMPARE(folder.extracted(), (QMap<QString, QByteArray>{{u"pack/frame.png"_s, frame}}));
}

QTEST_GUILESS_MAIN(AtomicFileWorkersTest)
#include "atomic_file_workers_test.moc"
