#pragma once

#include "packages/component_product.h"
#include "packages/file_workers.h"
#include "packages/package_fetch.h"
#include "packages/product_file_result.h"

#include <QHash>
#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <optional>

namespace quillmar
{

/// Turns a product into a verified package on disk, and a package into the files of one component.
///
/// Lives on the user-interface thread; file work runs on a pool of at most two threads, which get copies and
/// answer with queued calls. Requests for the same package in the same session share one download, and at
/// most four downloads run at a time, so that a stuck one leaves a connection to the other requests of the
/// module.
class ProductDownloads : public QObject
{
    Q_OBJECT

public:
    using Completion = std::function<void(const ProductFileResult &)>;

    /// What the rest of the module lends to this object. All are set before the first acquire().
    struct Callbacks {
        std::function<QString()> token;       ///< current session token, empty when signed out
        std::function<quint64()> generation;  ///< current session generation
        std::function<void()> sessionExpired; ///< the service answered 401 or 403
        std::function<void()> quotaChanged;   ///< the quota was spent or is exhausted
    };

    /// `network` is shared and outlives the requests made here or takes them with it. `root` empty: the
    /// user's download folder followed by "/Quillmar".
    ProductDownloads(QNetworkAccessManager *network, const QString &root, QObject *parent = nullptr);

    /// Waits for running worker tasks, without a time limit.
    ~ProductDownloads() override;

    void setCallbacks(Callbacks callbacks);

    /// Absolute, cleaned.
    const QString &root() const { return root_; }

    /// Delivers the verified package file of `product` from the cache or from the service.
    ///
    /// `completion` is called once on this object's thread while `context` lives, with the path or one of
    /// "Status.LoginRequired", "Component.InvalidMetadata", "Download.QuotaReached", "Download.Failed",
    /// "Download.SaveFailed"; the first two before this function returns. It is not called at all when the
    /// session ends on the way. It may delete anything, this object included.
    void acquire(const ComponentProduct &product, QObject *context, Completion completion);

    /// Extracts `component`, or copies the whole package when there is none, from the package at
    /// `packagePath`.
    ///
    /// `completion` is called once on this object's thread while `context` lives, with the path of the file
    /// or folder or one of "Component.UnsafePath", "Component.FileMissing", "Component.InvalidArchive",
    /// "Download.Failed", "Download.SaveFailed".
    void materialize(const ComponentProduct &product, const QString &packagePath,
                     const std::optional<ProductComponent> &component, QObject *context,
                     Completion completion);

private:
    struct Waiter {
        QPointer<QObject> context;
        Completion completion;
        quint64 generation;
    };

    /// One package of one session that somebody waits for.
    struct Request {
        ComponentProduct product;
        quint64 generation = 0;
        QList<Waiter> waiters;         ///< in the order of arrival
        PackageFetch *fetch = nullptr; ///< a child; null while the cache is looked up and while queued
    };

    void dropRequestsOfOtherSessions();
    void lookUp(const QString &key, const Request &request);
    void onLookedUp(const QString &key, const ProductFileResult &cached);
    void startQueuedFetches();
    void startFetch(const QString &key, Request &request);
    void onFetchEnded(const QString &key, PackageFetch::Ending ending, const ProductFileResult &result);
    QList<Waiter> takeRequest(const QString &key);
    bool finish(const QString &key, const ProductFileResult &result);

    Callbacks callbacks_;
    QPointer<QNetworkAccessManager> network_;
    QString root_;
    QHash<QString, Request> requests_; ///< by product identity and generation
    QStringList queue_;                ///< keys of requests whose fetch may not start yet
    int runningFetches_ = 0;
    FileWorkers workers_;
};

} // namespace quillmar
