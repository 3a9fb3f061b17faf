#include "packages/package_cache.h"
#include "tests/unit/packages/disk_limit.h"
#include "tests/unit/packages/download_fixture.h"
#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/links.h"

#include <QDir>
#include <QTest>
#include <QTimer>

#include <optional>

using namespace quillmar;
using namespace quillmar::test;
using namespace Qt::StringLiterals;

/// Bodies that do not end where they should, and disks that do not take them.
class ProductDownloadsLimitsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void bodyBeyondItsSizeStopsEarly_data();
    void bodyBeyondItsSizeStopsEarly();
    void bodyOneByteTooLong();
    void endlessReasonStopsEarly_data();
    void endlessReasonStopsEarly();
    void wrongDigestKeepsTheOldPackage();

    void fullDisk();
    void fullDiskAndWrongDigest();
    void fileInPlaceOfTheCacheFolder();
    void linkedRoot();

private:
    std::optional<DownloadFixture> f_;
};

void ProductDownloadsLimitsTest::bodyBeyondItsSizeStopsEarly_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::newRow("honest length") << DownloadFixture::head(4'000'000'000);
    QTest::newRow("no length") << QByteArray("HTTP/1.1 200 OK\r\n\r\n");
}

void ProductDownloadsLimitsTest::bodyBeyondItsSizeStopsEarly()
{
    QFETCH(const QByteArray, head);
    qint64 sent = 0;
    bool wasDropped = false;
    QTimer feeder;
    f_->serveFile([&](const WireRequest &, WireConnection &connection) {
        connection.send(head);
        connect(&feeder, &QTimer::timeout, &feeder, [&, wire = connection]() mutable {
            static const QByteArray piece(128 * 1024, 'e');
            wasDropped = !wire.isOpen();
            if (!wasDropped && wire.bytesToWrite() < piece.size()) {
                wire.send(piece);
                sent += piece.size();
            }
        });
        feeder.start(0);
    });
    QCOMPARE(f_->acquired().error, u"Download.Failed"_s);
    QTRY_VERIFY(wasDropped);
    feeder.stop();
    QVERIFY2(sent < 32 * 1024 * 1024, qPrintable(QString::number(sent)));
    f_->expectFailureThenSuccess(u"Download.Failed"_s);
}

void ProductDownloadsLimitsTest::bodyOneByteTooLong()
{
    f_->product.sha256.clear();
    f_->serveFile(TlsService::always(TlsService::response(200, f_->bytes + '!')));
    f_->expectFailureThenSuccess(u"Download.Failed"_s);
}

void ProductDownloadsLimitsTest::endlessReasonStopsEarly_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("error");
    QTest::newRow("ticket 200") << QByteArray("download-ticket") << 200 << u"Download.Failed"_s;
    QTest::newRow("ticket 403") << QByteArray("download-ticket") << 403 << u"Status.LoginRequired"_s;
    QTest::newRow("file 429") << QByteArray("download-file") << 429 << u"Download.Failed"_s;
    QTest::newRow("file 403") << QByteArray("download-file") << 403 << u"Status.LoginRequired"_s;
}

void ProductDownloadsLimitsTest::endlessReasonStopsEarly()
{
    QFETCH(const QByteArray, route);
    QFETCH(const int, status);
    QFETCH(const QString, error);
    QTimer feeder;
    f_->service.handleRoute(route, [&](const WireRequest &, WireConnection &connection) {
        connection.send("HTTP/1.1 " + QByteArray::number(status) + " Endless\r\n\r\n");
        connect(&feeder, &QTimer::timeout, &feeder, [wire = connection]() mutable {
            static const QByteArray piece(128 * 1024, ' ');
            if (wire.isOpen() && wire.bytesToWrite() < piece.size())
                wire.send(piece);
        });
        feeder.start(0);
    });
    QCOMPARE(f_->acquired().error, error);
}

void ProductDownloadsLimitsTest::wrongDigestKeepsTheOldPackage()
{
    const QString path = f_->acquired().path;
    dropPackageRecord(f_->root(), f_->product);
    const auto before = treeBelow(f_->folder());
    QByteArray changed = f_->bytes;
    changed[0] = '!';
    f_->serveFile(TlsService::always(TlsService::response(200, changed)));
    QCOMPARE(f_->acquired().error, u"Download.Failed"_s);
    QCOMPARE(treeBelow(f_->folder()), before);
    QCOMPARE(fileContent(path), f_->bytes);
}

void ProductDownloadsLimitsTest::fullDisk()
{
    {
        const DiskLimit limit(50'000);
        QCOMPARE(f_->acquired().error, u"Download.SaveFailed"_s);
    }
    QCOMPARE(f_->events, QStringList({u"quota"_s, u"done"_s}));
    QVERIFY(treeBelow(f_->folder()).isEmpty());
    QCOMPARE(f_->acquired().error, QString());
}

void ProductDownloadsLimitsTest::fullDiskAndWrongDigest()
{
    const DiskLimit limit(50'000);
    f_->product.sha256 = QString(64, u'a');
    QCOMPARE(f_->acquired().error, u"Download.Failed"_s);
    QVERIFY(treeBelow(f_->folder()).isEmpty());
}

void ProductDownloadsLimitsTest::fileInPlaceOfTheCacheFolder()
{
    putFile(f_->root() + u"/.quillmar-cache"_s, "a file");
    QCOMPARE(f_->acquired().error, u"Download.SaveFailed"_s);
    QVERIFY(QFile::remove(f_->root() + u"/.quillmar-cache"_s));
    QCOMPARE(f_->acquired().error, QString());
}

void ProductDownloadsLimitsTest::linkedRoot()
{
    QVERIFY(QDir().mkpath(f_->folder() + u"/outside"_s));
    QVERIFY(makeLink(f_->folder() + u"/outside"_s, f_->root()));
    QCOMPARE(f_->acquired().error, u"Download.SaveFailed"_s);
    QVERIFY(treeBelow(f_->folder() + u"/outside"_s).isEmpty());
}

QTEST_GUILESS_MAIN(ProductDownloadsLimitsTest)
#include "product_downloads_limits_test.moc"
