#include "packages/package_cache.h"
#include "tests/unit/packages/download_fixture.h"
#include "tests/unit/packages/file_tree.h"

#include <QJsonObject>
#include <QTest>

#include <optional>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

/// Completions and handlers that come straight back, end the session or delete who called them.
class ProductDownloadsReentrancyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void completionMayAcquireAgain();
    void failedCompletionMayAcquireAgain();
    void completionMaySignOut();
    void completionMayDeleteAnotherContext();
    void completionMayDeleteTheOwner_data();
    void completionMayDeleteTheOwner();
    void quotaHandlerMayDeleteTheOwner();
    void quotaHandlerMaySignOut();
    void expiredHandlerMayDeleteTheOwner();

private:
    std::optional<DownloadFixture> f_;
};

void ProductDownloadsReentrancyTest::completionMayAcquireAgain()
{
    const auto second = std::make_shared<Outcome>();
    f_->downloads->acquire(f_->product, &f_->context, [&](const ProductFileResult &) {
        f_->downloads->acquire(f_->product, &f_->context, f_->completionFor(second));
    });
    const auto third = f_->acquire();
    QTRY_COMPARE(second->calls, 1);
    QVERIFY(second->result.isOk());
    QCOMPARE(third->calls, 1);
    QCOMPARE(f_->tickets(), 1);
}

void ProductDownloadsReentrancyTest::failedCompletionMayAcquireAgain()
{
    f_->serveTicket(TlsService::always(TlsService::json(500, {})));
    const auto second = std::make_shared<Outcome>();
    f_->downloads->acquire(f_->product, &f_->context, [&](const ProductFileResult &result) {
        QCOMPARE(result.error, u"Download.Failed"_s);
        f_->serveGood();
        f_->downloads->acquire(f_->product, &f_->context, f_->completionFor(second));
    });
    QTRY_COMPARE(second->calls, 1);
    QVERIFY(second->result.isOk());
    QCOMPARE(f_->tickets(), 2);
}

void ProductDownloadsReentrancyTest::completionMaySignOut()
{
    f_->downloads->acquire(f_->product, &f_->context, [this](const ProductFileResult &) {
        ++f_->generation;
        f_->token.clear();
    });
    const auto later = f_->acquire();
    QTRY_VERIFY(f_->token.isEmpty());
    f_->token = u"token"_s;
    f_->finishEverything();
    QCOMPARE(later->calls, 0);
}

void ProductDownloadsReentrancyTest::completionMayDeleteAnotherContext()
{
    auto other = std::make_unique<QObject>();
    f_->downloads->acquire(f_->product, &f_->context, [&other](const ProductFileResult &) { other.reset(); });
    const auto gone = std::make_shared<Outcome>();
    f_->downloads->acquire(f_->product, other.get(), f_->completionFor(gone));
    const auto last = f_->acquire();
    QTRY_COMPARE(last->calls, 1);
    QCOMPARE(gone->calls, 0);
}

void ProductDownloadsReentrancyTest::completionMayDeleteTheOwner_data()
{
    QTest::addColumn<QByteArray>("ticket");
    QTest::newRow("success") << DownloadFixture::goodTicket();
    QTest::newRow("failure") << TlsService::json(500, {});
    QTest::newRow("refused") << TlsService::json(401, {});
    QTest::newRow("quota") << TlsService::json(429, {{u"code"_s, u"download_quota_reached"_s}});
}

void ProductDownloadsReentrancyTest::completionMayDeleteTheOwner()
{
    QFETCH(const QByteArray, ticket);
    f_->serveTicket(TlsService::always(ticket));
    f_->downloads->acquire(f_->product, &f_->context,
                           [this](const ProductFileResult &) { f_->downloads.reset(); });
    const auto later = f_->acquire();
    QTRY_VERIFY(!f_->downloads);
    f_->events.removeAll(u"quota"_s);
    f_->finishEverything();
    QCOMPARE(later->calls, 0);
    QCOMPARE(f_->events, QStringList({u"quota"_s, u"done"_s}));
}

void ProductDownloadsReentrancyTest::quotaHandlerMayDeleteTheOwner()
{
    f_->onQuota = [this] { f_->downloads.reset(); };
    const auto outcome = f_->acquire();
    QTRY_VERIFY(!f_->downloads);
    f_->onQuota = {};
    QVERIFY(treeBelow(f_->folder()).isEmpty());
    f_->finishEverything();
    QCOMPARE(outcome->calls, 0);
}

void ProductDownloadsReentrancyTest::quotaHandlerMaySignOut()
{
    f_->onQuota = [this] { ++f_->generation; };
    const auto outcome = f_->acquire();
    QTRY_VERIFY(!findCachedPackage(f_->root(), f_->product).isEmpty());
    f_->onQuota = {};
    f_->finishEverything();
    QCOMPARE(outcome->calls, 0);
    const qsizetype tickets = f_->tickets();
    QCOMPARE(f_->acquired().error, QString());
    QCOMPARE(f_->tickets(), tickets);
}

void ProductDownloadsReentrancyTest::expiredHandlerMayDeleteTheOwner()
{
    f_->serveFile(TlsService::always(TlsService::json(403, {})));
    f_->onExpired = [this] { f_->downloads.reset(); };
    const auto outcome = f_->acquire();
    QTRY_VERIFY(!f_->downloads);
    QCOMPARE(outcome->calls, 1);
    QCOMPARE(outcome->result.error, u"Status.LoginRequired"_s);
    f_->onExpired = {};
    f_->finishEverything();
    QCOMPARE(outcome->calls, 1);
}

QTEST_GUILESS_MAIN(ProductDownloadsReentrancyTest)
#include "product_downloads_reentrancy_test.moc"
