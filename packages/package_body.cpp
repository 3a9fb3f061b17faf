#include "packages/package_body.h"

#include "service/service_reply.h"

#include <utility>

namespace quillmar
{

namespace
{

constexpr qint64 kMiB = 1024 * 1024;
constexpr qint64 kReadBufferBytes = 2 * kMiB;
constexpr qint64 kPieceBytes = 4 * kMiB;
constexpr qint64 kMaxReasonBytes = kMiB;
constexpr qint64 kMaxPackageBytes = 2048 * kMiB; ///< of a package whose size is unknown
constexpr int kHttpOk = 200;

} // namespace

PackageBody::PackageBody(QNetworkReply *reply, FileWorkers &workers, std::shared_ptr<BodySink> sink,
                         qint64 fileSize, QObject *parent)
    : QObject(parent),
      workers_(workers),
      reply_(reply),
      sink_(std::move(sink)),
      limit_(fileSize > 0 ? fileSize : kMaxPackageBytes)
{
    // Not before: a size that is set while the body of the POST is still under way to Qt's network thread is
    // lost.
    connect(reply, &QNetworkReply::metaDataChanged, reply,
            [reply] { reply->setReadBufferSize(kReadBufferBytes); });
    connect(reply, &QNetworkReply::readyRead, this, &PackageBody::onReadyRead);
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    connect(reply, &QNetworkReply::finished, this, &PackageBody::onFinished);
    // Queued: the manager that takes its replies with it may itself be in the middle of its destructor.
    connect(reply, &QObject::destroyed, this, &PackageBody::onReplyLost, Qt::QueuedConnection);
}

PackageBody::~PackageBody()
{
    abandon();
}

void PackageBody::abandon()
{
    isOver_ = true;
    letGoOfReply();
    if (sink_)
        workers_.release(std::exchange(sink_, nullptr));
}

void PackageBody::store(QObject *receiver, FileWorkers::Answer answer)
{
    auto task = [sink = std::exchange(sink_, nullptr)] { return sink->store(); };
    workers_.run(receiver, std::move(task), std::move(answer));
}

void PackageBody::onReadyRead()
{
    Q_EMIT arriving();
    if (!reply_)
        return;
    if (httpStatus(*reply_) == kHttpOk)
        takeNextPiece();
    else if (!std::exchange(isReasonLimited_, true))
        limitBody(reply_, kMaxReasonBytes);
}

void PackageBody::onFinished()
{
    isFinished_ = true;
    ending_.status = httpStatus(*reply_);
    ending_.hasError = reply_->error() != QNetworkReply::NoError;
    if (ending_.status != kHttpOk)
        ending_.reason = readServiceReply(*reply_).object;
    else if (!ending_.hasError)
        rest_ = reply_->readAll();
    reply_->disconnect(this);
    reply_ = nullptr;
    takeNextPiece();
}

void PackageBody::onReplyLost()
{
    if (isFinished_)
        return;
    isFinished_ = true;
    ending_.hasError = true;
    takeNextPiece();
}

void PackageBody::takeNextPiece()
{
    if (isPieceOnItsWay_ || isOver_)
        return;
    const QByteArray piece = reply_ ? reply_->read(kPieceBytes) : std::exchange(rest_, {});
    if (!piece.isEmpty())
        handToWorkers(piece);
    else if (isFinished_)
        end();
}

void PackageBody::handToWorkers(const QByteArray &piece)
{
    ending_.status = kHttpOk;
    ending_.size += piece.size();
    ending_.isTooLong = ending_.size > limit_;
    if (ending_.isTooLong) {
        end();
        return;
    }
    isPieceOnItsWay_ = true;
    auto append = [sink = sink_, piece] {
        sink->append(piece);
        return ProductFileResult();
    };
    auto next = [this](const ProductFileResult &result) {
        isPieceOnItsWay_ = false;
        ending_.hasError = ending_.hasError || !result.isOk();
        takeNextPiece();
    };
    workers_.run(this, append, next, FileWorkers::Urgency::KeepsTransferGoing);
}

void PackageBody::end()
{
    isOver_ = true;
    letGoOfReply();
    Q_EMIT ended(ending_);
}

void PackageBody::letGoOfReply()
{
    if (reply_)
        reply_->disconnect(this);
    dropReply(reply_);
    reply_ = nullptr;
}

} // namespace quillmar
