#include "packages/product_downloads.h"

#include "packages/package_cache.h"
#include "packages/product_identity.h"
#include "service/routes.h"
#include "service/service_reply.h"
#include "tests/unit/packages/download_fixture.h"
#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/memory.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <optional>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

/// What acquire() does with a service that behaves.
class ProductDownloadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void emptyRootIsTheDownloadFolder();
    void rootIsAbsoluteAndCleaned();
    void withoutTokenCompletesAtOnce();
    void invalidProductCompletesAtOnce();
    void signedOutComesBeforeInvalid();
    void deliversTheVerifiedPackage();
    void requestsOnTheWire();
    void tokenOutsideAsciiIsSentAsUtf8();
    void ticketOutsideAsciiIsSentAsUtf8();
    void tokenIsReadWhenTheRequestIsBuilt();
    void cachedPackageNeedsNoRequest();
    void damagedCacheIsDownloadedAgain();
    void emptyDigestAndUnknownSizeAreFine();
    void chunkedBodyIsFine();
    void quotaIsReportedBeforeTheCompletion();
    void twoPanelsShareOneDownload();
    void aThousandRequestsShareOneDownload();
    void waitersAreCalledInTheirOrder();
    void differentPackagesAreSeparate();
    void packageGoesToDiskWhileItArrives();
    void largePackageNeedsLittleMemory();
    void busyWorkersSlowTheTransferDown();
    void stuckDownloadsLeaveAConnectionToOthers();
    void waitingDownloadsGetTheirTurn();

private:
    std::optional<DownloadFixture> f_;
};

namespace
{

#ifdef __SANITIZE_ADDRESS__
constexpr qint64 kMaxGrowth = 1024LL * 1024 * 1024; ///< the sanitizer keeps what was freed
#else
constexpr qint64 kMaxGrowth = 32LL * 1024 * 1024;
#endif

/// Keeps a connection filled with `left` more bytes, without ever holding many.
void feed(QObject *context, const WireConnection &connection, qint64 left)
{
    auto *timer = new QTimer(context);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, wire = connection, left]() mutable {
        static const QByteArray piece(256 * 1024, 'm');
        while (left > 0 && wire.isOpen() && wire.bytesToWrite() < 4 * piece.size()) {
            wire.send(piece.first(std::min<qint64>(left, piece.size())));
            left -= std::min<qint64>(left, piece.size());
        }
        if (left == 0 || !wire.isOpen())
            timer->deleteLater();
    });
    timer->start(0);
}

} // namespace

void ProductDownloadsTest::emptyRootIsTheDownloadFolder()
{
    const ProductDownloads downloads(f_->network.get(), {});
    QCOMPARE(downloads.root(),
             QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation)) +
                 u"/Quillmar"_s);
}

void ProductDownloadsTest::rootIsAbsoluteAndCleaned()
{
    const ProductDownloads messy(f_->network.get(), f_->folder() + u"//a/./b/../c/"_s);
    QCOMPARE(messy.root(), f_->folder() + u"/a/c"_s);
    const ProductDownloads relative(f_->network.get(), u"packages"_s);
    QCOMPARE(relative.root(), QDir::currentPath() + u"/packages"_s);
}

void ProductDownloadsTest::withoutTokenCompletesAtOnce()
{
    f_->token.clear();
    const auto outcome = f_->acquire();
    QCOMPARE(outcome->calls, 1);
    QCOMPARE(outcome->result.error, u"Status.LoginRequired"_s);
    QCOMPARE(f_->service.requests().size(), 0);
    QCOMPARE(f_->events, QStringList{u"done"_s});
}

void ProductDownloadsTest::invalidProductCompletesAtOnce()
{
    f_->product.product_version.clear();
    const auto outcome = f_->acquire();
    QCOMPARE(outcome->calls, 1);
    QCOMPARE(outcome->result.error, u"Component.InvalidMetadata"_s);
    QCOMPARE(f_->service.requests().size(), 0);
}

void ProductDownloadsTest::signedOutComesBeforeInvalid()
{
    f_->token.clear();
    f_->product.product_key = u"../x"_s;
    QCOMPARE(f_->acquire()->result.error, u"Status.LoginRequired"_s);
}

void ProductDownloadsTest::deliversTheVerifiedPackage()
{
    const ProductFileResult result = f_->acquired();
    QCOMPARE(result.error, QString());
    QCOMPARE(result.path, cachedPackagePath(f_->root(), f_->product));
    QCOMPARE(fileContent(result.path), f_->bytes);
    QCOMPARE(findCachedPackage(f_->root(), f_->product), result.path);
}

void ProductDownloadsTest::requestsOnTheWire()
{
    QVERIFY(f_->acquired().isOk());
    const WireRequest ticket = f_->lastRequest("download-ticket");
    QCOMPARE(ticket.method, "POST");
    QCOMPARE(ticket.target, "/wp-json/quillmar/v1/download-ticket");
    QCOMPARE(ticket.header("authorization"), "Bearer token");
    QCOMPARE(ticket.header("content-type"), "application/json");
    const QJsonObject body{{u"product_key"_s, u"pack"_s}};
    QCOMPARE(ticket.body, QJsonDocument(body).toJson(QJsonDocument::Indented));

    const WireRequest file = f_->lastRequest("download-file");
    QCOMPARE(file.method, "POST");
    QCOMPARE(file.target, "/wp-json/quillmar/v1/download-file");
    QCOMPARE(file.header("x-quillmar-ticket"), "ticket-1");
    QVERIFY(!file.hasHeader("authorization"));
    QVERIFY(!file.hasHeader("content-type"));
    QCOMPARE(file.header("accept-encoding"), "identity");
    QVERIFY(file.body.isEmpty());
    QCOMPARE(f_->service.requests().size(), 2);
}

void ProductDownloadsTest::tokenOutsideAsciiIsSentAsUtf8()
{
    f_->token = u"نشانه-😀"_s;
    QVERIFY(f_->acquired().isOk());
    QCOMPARE(f_->lastRequest("download-ticket").header("authorization"), "Bearer " + f_->token.toUtf8());
}

void ProductDownloadsTest::ticketOutsideAsciiIsSentAsUtf8()
{
    f_->serveTicket(TlsService::always(DownloadFixture::goodTicket(u"بلیت-é"_s)));
    QVERIFY(f_->acquired().isOk());
    QCOMPARE(f_->lastRequest("download-file").header("x-quillmar-ticket"), u"بلیت-é"_s.toUtf8());
}

void ProductDownloadsTest::tokenIsReadWhenTheRequestIsBuilt()
{
    const auto outcome = f_->acquire();
    f_->token = u"fresh"_s;
    QTRY_COMPARE(outcome->calls, 1);
    QCOMPARE(f_->lastRequest("download-ticket").header("authorization"), "Bearer fresh");
}

void ProductDownloadsTest::cachedPackageNeedsNoRequest()
{
    const QString path = f_->acquired().path;
    const qsizetype requests = f_->service.requests().size();
    f_->events.clear();
    f_->makeDownloads();
    QCOMPARE(f_->acquired().path, path);
    QCOMPARE(f_->service.requests().size(), requests);
    QCOMPARE(f_->events, QStringList{u"done"_s});
}

void ProductDownloadsTest::damagedCacheIsDownloadedAgain()
{
    const QString path = f_->acquired().path;
    putFile(path, "damaged");
    QCOMPARE(f_->acquired().path, path);
    QCOMPARE(f_->files(), 2);
    QCOMPARE(fileContent(path), f_->bytes);
}

void ProductDownloadsTest::emptyDigestAndUnknownSizeAreFine()
{
    f_->product.sha256.clear();
    f_->product.file_size = 0;
    const ProductFileResult result = f_->acquired();
    QCOMPARE(result.error, QString());
    QCOMPARE(fileContent(result.path), f_->bytes);
}

void ProductDownloadsTest::chunkedBodyIsFine()
{
    f_->serveFile([this](const WireRequest &, WireConnection &connection) {
        connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
        for (qsizetype at = 0; at < f_->bytes.size(); at += 12'000)
            connection.send("2ee0\r\n" + f_->bytes.sliced(at, 12'000) + "\r\n");
        connection.send("0\r\n\r\n");
    });
    QCOMPARE(f_->acquired().error, QString());
}

void ProductDownloadsTest::quotaIsReportedBeforeTheCompletion()
{
    bool wasStored = true;
    f_->onQuota = [this, &wasStored] { wasStored = !findCachedPackage(f_->root(), f_->product).isEmpty(); };
    QVERIFY(f_->acquired().isOk());
    QCOMPARE(f_->events, QStringList({u"quota"_s, u"done"_s}));
    QVERIFY(!wasStored);
}

void ProductDownloadsTest::twoPanelsShareOneDownload()
{
    const auto one = f_->acquire();
    const auto other = f_->acquire();
    QTRY_COMPARE(one->calls, 1);
    QCOMPARE(other->calls, 1);
    QCOMPARE(one->result.path, cachedPackagePath(f_->root(), f_->product));
    QCOMPARE(other->result.path, one->result.path);
    QCOMPARE(f_->tickets(), 1);
    QCOMPARE(f_->files(), 1);
    QCOMPARE(f_->events.count(u"quota"_s), 1);
}

void ProductDownloadsTest::aThousandRequestsShareOneDownload()
{
    QList<std::shared_ptr<Outcome>> outcomes;
    for (int i = 0; i < 1000; ++i)
        outcomes.append(f_->acquire());
    QTRY_COMPARE(outcomes.last()->calls, 1);
    for (const auto &outcome : std::as_const(outcomes)) {
        QCOMPARE(outcome->calls, 1);
        QVERIFY(outcome->result.isOk());
    }
    QCOMPARE(f_->service.requests().size(), 2);
}

void ProductDownloadsTest::waitersAreCalledInTheirOrder()
{
    QStringList order;
    for (const QString &name : {u"first"_s, u"second"_s, u"third"_s})
        f_->downloads->acquire(f_->product, &f_->context,
                               [&order, name](const ProductFileResult &) { order.append(name); });
    QTRY_COMPARE(order, QStringList({u"first"_s, u"second"_s, u"third"_s}));
}

void ProductDownloadsTest::differentPackagesAreSeparate()
{
    const auto one = f_->acquire();
    const auto other = f_->acquire(f_->otherProduct(2));
    QTRY_VERIFY(one->calls == 1 && other->calls == 1);
    QVERIFY(one->result.isOk() && other->result.isOk());
    QVERIFY(one->result.path != other->result.path);
    QCOMPARE(f_->tickets(), 2);
    QCOMPARE(f_->files(), 2);
}

void ProductDownloadsTest::packageGoesToDiskWhileItArrives()
{
    std::optional<WireConnection> wire;
    const qsizetype half = f_->bytes.size() / 2;
    f_->serveFile([this, &wire, half](const WireRequest &, WireConnection &connection) {
        wire = connection;
        connection.send(DownloadFixture::head(f_->bytes.size()) + f_->bytes.first(half));
    });
    const auto outcome = f_->acquire();
    const QString folder = cacheDirectory(f_->root(), f_->product);
    QTRY_VERIFY(QFileInfo::exists(folder));
    QVERIFY(!QFileInfo::exists(folder + u"/product"_s));
    QCOMPARE(outcome->calls, 0);
    wire->send(f_->bytes.sliced(half));
    QTRY_COMPARE(outcome->calls, 1);
    QVERIFY(outcome->result.isOk());
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden),
             QStringList({u"manifest.json"_s, u"product"_s}));
}

void ProductDownloadsTest::largePackageNeedsLittleMemory()
{
    constexpr qint64 length = 192LL * 1024 * 1024;
    QVERIFY(f_->acquired().isOk());
    f_->product = f_->otherProduct(2);
    f_->product.file_size = length;
    f_->product.sha256.clear();
    f_->serveFile([this](const WireRequest &, WireConnection &connection) {
        connection.send(DownloadFixture::head(length));
        feed(&f_->context, connection, length);
    });
    const qint64 before = peakMemory();
    const ProductFileResult result = f_->acquired();
    QCOMPARE(result.error, QString());
    QCOMPARE(QFileInfo(result.path).size(), length);
    const qint64 grown = peakMemory() - before;
    QVERIFY2(grown < kMaxGrowth, qPrintable(QString::number(grown)));
}

/// Both workers look two huge packages up while the body comes, so that nothing of it can be written.
void ProductDownloadsTest::busyWorkersSlowTheTransferDown()
{
    constexpr qint64 length = 160LL * 1024 * 1024;
    constexpr qint64 hugeSize = 3LL * 1024 * 1024 * 1024;
    QList<ComponentProduct> hugeOnes{f_->otherProduct(1), f_->otherProduct(2)};
    for (ComponentProduct &huge : hugeOnes) {
        huge.file_size = 0;
        putFile(cachedPackagePath(f_->root(), huge), {});
        QVERIFY(QFile::resize(cachedPackagePath(f_->root(), huge), hugeSize));
        QVERIFY(writePackageRecord(f_->root(), huge, hugeSize, QByteArray(64, '0')));
    }
    f_->product.file_size = length;
    f_->product.sha256.clear();
    f_->serveFile([this, hugeOnes](const WireRequest &, WireConnection &connection) {
        for (const ComponentProduct &huge : hugeOnes)
            f_->acquire(huge);
        connection.send(DownloadFixture::head(length));
        feed(&f_->context, connection, length);
        f_->serveFile(TlsService::always(TlsService::json(500, {})));
    });
    const qint64 before = peakMemory();
    QCOMPARE(f_->acquired().error, QString());
    const qint64 grown = peakMemory() - before;
    QVERIFY2(grown < kMaxGrowth, qPrintable(QString::number(grown)));
}

void ProductDownloadsTest::stuckDownloadsLeaveAConnectionToOthers()
{
    f_->serveFile([](const WireRequest &, WireConnection &connection) {
        connection.send(DownloadFixture::head(1000) + "stuck");
    });
    f_->service.handleRoute("download-quota", TlsService::always(TlsService::json(200, {})));
    for (int i = 0; i < 10; ++i)
        f_->acquire(f_->otherProduct(i));
    QTRY_COMPARE(f_->files(), 4);
    QNetworkReply *quota = f_->network->get(routes::downloadQuota(f_->token));
    QTRY_VERIFY(quota->isFinished());
    QCOMPARE(httpStatus(*quota), 200);
    quota->deleteLater();
    QCOMPARE(f_->files(), 4);
}

void ProductDownloadsTest::waitingDownloadsGetTheirTurn()
{
    QList<std::shared_ptr<Outcome>> outcomes;
    for (int i = 0; i < 12; ++i)
        outcomes.append(f_->acquire(f_->otherProduct(i)));
    for (const auto &outcome : std::as_const(outcomes)) {
        QTRY_COMPARE(outcome->calls, 1);
        QCOMPARE(outcome->result.error, QString());
    }
    QCOMPARE(f_->files(), 12);
}

QTEST_GUILESS_MAIN(ProductDownloadsTest)
#include "product_downloads_test.moc"
