#pragma once

#include "packages/product_downloads.h"
#include "tests/support/tls_service/tls_service.h"

#include <QList>
#include <QNetworkAccessManager>
#include <QTemporaryDir>

#include <memory>

namespace quillmar::test
{

/// What became of one acquire() or materialize().
struct Outcome {
    int calls = 0;
    ProductFileResult result;
};

/// A service, a session, an empty package root and the downloads between them. The service delivers the
/// package of `product` until a test tells it otherwise.
class DownloadFixture
{
public:
    DownloadFixture();
    ~DownloadFixture();

    ComponentProduct product;
    QByteArray bytes; ///< the package

    QString token = QStringLiteral("token");
    quint64 generation = 1;
    QStringList events; ///< "expired", "quota" and, from outcome(), "done", in the order of the calls
    std::function<void()> onQuota;
    std::function<void()> onExpired;

    TlsService service;
    std::unique_ptr<QNetworkAccessManager> network;
    std::unique_ptr<ProductDownloads> downloads;
    QObject context;

    QString folder() const { return folder_.path(); }

    /// Looks at the folder alone: one below it that is being listed cannot be removed under Wine.
    bool isFolderEmpty() const;
    QString root() const { return folder_.filePath(QStringLiteral("Quillmar")); }

    void makeDownloads();
    void setPackage(const QByteArray &package);
    ComponentProduct otherProduct(int number) const;

    void serveTicket(TlsService::Handler handler)
    {
        service.handleRoute("download-ticket", std::move(handler));
    }
    void serveFile(TlsService::Handler handler) { service.handleRoute("download-file", std::move(handler)); }
    void serveGood();

    qsizetype tickets() const { return service.count("download-ticket"); }
    qsizetype files() const { return service.count("download-file"); }
    WireRequest lastRequest(const QByteArray &route) const;

    /// Starts an acquire(); the outcome lives as long as the fixture's caller keeps it.
    std::shared_ptr<Outcome> acquire() { return acquire(product); }
    std::shared_ptr<Outcome> acquire(const ComponentProduct &what);
    ProductDownloads::Completion completionFor(const std::shared_ptr<Outcome> &outcome);

    /// Acquires and waits for the end.
    ProductFileResult acquired();

    /// The service as a test left it makes acquire() fail with `error` and leave nothing on disk; once it is
    /// good again the next one succeeds.
    void expectFailureThenSuccess(const QString &error);

    /// Lets whatever is still on its way come to its end: a download of another package runs after it.
    void finishEverything();

    /// Response head of a body of `length` bytes.
    static QByteArray head(qint64 length);
    static QByteArray goodTicket(const QString &ticket = QStringLiteral("ticket-1"));

private:
    QTemporaryDir folder_;
};

} // namespace quillmar::test
