#pragma once

#include "packages/component_product.h"
#include "packages/file_workers.h"
#include "packages/package_body.h"
#include "packages/product_file_result.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>

#include <functional>

namespace quillmar
{

/// Fetches one package from the service into the cache: a ticket first, then the file that it stands for.
///
/// Ends exactly once, with ended(), unless it is destroyed before; then its requests are dropped and nothing
/// of the package is left. Lives on the user-interface thread.
class PackageFetch : public QObject
{
    Q_OBJECT

public:
    enum class Ending {
        Completed,      ///< the result says how
        SessionRefused, ///< the service no longer accepts the session
        QuotaReached,   ///< the quota of the account is exhausted
        Stale,          ///< another session has begun; nobody is to be told
    };

    /// What it is fetched with. `workers` outlives this object.
    struct Means {
        QPointer<QNetworkAccessManager> network;
        FileWorkers &workers;
        QString root;
        std::function<QString()> token;
        std::function<quint64()> generation;
    };

    PackageFetch(Means means, const ComponentProduct &product, quint64 generation, QObject *parent);
    ~PackageFetch() override;

    /// Sends the first request. Called once.
    void start();

Q_SIGNALS:
    /// A file has been delivered, so the quota has been spent. Comes before ended().
    void quotaSpent();

    /// `result` is the stored path, or the key of the failure; without meaning when stale.
    void ended(quillmar::PackageFetch::Ending ending, const quillmar::ProductFileResult &result);

private:
    void onTicketFinished();
    void onTicketLost();
    void requestFile(const QString &ticket);
    void onFileArriving();
    void onFileEnded(const PackageBody::Ending &file);
    void storeFile();

    bool isStale() const;
    bool endIfRefused(int status, const QJsonObject &reason);
    void fail();
    void end(Ending ending, const ProductFileResult &result);
    void abandon();

    Means means_;
    ComponentProduct product_;
    quint64 generation_;
    QPointer<QNetworkReply> ticketReply_;
    PackageBody *body_ = nullptr; ///< a child
    bool isOver_ = false;
};

} // namespace quillmar
