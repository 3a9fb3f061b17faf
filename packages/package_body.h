#pragma once

#include "packages/body_sink.h"
#include "packages/file_workers.h"

#include <QByteArray>
#include <QJsonObject>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>

#include <memory>

namespace quillmar
{

/// Moves the body of one file reply into its sink while it arrives.
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

    /// Reads `reply` into `sink`. A body that grows beyond `fileSize` bytes, or beyond 2 GiB when that is 0
    /// or less, is too long. `workers` outlives this object.
    PackageBody(QNetworkReply *reply, FileWorkers &workers, std::shared_ptr<BodySink> sink, qint64 fileSize,
                QObject *parent);
    ~PackageBody() override;

    /// Checks and stores the complete body, then answers as the sink's store() does. After ended(), once.
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
    std::shared_ptr<BodySink> sink_;
    qint64 limit_;
    Ending ending_;
    QByteArray rest_; ///< what the reply still held when it finished
    bool isFinished_ = false;
    bool isPieceOnItsWay_ = false;
    bool isReasonLimited_ = false;
    bool isOver_ = false;
};

} // namespace quillmar
