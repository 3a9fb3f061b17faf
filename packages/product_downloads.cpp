#include "packages/product_downloads.h"

#include "packages/archive_extraction.h"
#include "packages/package_cache.h"
#include "packages/product_identity.h"

#include <QDir>
#include <QStandardPaths>

#include <utility>

namespace quillmar
{

using namespace Qt::StringLiterals;

namespace
{

/// The sign-out and the quota must find a free connection.
constexpr int kMaxFetches = 4;

QString absoluteRoot(const QString &root)
{
    const QString chosen =
        root.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::DownloadLocation) + "/Quillmar"_L1
                       : root;
    return QDir::cleanPath(QDir(chosen).absolutePath());
}

QString requestKey(const ComponentProduct &product, quint64 generation)
{
    return productIdentity(product) + QString::number(generation);
}

} // namespace

ProductDownloads::ProductDownloads(QNetworkAccessManager *network, const QString &root, QObject *parent)
    : QObject(parent), network_(network), root_(absoluteRoot(root))
{
}

/// The fetches go first: they use the workers, which wait for their tasks when they go.
ProductDownloads::~ProductDownloads()
{
    qDeleteAll(findChildren<PackageFetch *>(Qt::FindDirectChildrenOnly));
}

void ProductDownloads::setCallbacks(Callbacks callbacks)
{
    callbacks_ = std::move(callbacks);
}

void ProductDownloads::acquire(const ComponentProduct &product, QObject *context, Completion completion)
{
    if (!context)
        return;
    if (callbacks_.token().isEmpty()) {
        completion(ProductFileResult::failure(u"Status.LoginRequired"_s));
        return;
    }
    if (!isValid(product)) {
        completion(ProductFileResult::failure(u"Component.InvalidMetadata"_s));
        return;
    }
    dropRequestsOfOtherSessions();
    const quint64 generation = callbacks_.generation();
    const QString key = requestKey(product, generation);
    const bool isFirst = !requests_.contains(key);
    Request &request = requests_[key];
    request.waiters.append({context, std::move(completion), generation});
    if (isFirst) {
        request.product = product;
        request.generation = generation;
        lookUp(key, request);
    }
}

void ProductDownloads::materialize(const ComponentProduct &product, const QString &packagePath,
                                   const std::optional<ProductComponent> &component, QObject *context,
                                   Completion completion)
{
    auto extract = [root = root_, product, packagePath, component] {
        const ProductFileResult result = extractPackage(root, product, packagePath, component);
        if (result.error == "Component.InvalidArchive"_L1)
            dropPackageRecord(root, product);
        return result;
    };
    workers_.run(context, std::move(extract), std::move(completion));
}

void ProductDownloads::dropRequestsOfOtherSessions()
{
    const quint64 current = callbacks_.generation();
    const QStringList keys = requests_.keys();
    for (const QString &key : keys) {
        if (requests_.value(key).generation != current)
            takeRequest(key);
    }
}

void ProductDownloads::lookUp(const QString &key, const Request &request)
{
    auto find = [root = root_, product = request.product] {
        return ProductFileResult::success(findCachedPackage(root, product));
    };
    workers_.run(this, find, [this, key](const ProductFileResult &cached) { onLookedUp(key, cached); });
}

void ProductDownloads::onLookedUp(const QString &key, const ProductFileResult &cached)
{
    const auto request = requests_.constFind(key);
    if (request == requests_.constEnd())
        return;
    if (request->generation != callbacks_.generation()) {
        takeRequest(key);
    } else if (!cached.path.isEmpty()) {
        finish(key, cached);
    } else {
        queue_.append(key);
        startQueuedFetches();
    }
}

void ProductDownloads::startQueuedFetches()
{
    while (runningFetches_ < kMaxFetches && !queue_.isEmpty()) {
        const QString key = queue_.takeFirst();
        const auto request = requests_.find(key);
        if (request != requests_.end())
            startFetch(key, *request);
    }
}

void ProductDownloads::startFetch(const QString &key, Request &request)
{
    const PackageFetch::Means means{network_, workers_, root_, callbacks_.token, callbacks_.generation};
    request.fetch = new PackageFetch(means, request.product, request.generation, this);
    ++runningFetches_;
    connect(request.fetch, &PackageFetch::quotaSpent, this, [this] {
        const auto quotaChanged = callbacks_.quotaChanged;
        quotaChanged();
    });
    connect(request.fetch, &PackageFetch::ended, this,
            [this, key](PackageFetch::Ending ending, const ProductFileResult &result) {
                onFetchEnded(key, ending, result);
            });
    QMetaObject::invokeMethod(request.fetch, &PackageFetch::start, Qt::QueuedConnection);
}

/// The handlers are copied: a completion may have deleted this object before they are called.
void ProductDownloads::onFetchEnded(const QString &key, PackageFetch::Ending ending,
                                    const ProductFileResult &result)
{
    const Callbacks callbacks = callbacks_;
    switch (ending) {
    case PackageFetch::Ending::Completed:
        finish(key, result);
        break;
    case PackageFetch::Ending::SessionRefused:
        if (finish(key, result))
            callbacks.sessionExpired();
        break;
    case PackageFetch::Ending::QuotaReached:
        if (finish(key, result))
            callbacks.quotaChanged();
        break;
    case PackageFetch::Ending::Stale:
        takeRequest(key);
        break;
    }
}

/// Takes the request out of the table, with its fetch, before anybody is told: who is told may come straight
/// back.
QList<ProductDownloads::Waiter> ProductDownloads::takeRequest(const QString &key)
{
    const Request request = requests_.take(key);
    if (request.fetch) {
        request.fetch->disconnect(this);
        request.fetch->deleteLater();
        --runningFetches_;
        startQueuedFetches();
    }
    return request.waiters;
}

/// Calls the waiters of `key`. False when one of them deleted this object.
bool ProductDownloads::finish(const QString &key, const ProductFileResult &result)
{
    const QPointer<ProductDownloads> guard(this);
    const QList<Waiter> waiters = takeRequest(key);
    const auto generation = callbacks_.generation;
    for (const Waiter &waiter : waiters) {
        if (waiter.context && waiter.generation == generation())
            waiter.completion(result);
        if (!guard)
            return false;
    }
    return true;
}

} // namespace quillmar
