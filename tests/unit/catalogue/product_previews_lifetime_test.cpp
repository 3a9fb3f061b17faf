#include "catalogue/product_previews.h"
#include "tests/unit/catalogue/picture_samples.h"
#include "tests/unit/catalogue/preview_fixture.h"

#include <QDeadlineTimer>
#include <QEvent>
#include <QRandomGenerator>
#include <QTest>

#include <functional>
#include <limits>
#include <memory>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// Where on its way a picture is.
enum class Stage { Queued, Fetching, Arriving, Decoding };

/// Counts the queued calls of an object as they come, and runs `onCall` before each.
///
/// The first that a loader gets for a picture begins to decode it, the second completes it.
class QueuedCalls : public QObject
{
public:
    explicit QueuedCalls(QObject *object) { object->installEventFilter(this); }

    int count = 0;
    std::function<void()> onCall = [] {};

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::MetaCall) {
            ++count;
            onCall();
        }
        return false;
    }
};

} // namespace

/// Receivers and loaders that go away, and completions that do more than look at the picture.
class ProductPreviewsLifetimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void receiverGone_data() { addStages(); }
    void receiverGone();
    void receiverGoneDoesNotFallBack();
    void pictureOfAGoneReceiverIsKept();
    void loaderGone_data() { addStages(); }
    void loaderGone();
    void loaderGoneWithItsParent();
    void receiversGoneAtAnyTime();
    void loaderGoneAtAnyTime();
    void completionThatDestroysTheReceiver_data() { addMoments(); }
    void completionThatDestroysTheReceiver();
    void completionThatDestroysAnotherReceiver();
    void completionThatDestroysTheLoader_data() { addMoments(); }
    void completionThatDestroysTheLoader();
    void completionThatRequestsAgain_data() { addMoments(); }
    void completionThatRequestsAgain();

private:
    static void addStages();
    static void addMoments();
    PreviewEntry entryAt(const QByteArray &moment);
    std::shared_ptr<Outcome> reach(Stage stage, QObject *receiver);
    void finishEverything();
    ProductPreviews::Completion completionFor(const std::shared_ptr<Outcome> &outcome) const;

    QByteArray small_ = TlsService::response(200, encoded(quarteredPicture(), "png"));
    QByteArray large_ = TlsService::response(200, encoded(plainPicture({2400, 2400}), "png", 50));
    std::unique_ptr<TlsService> service_;
    std::unique_ptr<ProductPreviews> previews_;
    std::unique_ptr<QObject> receiver_;
    QList<WireConnection> held_;
    int fillers_ = 0; ///< requests that only fill the queue and are still waiting
};

void ProductPreviewsLifetimeTest::init()
{
    service_ = std::make_unique<TlsService>();
    previews_ = std::make_unique<ProductPreviews>();
    receiver_ = std::make_unique<QObject>();
    held_.clear();
    fillers_ = 0;
    service_->handle("/small", TlsService::always(small_));
    service_->handle("/large", TlsService::always(large_));
    service_->handle("/none", TlsService::always(TlsService::response(404, "no")));
    service_->handle("/held", hold(held_));
}

void ProductPreviewsLifetimeTest::cleanup()
{
    previews_.reset();
    service_.reset();
}

void ProductPreviewsLifetimeTest::addStages()
{
    QTest::addColumn<Stage>("stage");
    QTest::newRow("queued") << Stage::Queued;
    QTest::newRow("fetching") << Stage::Fetching;
    QTest::newRow("arriving") << Stage::Arriving;
    QTest::newRow("decoding") << Stage::Decoding;
}

/// The moments at which a completion is called.
void ProductPreviewsLifetimeTest::addMoments()
{
    QTest::addColumn<QByteArray>("moment");
    for (const char *moment : {"picture", "failure", "refused address", "kept picture", "full queue"})
        QTest::newRow(moment) << QByteArray(moment);
}

ProductPreviews::Completion
ProductPreviewsLifetimeTest::completionFor(const std::shared_ptr<Outcome> &outcome) const
{
    return [outcome](const QImage &image) {
        ++outcome->calls;
        outcome->image = image;
    };
}

/// An entry whose request ends in that way.
PreviewEntry ProductPreviewsLifetimeTest::entryAt(const QByteArray &moment)
{
    if (moment == "failure")
        return entryFor(u"/none"_s);
    if (moment == "refused address")
        return {};
    if (moment == "kept picture") {
        const auto outcome = std::make_shared<Outcome>();
        previews_->request(entryFor(u"/small"_s), this, completionFor(outcome));
        if (!QTest::qWaitFor([&outcome] { return outcome->calls == 1; }, LongDeadlineMs))
            qWarning("the picture did not come");
    }
    if (moment == "full queue") {
        fillers_ = 2 + 128;
        for (int i = 0; i < 2 + 128; ++i)
            previews_->request(entryFor(u"/held"_s), this, [this](const QImage &) { --fillers_; });
        if (!QTest::qWaitFor([this] { return held_.size() == 2; }, LongDeadlineMs))
            qWarning("the requests did not come");
    }
    return entryFor(u"/small"_s);
}

std::shared_ptr<Outcome> ProductPreviewsLifetimeTest::reach(Stage stage, QObject *receiver)
{
    const auto outcome = std::make_shared<Outcome>();
    const QueuedCalls calls(previews_.get());
    if (stage == Stage::Queued) {
        for (int i = 0; i < 2; ++i)
            previews_->request(entryFor(u"/held"_s), this, [](const QImage &) {});
    } else if (stage == Stage::Arriving) {
        service_->handle("/large", [this](const WireRequest &, WireConnection &connection) {
            held_.append(connection);
            connection.send(large_.first(large_.size() / 2));
        });
    }
    const bool isHeld = stage == Stage::Queued || stage == Stage::Fetching;
    previews_->request(entryFor(isHeld ? u"/held"_s : u"/large"_s), receiver, completionFor(outcome));
    const auto isReached = [&] {
        if (stage == Stage::Decoding)
            return calls.count > 0;
        return held_.size() == (stage == Stage::Queued ? 2 : 1);
    };
    if (!QTest::qWaitFor(isReached, LongDeadlineMs))
        outcome->calls = -1;
    return outcome;
}

/// Lets whatever is on its way come to its end: another picture is asked for after it.
void ProductPreviewsLifetimeTest::finishEverything()
{
    service_->handle("/held", TlsService::always(small_));
    for (WireConnection &wire : held_)
        wire.send(small_);
    if (!previews_) {
        previews_ = std::make_unique<ProductPreviews>();
        fillers_ = 0;
    }
    QTRY_COMPARE_WITH_TIMEOUT(fillers_, 0, LongDeadlineMs);
    for (int i = 0; i < 2; ++i) {
        const auto outcome = std::make_shared<Outcome>();
        PreviewEntry entry = entryFor(u"/small"_s);
        entry.revision = u"last %1"_s.arg(i);
        previews_->request(entry, this, completionFor(outcome));
        QTRY_COMPARE_WITH_TIMEOUT(outcome->calls, 1, LongDeadlineMs);
        QCOMPARE(quartersOf(outcome->image), "RGBW");
    }
}

void ProductPreviewsLifetimeTest::receiverGone()
{
    QFETCH(const Stage, stage);
    const auto outcome = reach(stage, receiver_.get());
    receiver_.reset();
    const int calls = outcome->calls;
    QVERIFY(calls >= 0);
    if (stage == Stage::Arriving)
        held_.first().send(large_.sliced(large_.size() / 2));
    held_ = stage == Stage::Arriving ? QList<WireConnection>() : held_;
    finishEverything();
    QCOMPARE(outcome->calls, calls);
    if (stage != Stage::Decoding)
        QCOMPARE(calls, 0);
}

void ProductPreviewsLifetimeTest::receiverGoneDoesNotFallBack()
{
    const auto outcome = std::make_shared<Outcome>();
    previews_->request(entryFor(u"/held"_s, u"/small"_s), receiver_.get(), completionFor(outcome));
    QTRY_COMPARE(held_.size(), 1);
    receiver_.reset();
    held_.first().send(TlsService::response(404, "no"));
    held_.clear();
    const qsizetype before = service_->requests().size();
    finishEverything();
    QCOMPARE(service_->requests().size(), before + 2);
    QCOMPARE(outcome->calls, 0);
}

/// The receiver dies while its picture is decoded; that is not lost work.
void ProductPreviewsLifetimeTest::pictureOfAGoneReceiverIsKept()
{
    QueuedCalls calls(previews_.get());
    calls.onCall = [this, &calls] {
        if (calls.count == 2)
            receiver_.reset();
    };
    const auto outcome = std::make_shared<Outcome>();
    previews_->request(entryFor(u"/large"_s), receiver_.get(), completionFor(outcome));
    QTRY_COMPARE_WITH_TIMEOUT(calls.count, 2, LongDeadlineMs);
    QVERIFY(!receiver_);
    QCOMPARE(outcome->calls, 0);
    previews_->request(entryFor(u"/large"_s), this, completionFor(outcome));
    QCOMPARE(outcome->calls, 1);
    QCOMPARE(outcome->image.size(), QSize(1200, 1200));
    QCOMPARE(service_->requests().size(), 1);
}

void ProductPreviewsLifetimeTest::loaderGone()
{
    QFETCH(const Stage, stage);
    const auto outcome = reach(stage, receiver_.get());
    const int calls = outcome->calls;
    QVERIFY(calls >= 0);
    previews_.reset();
    for (const WireConnection &wire : std::as_const(held_))
        QTRY_VERIFY(!wire.isOpen());
    held_.clear();
    finishEverything();
    QCOMPARE(outcome->calls, calls);
}

void ProductPreviewsLifetimeTest::loaderGoneWithItsParent()
{
    auto parent = std::make_unique<QObject>();
    const QPointer<ProductPreviews> loader = new ProductPreviews(parent.get());
    const auto outcome = std::make_shared<Outcome>();
    loader->request(entryFor(u"/held"_s), parent.get(), completionFor(outcome));
    QTRY_COMPARE(held_.size(), 1);
    parent.reset();
    QVERIFY(loader.isNull());
    finishEverything();
    QCOMPARE(outcome->calls, 0);
}

void ProductPreviewsLifetimeTest::receiversGoneAtAnyTime()
{
    QRandomGenerator random(4711);
    int completed = 0;
    for (int round = 0; round < 1000; ++round) {
        auto receiver = std::make_unique<QObject>();
        const QObject *alive = receiver.get();
        for (int i = 0; i < 3; ++i) {
            PreviewEntry entry = entryFor(u"/small"_s, u"/none"_s);
            entry.revision = u"%1 %2"_s.arg(round).arg(i);
            previews_->request(entry, receiver.get(), [&alive, &completed](const QImage &) {
                QVERIFY(alive != nullptr);
                ++completed;
            });
        }
        // However slow the machine is, some die between two of their pictures.
        const int enough = round % 20 == 0 ? completed + 1 : std::numeric_limits<int>::max();
        const QDeadlineTimer moment(round % 20 == 0 ? LongDeadlineMs : int(random.bounded(8)));
        while (!moment.hasExpired() && completed < enough)
            QCoreApplication::processEvents();
        alive = nullptr;
        receiver.reset();
        if (round % 10 == 0)
            finishEverything();
    }
    QVERIFY(completed >= 1000 / 20);
}

void ProductPreviewsLifetimeTest::loaderGoneAtAnyTime()
{
    QRandomGenerator random(4712);
    for (int round = 0; round < 150; ++round) {
        ProductPreviews *loader = previews_.get();
        int calls = 0;
        for (int i = 0; i < 5; ++i) {
            PreviewEntry entry = entryFor(i % 2 == 0 ? u"/large"_s : u"/none"_s, u"/small"_s);
            entry.revision = QString::number(i);
            loader->request(entry, this, [&calls](const QImage &) { ++calls; });
        }
        const QDeadlineTimer moment(random.bounded(60));
        while (!moment.hasExpired())
            QCoreApplication::processEvents();
        previews_.reset();
        const int before = calls;
        QCoreApplication::processEvents();
        QCOMPARE(calls, before);
        previews_ = std::make_unique<ProductPreviews>();
    }
    finishEverything();
}

void ProductPreviewsLifetimeTest::completionThatDestroysTheReceiver()
{
    QFETCH(const QByteArray, moment);
    const PreviewEntry entry = entryAt(moment);
    int calls = 0;
    previews_->request(entry, receiver_.get(), [this, &calls](const QImage &) {
        ++calls;
        receiver_.reset();
    });
    QTRY_COMPARE(calls, 1);
    QVERIFY(!receiver_);
    finishEverything();
    QCOMPARE(calls, 1);
}

void ProductPreviewsLifetimeTest::completionThatDestroysAnotherReceiver()
{
    const auto outcome = std::make_shared<Outcome>();
    for (int i = 0; i < 20; ++i) {
        PreviewEntry entry = entryFor(u"/small"_s);
        entry.revision = QString::number(i);
        if (i == 0)
            previews_->request(entry, this, [this](const QImage &) { receiver_.reset(); });
        else if (i > 1)
            previews_->request(entry, receiver_.get(), completionFor(outcome));
    }
    QTRY_VERIFY(!receiver_);
    const int calls = outcome->calls;
    finishEverything();
    QCOMPARE(outcome->calls, calls);
    QVERIFY(calls <= 2);
}

void ProductPreviewsLifetimeTest::completionThatDestroysTheLoader()
{
    QFETCH(const QByteArray, moment);
    const PreviewEntry entry = entryAt(moment);
    int calls = 0;
    previews_->request(entry, receiver_.get(), [this, &calls](const QImage &) {
        ++calls;
        previews_.reset();
    });
    QTRY_COMPARE(calls, 1);
    QVERIFY(!previews_);
    finishEverything();
    QCOMPARE(calls, 1);
}

void ProductPreviewsLifetimeTest::completionThatRequestsAgain()
{
    QFETCH(const QByteArray, moment);
    const PreviewEntry entry = entryAt(moment);
    int calls = 0;
    std::function<void(const QImage &)> again = [&](const QImage &) {
        if (++calls < 10)
            previews_->request(entry, receiver_.get(), again);
    };
    previews_->request(entry, receiver_.get(), again);
    QTRY_COMPARE(calls, 10);
    finishEverything();
    QCOMPARE(calls, 10);
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::ProductPreviewsLifetimeTest)
#include "product_previews_lifetime_test.moc"
