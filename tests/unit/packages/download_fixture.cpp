#include "tests/unit/packages/download_fixture.h"

#include "tests/unit/packages/file_tree.h"
#include "tests/unit/packages/package_fixture.h"

#include <QJsonObject>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr int kDeadlineMs = 120'000;

} // namespace

DownloadFixture::DownloadFixture() : network(std::make_unique<QNetworkAccessManager>())
{
    product.product_key = u"pack"_s;
    product.product_version = u"1.0"_s;
    product.file_name = u"Pack.bin"_s;
    setPackage(QByteArray("the package ").repeated(10'000));
    serveGood();
    makeDownloads();
}

DownloadFixture::~DownloadFixture() = default;

void DownloadFixture::makeDownloads()
{
    downloads = std::make_unique<ProductDownloads>(network.get(), root());
    downloads->setCallbacks({.token = [this] { return token; },
                             .generation = [this] { return generation; },
                             .sessionExpired =
                                 [this] {
                                     events.append(u"expired"_s);
                                     if (onExpired)
                                         onExpired();
                                 },
                             .quotaChanged =
                                 [this] {
                                     events.append(u"quota"_s);
                                     if (onQuota)
                                         onQuota();
                                 }});
}

void DownloadFixture::setPackage(const QByteArray &package)
{
    bytes = package;
    product.file_size = package.size();
    product.sha256 = digestOf(package);
}

ComponentProduct DownloadFixture::otherProduct(int number) const
{
    ComponentProduct other = product;
    other.product_key = u"pack-%1"_s.arg(number);
    return other;
}

void DownloadFixture::serveGood()
{
    serveTicket(TlsService::always(goodTicket()));
    serveFile([this](const WireRequest &, WireConnection &connection) {
        connection.send(TlsService::response(200, bytes, "application/octet-stream"));
    });
}

WireRequest DownloadFixture::lastRequest(const QByteArray &route) const
{
    const QByteArray ending = '/' + route;
    WireRequest last;
    for (const WireRequest &request : service.requests()) {
        if (request.target.endsWith(ending))
            last = request;
    }
    return last;
}

std::shared_ptr<Outcome> DownloadFixture::acquire(const ComponentProduct &what)
{
    auto outcome = std::make_shared<Outcome>();
    downloads->acquire(what, &context, completionFor(outcome));
    return outcome;
}

ProductDownloads::Completion DownloadFixture::completionFor(const std::shared_ptr<Outcome> &outcome)
{
    return [this, outcome](const ProductFileResult &result) {
        events.append(u"done"_s);
        ++outcome->calls;
        outcome->result = result;
    };
}

ProductFileResult DownloadFixture::acquired()
{
    const auto outcome = acquire();
    if (!QTest::qWaitFor([&outcome] { return outcome->calls > 0; }, kDeadlineMs))
        return ProductFileResult::failure(u"never completed"_s);
    return outcome->result;
}

bool DownloadFixture::isFolderEmpty() const
{
    return QDir(folder()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

void DownloadFixture::expectFailureThenSuccess(const QString &error)
{
    const ProductFileResult result = acquired();
    QCOMPARE(result.error, error);
    QVERIFY(result.path.isEmpty());
    QTRY_VERIFY2(isFolderEmpty(), "something was left behind");
    serveGood();
    QCOMPARE(acquired().error, QString());
}

void DownloadFixture::finishEverything()
{
    serveGood();
    if (!network) {
        network = std::make_unique<QNetworkAccessManager>();
        downloads.reset();
    }
    if (!downloads)
        makeDownloads();
    const auto outcome = acquire(otherProduct(99));
    QTRY_COMPARE(outcome->calls, 1);
    QCOMPARE(outcome->result.error, QString());
}

QByteArray DownloadFixture::head(qint64 length)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\nContent-Length: " +
           QByteArray::number(length) + "\r\n\r\n";
}

QByteArray DownloadFixture::goodTicket(const QString &ticket)
{
    return TlsService::json(200, {{u"ticket"_s, ticket}});
}

} // namespace quillmar::test
