#include "packages/atomic_file.h"

#include "tests/unit/packages/file_tree.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <fcntl.h>
#include <stdio.h>
#include <thread>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

namespace
{

constexpr int kExchanges = 100'000;

/// A folder and a link to the outside that change places all the time.
class Exchanger
{
public:
    Exchanger(const QString &folder, const QString &link)
        : folder_(QFile::encodeName(folder)), link_(QFile::encodeName(link)), thread_([this] { run(); })
    {
    }
    ~Exchanger()
    {
        isOver_ = true;
        thread_.join();
    }
    Q_DISABLE_COPY_MOVE(Exchanger)

    int count() const { return count_; }

private:
    void run()
    {
        while (!isOver_) {
            if (::renameat2(AT_FDCWD, folder_.constData(), AT_FDCWD, link_.constData(), RENAME_EXCHANGE) == 0)
                ++count_;
        }
    }

    QByteArray folder_;
    QByteArray link_;
    std::atomic_bool isOver_ = false;
    std::atomic_int count_ = 0;
    std::thread thread_;
};

} // namespace

/// Links that appear between any two steps, and folders that vanish.
class AtomicFileRaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsEverWrittenThroughALink();
    void vanishedFolderIsMadeAgain();
};

void AtomicFileRaceTest::nothingIsEverWrittenThroughALink()
{
    const QTemporaryDir top;
    const QString root = top.filePath(u"root"_s);
    const QString folder = root + u"/a/b"_s;
    putFile(top.filePath(u"outside/deep/target"_s), "precious");
    QVERIFY(QDir().mkpath(folder + u"/deep"_s));
    QVERIFY(QFile::link(top.filePath(u"outside"_s), root + u"/link"_s));
    const auto before = treeBelow(top.filePath(u"outside"_s));
    int written = 0;
    int refused = 0;
    {
        const Exchanger exchanger(folder, root + u"/link"_s);
        const QDeadlineTimer deadline(30'000);
        while (!deadline.hasExpired() && (exchanger.count() < kExchanges || written == 0 || refused == 0)) {
            const QByteArray bytes = "evil " + QByteArray::number(written);
            const bool wrote = writeFileAtomically(root, folder + u"/deep/target"_s, bytes);
            ++(wrote ? written : refused);
            writeFileAtomically(root, folder + u"/new/file"_s, bytes);
            makeFolder(root, folder + u"/made/below"_s);
            PendingFile dropped(root, folder + u"/dropped/file"_s);
            dropped.open();
        }
        QVERIFY(exchanger.count() >= kExchanges);
    }
    QVERIFY(written > 0);
    QVERIFY(refused > 0);
    QCOMPARE(treeBelow(top.filePath(u"outside"_s)), before);
}

void AtomicFileRaceTest::vanishedFolderIsMadeAgain()
{
    const QTemporaryDir top;
    const QString root = top.filePath(u"root"_s);
    PendingFile file(root, root + u"/a/b/target"_s);
    QVERIFY(file.open());
    QVERIFY(file.write("bytes"));
    QVERIFY(QDir(root + u"/a"_s).removeRecursively());
    QVERIFY(file.commit());
    QCOMPARE(fileContent(root + u"/a/b/target"_s), "bytes");
}

QTEST_GUILESS_MAIN(AtomicFileRaceTest)
#include "atomic_file_race_test.moc"
