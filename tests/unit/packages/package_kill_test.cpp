#include "packages/incoming_package.h"
#include "packages/package_cache.h"
#include "packages/product_identity.h"
#include "tests/support/zip_builder/zip_builder.h"
#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/kill_points.h"
#include "tests/unit/packages/package_fixture.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr int MostRuns = 500;

QByteArray frame(char mark)
{
    return QByteArray(5000, mark);
}

QByteArray archive(char mark)
{
    return zipOf({fileItem("Frames/one.png", frame(mark)), deflatedItem("Frames/two.png", frame(mark)),
                  fileItem("note.txt", frame(mark))});
}

/// A package root, the package to come in a file beside it, and the program that works on them.
struct Site {
    explicit Site(const QByteArray &bytes) : package(bytes), product(zipProduct(bytes))
    {
        putFile(packageFile, package);
    }

    bool store() const
    {
        IncomingPackage incoming(root, product);
        incoming.append(package);
        return incoming.store().isOk();
    }

    QString find() const { return findCachedPackage(root, product); }

    /// The command that does the task so many times.
    QStringList command(const QString &task, int times = 1) const
    {
        return {QStringLiteral(QUILLMAR_PACKAGE_WORKER), task, root, packageFile, QString::number(times)};
    }

    bool extract() const
    {
        const QStringList words = command(u"extract"_s);
        return QProcess::execute(words.first(), words.mid(1)) == 0;
    }

    /// The files that extracting makes.
    QStringList frames() const
    {
        const QString place = outputDirectory(root, product) + u"/Components/Frames/"_s;
        return {place + u"one.png"_s, place + u"two.png"_s};
    }

    QTemporaryDir folder;
    QString root = folder.filePath(u"Quillmar"_s);
    QString packageFile = folder.filePath(u"incoming.zip"_s);
    QByteArray package;
    ComponentProduct product;
};

void addCalls()
{
    QTest::addColumn<QString>("calls");
    for (const KillPoint &point : killPoints())
        QTest::newRow(point.name) << point.calls;
}

} // namespace

/// Processes that end in the middle of storing and extracting, and two that store at once.
class PackageKillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void killedWhileStoring_data();
    void killedWhileStoring();
    void killedWhileExtracting_data() { addCalls(); }
    void killedWhileExtracting();
    void twoProcessesStoreOnePackageAtOnce();
    void oneProcessStoresWhileAnotherExtracts();
};

void PackageKillTest::killedWhileStoring_data()
{
    addCalls();
    const KillPoint folders = makingFolders();
    QTest::newRow(folders.name) << folders.calls;
}

/// Afterwards the cache holds the package whole or does not know it, and the next try stores it.
void PackageKillTest::killedWhileStoring()
{
    QFETCH(const QString, calls);
    int runs = 0;
    for (bool isDone = false; !isDone; ++runs) {
        QVERIFY(runs < MostRuns);
        const Site site(archive('n'));
        const std::optional<bool> ended = runUntilKilled(site.command(u"store"_s), calls, runs + 1);
        QVERIFY2(ended, "neither killed nor well");
        isDone = *ended;
        const QString found = site.find();
        QVERIFY(!isDone || !found.isEmpty());
        QVERIFY(found.isEmpty() || fileContent(found) == site.package);
        QVERIFY(site.store());
        QCOMPARE(fileContent(site.find()), site.package);
    }
    QVERIFY2(runs > 1, "nothing was killed");
}

/// Afterwards each file is the old one or the new one, whole, and the next try brings all of them.
void PackageKillTest::killedWhileExtracting()
{
    QFETCH(const QString, calls);
    int runs = 0;
    for (bool isDone = false; !isDone; ++runs) {
        QVERIFY(runs < MostRuns);
        const Site site(archive('n'));
        QVERIFY(site.store());
        QVERIFY(site.extract());
        const QStringList names = site.frames();
        for (const QString &name : names)
            putFile(name, frame('o'));
        const std::optional<bool> ended = runUntilKilled(site.command(u"extract"_s), calls, runs + 1);
        QVERIFY2(ended, "neither killed nor well");
        isDone = *ended;
        for (const QString &name : names) {
            const QByteArray content = fileContent(name);
            QVERIFY(content == frame('n') || (!isDone && content == frame('o')));
        }
        QVERIFY(site.extract());
        for (const QString &name : names)
            QCOMPARE(fileContent(name), frame('n'));
    }
    QVERIFY2(runs > 1, "nothing was killed");
}

void PackageKillTest::twoProcessesStoreOnePackageAtOnce()
{
    const Site site(archive('n'));
    QProcess first;
    QProcess second;
    const QStringList command = site.command(u"store"_s, 200);
    for (QProcess *process : {&first, &second})
        process->start(command.first(), command.mid(1));
    for (QProcess *process : {&first, &second}) {
        QVERIFY(process->waitForFinished(60'000));
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 0);
    }
    QVERIFY(!site.find().isEmpty());
    QCOMPARE(fileContent(site.find()), site.package);
}

void PackageKillTest::oneProcessStoresWhileAnotherExtracts()
{
    const Site site(archive('n'));
    QVERIFY(site.store());
    QProcess storing;
    QProcess extracting;
    const QStringList store = site.command(u"store"_s, 200);
    const QStringList extract = site.command(u"extract"_s, 200);
    storing.start(store.first(), store.mid(1));
    extracting.start(extract.first(), extract.mid(1));
    for (QProcess *process : {&storing, &extracting}) {
        QVERIFY(process->waitForFinished(60'000));
        QCOMPARE(process->exitCode(), 0);
    }
    const QStringList names = site.frames();
    for (const QString &name : names)
        QCOMPARE(fileContent(name), frame('n'));
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::PackageKillTest)
#include "package_kill_test.moc"
