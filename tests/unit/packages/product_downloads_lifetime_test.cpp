#include "packages/package_cache.h"
#include "packages/product_identity.h"
#include "tests/unit/packages/download_fixture.h"
#include "tests/unit/packages/file_tree.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTest>

#include <optional>
#include <utility>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

namespace
{

/// Where on its way a download is.
enum class Stage { LookUp, Ticket, FileHead, FileBody, Store };

const QList<std::pair<const char *, Stage>> kStages{{"look-up", Stage::LookUp},
                                                    {"ticket", Stage::Ticket},
                                                    {"file head", Stage::FileHead},
                                                    {"file body", Stage::FileBody},
                                                    {"store", Stage::Store}};

} // namespace

/// Sessions that end, receivers and owners that go away, at every stage of a download.
class ProductDownloadsLifetimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { f_.reset(); }

    void signOutDropsTheRequest_data() { addStages(); }
    void signOutDropsTheRequest();
    void newSessionFetchesForItself();
    void newSessionDropsAStuckTransfer();
    void contextGoneIsNotCalled_data() { addStages(); }
    void contextGoneIsNotCalled();
    void nullContextIsNotCalled();
    void otherWaiterIsStillCalled();

    void ownerGone_data() { addStages(); }
    void ownerGone();
    void networkGone_data() { addStages(); }
    void networkGone();
    void networkGoneBeforeTheRequest();
    void networkThenOwnerGone_data() { addStages(); }
    void networkThenOwnerGone();
    void anythingGoneAtAnyTime();
    void destructorWaitsForWorkers();

private:
    static void addStages();
    std::shared_ptr<Outcome> reach(Stage stage, QObject *context);
    bool hasReached(Stage stage) const;
    void finishEverything();

    std::optional<DownloadFixture> f_;
    QByteArray late_;                    ///< what the held request still has to get, and gets too late
    std::optional<WireConnection> held_; ///< the server's end of the request that is kept waiting
};

void ProductDownloadsLifetimeTest::init()
{
    f_.emplace();
    held_.reset();
    late_.clear();
}

void ProductDownloadsLifetimeTest::addStages()
{
    QTest::addColumn<Stage>("stage");
    for (const auto &[name, stage] : kStages)
        QTest::newRow(name) << stage;
}

/// Starts a download and stops it at `stage`. Storing cannot be held up; it has just begun then.
std::shared_ptr<Outcome> ProductDownloadsLifetimeTest::reach(Stage stage, QObject *context)
{
    const auto hold = [this](const QByteArray &begin, const QByteArray &rest) {
        late_ = rest;
        return [this, begin](const WireRequest &, WireConnection &connection) {
            held_ = connection;
            connection.send(begin);
        };
    };
    const QByteArray file = DownloadFixture::head(f_->bytes.size()) + f_->bytes;
    const qsizetype half = file.size() / 2;
    if (stage == Stage::Ticket)
        f_->serveTicket(hold({}, DownloadFixture::goodTicket()));
    else if (stage == Stage::FileHead)
        f_->serveFile(hold({}, file));
    else if (stage == Stage::FileBody)
        f_->serveFile(hold(file.first(half), file.sliced(half)));
    auto outcome = std::make_shared<Outcome>();
    f_->downloads->acquire(f_->product, context, f_->completionFor(outcome));
    if (!QTest::qWaitFor([this, stage] { return hasReached(stage); }, 30'000))
        outcome->result = ProductFileResult::failure(u"stage not reached"_s);
    return outcome;
}

bool ProductDownloadsLifetimeTest::hasReached(Stage stage) const
{
    switch (stage) {
    case Stage::LookUp:
        return true;
    case Stage::Ticket:
    case Stage::FileHead:
        return held_.has_value();
    case Stage::FileBody:
        return QFileInfo::exists(cacheDirectory(f_->root(), f_->product));
    case Stage::Store:
        return f_->events.contains(u"quota"_s);
    }
    return false;
}

/// Sends what was held back, too late, and lets everything come to its end.
void ProductDownloadsLifetimeTest::finishEverything()
{
    f_->serveGood();
    if (held_)
        held_->send(std::exchange(late_, {}));
    f_->finishEverything();
}

void ProductDownloadsLifetimeTest::signOutDropsTheRequest()
{
    QFETCH(const Stage, stage);
    const auto outcome = reach(stage, &f_->context);
    QCOMPARE(outcome->result.error, QString());
    const qsizetype tickets = f_->tickets();
    const qsizetype files = f_->files();
    f_->events.clear();
    ++f_->generation;
    finishEverything();
    QCOMPARE(outcome->calls, 0);
    QCOMPARE(f_->tickets(), tickets + 1);
    QCOMPARE(f_->files(), files + 1);
    QCOMPARE(f_->events, QStringList({u"quota"_s, u"done"_s}));
    const QString folder = cacheDirectory(f_->root(), f_->product);
    if (stage == Stage::Store)
        QTRY_VERIFY(!findCachedPackage(f_->root(), f_->product).isEmpty());
    else
        QTRY_VERIFY(!QFileInfo::exists(folder));
}

void ProductDownloadsLifetimeTest::newSessionFetchesForItself()
{
    const auto old = reach(Stage::Ticket, &f_->context);
    ++f_->generation;
    f_->token = u"second"_s;
    f_->serveGood();
    QCOMPARE(f_->acquired().error, QString());
    QCOMPARE(f_->lastRequest("download-ticket").header("authorization"), "Bearer second");
    QCOMPARE(old->calls, 0);
}

void ProductDownloadsLifetimeTest::newSessionDropsAStuckTransfer()
{
    const auto old = reach(Stage::FileBody, &f_->context);
    QVERIFY(held_->isOpen());
    ++f_->generation;
    f_->serveGood();
    QCOMPARE(f_->acquired().error, QString());
    QTRY_VERIFY(!held_->isOpen());
    QCOMPARE(old->calls, 0);
    QCOMPARE(f_->acquired().path, cachedPackagePath(f_->root(), f_->product));
}

void ProductDownloadsLifetimeTest::contextGoneIsNotCalled()
{
    QFETCH(const Stage, stage);
    auto context = std::make_unique<QObject>();
    const auto outcome = reach(stage, context.get());
    QCOMPARE(outcome->result.error, QString());
    context.reset();
    finishEverything();
    QCOMPARE(outcome->calls, 0);
}

void ProductDownloadsLifetimeTest::nullContextIsNotCalled()
{
    const auto outcome = reach(Stage::LookUp, nullptr);
    f_->token.clear();
    f_->downloads->acquire(f_->product, nullptr, f_->completionFor(outcome));
    f_->token = u"token"_s;
    finishEverything();
    QCOMPARE(outcome->calls, 0);
}

void ProductDownloadsLifetimeTest::otherWaiterIsStillCalled()
{
    auto context = std::make_unique<QObject>();
    const auto gone = reach(Stage::LookUp, context.get());
    const auto stays = f_->acquire();
    context.reset();
    QTRY_COMPARE(stays->calls, 1);
    QVERIFY(stays->result.isOk());
    QCOMPARE(gone->calls, 0);
    QCOMPARE(f_->tickets(), 1);
}

void ProductDownloadsLifetimeTest::ownerGone()
{
    QFETCH(const Stage, stage);
    const auto outcome = reach(stage, &f_->context);
    QCOMPARE(outcome->result.error, QString());
    f_->downloads.reset();
    if (stage == Stage::Store)
        QVERIFY(!findCachedPackage(f_->root(), f_->product).isEmpty());
    else
        QVERIFY(treeBelow(f_->folder()).isEmpty());
    finishEverything();
    QCOMPARE(outcome->calls, 0);
    if (held_)
        QTRY_VERIFY(!held_->isOpen());
}

void ProductDownloadsLifetimeTest::networkGone()
{
    QFETCH(const Stage, stage);
    const auto outcome = reach(stage, &f_->context);
    QCOMPARE(outcome->result.error, QString());
    f_->network.reset();
    QTRY_COMPARE(outcome->calls, 1);
    if (stage == Stage::Store)
        QVERIFY(outcome->result.isOk());
    else
        QCOMPARE(outcome->result.error, u"Download.Failed"_s);
    finishEverything();
    QCOMPARE(outcome->calls, 1);
}

void ProductDownloadsLifetimeTest::networkGoneBeforeTheRequest()
{
    f_->network.reset();
    QCOMPARE(f_->acquired().error, u"Download.Failed"_s);
}

void ProductDownloadsLifetimeTest::networkThenOwnerGone()
{
    QFETCH(const Stage, stage);
    const auto outcome = reach(stage, &f_->context);
    f_->network.reset();
    f_->downloads.reset();
    finishEverything();
    QCOMPARE(outcome->calls, 0);
}

/// Every round ends a few downloads in another moment, in another order.
void ProductDownloadsLifetimeTest::anythingGoneAtAnyTime()
{
    QRandomGenerator random(4711);
    for (int round = 0; round < 300; ++round) {
        QList<std::shared_ptr<Outcome>> outcomes;
        auto context = std::make_unique<QObject>();
        for (int i = 0; i < 3; ++i) {
            outcomes.append(std::make_shared<Outcome>());
            f_->downloads->acquire(f_->otherProduct(i), context.get(), f_->completionFor(outcomes.last()));
        }
        const QDeadlineTimer moment(random.bounded(25));
        while (!moment.hasExpired())
            QCoreApplication::processEvents();
        const int order = int(random.bounded(4));
        if (order == 0)
            context.reset();
        else if (order == 1)
            ++f_->generation;
        else if (order == 2)
            f_->network = std::make_unique<QNetworkAccessManager>();
        QList<int> calls;
        for (const auto &outcome : std::as_const(outcomes))
            calls.append(outcome->calls);
        f_->downloads.reset();
        QCoreApplication::sendPostedEvents();
        for (int i = 0; i < outcomes.size(); ++i) {
            QVERIFY(outcomes.at(i)->calls <= 1);
            QCOMPARE(outcomes.at(i)->calls, calls.at(i));
        }
        const QDir cache(f_->root() + u"/.quillmar-cache"_s);
        for (const QString &entry : cache.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            const QStringList files = QDir(cache.filePath(entry)).entryList(QDir::Files | QDir::Hidden);
            QCOMPARE(files, QStringList({u"manifest.json"_s, u"product"_s}));
        }
        QVERIFY(!cache.exists() || QDir(f_->root()).removeRecursively());
        f_->makeDownloads();
    }
    QCOMPARE(f_->acquired().error, QString());
}

void ProductDownloadsLifetimeTest::destructorWaitsForWorkers()
{
    const QString path = f_->acquired().path;
    const auto outcome = std::make_shared<Outcome>();
    for (int i = 0; i < 20; ++i) {
        ComponentProduct product = f_->product;
        product.file_name = u"Pack.bin"_s;
        f_->downloads->materialize(product, path, std::nullopt, &f_->context, f_->completionFor(outcome));
    }
    f_->downloads.reset();
    QCOMPARE(fileContent(outputDirectory(f_->root(), f_->product) + u"/Pack.bin"_s), f_->bytes);
    finishEverything();
    QCOMPARE(outcome->calls, 0);
}

QTEST_GUILESS_MAIN(ProductDownloadsLifetimeTest)
#include "product_downloads_lifetime_test.moc"
