#pragma once

#include "packages/component_product.h"
#include "packages/file_workers.h"

#include <QByteArray>
#include <QJsonObject>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>

#include <memory>

namespace quillmar
{

class IncomingPackage;

/// Moves the body of one file reply into the cache while it arrives.
///
/// One piece at a time is on its way to the workers, and the reply holds a few MiB at most, so memory stays
/// bounded however slow the disk is. A body whose status is not 200 is not kept; it is read for its reason
/// only. Owns the reply until it has finished; destroying this object drops the reply and whatever was
/// written. Lives on the user-interface thread.
class PackageBody : public QObject
{
    Q_OBJECT

public:
    /// What is known of a body when it has ended.
    struct Ending {
        int status = 0;        ///< HTTP status; 0: no response
        bool hasError = false; ///< the transfer failed, or the reply was destroyed with its manager
        bool isTooLong = false;
        qint64 size = 0;    ///< bytes of a body with status 200
        QJsonObject reason; ///< the body of another status, when it is a JSON object
    };

    /// Reads `reply` as the package of `product`, which is put into the cache at `root`. `workers` outlives
    /// this object.
    PackageBody(QNetworkReply *reply, FileWorkers &workers, const QString &root,
                const ComponentProduct &product, QObject *parent);
    ~PackageBody() override;

    /// Checks and stores the complete body, then answers as IncomingPackage::store() does. After ended(),
    /// once.
    void store(QObject *receiver, FileWorkers::Answer answer);

    /// Drops the reply and the bytes; nothing is emitted from now on.
    void abandon();

Q_SIGNALS:
    /// Bytes have come. Who has lost interest by now calls abandon().
    void arriving();

    /// The whole body has been taken, or it failed. Emitted once, unless abandoned before.
    void ended(const quillmar::PackageBody::Ending &ending);

private:
    void onReadyRead();
    void onFinished();
    void onReplyLost();
    void takeNextPiece();
    void handToWorkers(const QByteArray &piece);
    void end();
    void letGoOfReply();

    FileWorkers &workers_;
    QPointer<QNetworkReply> reply_;
    std::shared_ptr<IncomingPackage> package_;
    qint64 limit_;
    Ending ending_;
    QByteArray rest_; ///< what the reply still held when it finished
    bool isFinished_ = false;
    bool isPieceOnItsWay_ = false;
    bool isReasonLimited_ = false;
    bool isOver_ = false;
};

} // namespace quillmar
