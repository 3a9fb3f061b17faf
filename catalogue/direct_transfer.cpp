#include "catalogue/direct_transfer.h"

#include "catalogue/direct_download.h"
#include "catalogue/download_status.h"
#include "catalogue/saved_file_name.h"
#include "packages/incoming_file.h"
#include "service/download_ticket.h"
#include "service/routes.h"
#include "service/service_reply.h"

#include <QLabel>
#include <QPushButton>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr int HttpOk = 200;

} // namespace

DirectTransfer::DirectTransfer(Means means, DirectDownloadClick click, QObject *parent)
    : QObject(parent), means_(std::move(means)), click_(std::move(click)), generation_(means_.generation())
{
    connect(click_.status, &QObject::destroyed, this, &DirectTransfer::end);
}

DirectTransfer::~DirectTransfer()
{
    abandon();
}

void DirectTransfer::start()
{
    if (endIfPointless())
        return;
    if (!means_.network) {
        failTicket(0);
        return;
    }
    ticketReply_ =
        means_.network->post(routes::downloadTicket(means_.token()), ticketRequestBody(click_.productKey));
    limitBody(ticketReply_, MaximumTicketReplySize);
    connect(ticketReply_, &QNetworkReply::finished, ticketReply_, &QObject::deleteLater);
    connect(ticketReply_, &QNetworkReply::finished, this, &DirectTransfer::onTicketFinished);
    // Queued: the manager that takes its replies with it may itself be in the middle of its destructor.
    connect(ticketReply_, &QObject::destroyed, this, &DirectTransfer::onTicketLost, Qt::QueuedConnection);
}

void DirectTransfer::onTicketFinished()
{
    const ServiceReply reply = readServiceReply(*ticketReply_);
    ticketReply_->disconnect(this);
    ticketReply_ = nullptr;
    if (endIfPointless())
        return;
    const QString ticket = reply.text("ticket"_L1);
    if (saysQuotaReached(reply.status, reply.object))
        refuseForQuota();
    else if (reply.hasError() || reply.status != HttpOk)
        failTicket(reply.status);
    else if (!isUsableTicket(ticket))
        fail();
    else
        requestFile(ticket);
}

void DirectTransfer::onTicketLost()
{
    if (!body_ && !endIfPointless())
        failTicket(0);
}

void DirectTransfer::requestFile(const QString &ticket)
{
    if (!means_.network) {
        failFile(0);
        return;
    }
    show(DownloadStatus::Progress);
    QNetworkReply *reply = means_.network->post(routes::downloadFile(ticket), QByteArray());
    auto file = std::make_shared<IncomingFile>(means_.folder);
    // The name is in the headers, which are complete before the first byte of the body is read.
    connect(reply, &QNetworkReply::metaDataChanged, this,
            [this, reply, named = std::weak_ptr(file), isNamed = false]() mutable {
                const auto incoming = named.lock();
                if (incoming && httpStatus(*reply) == HttpOk && !std::exchange(isNamed, true))
                    incoming->setName(fileNameFromReply(*reply, click_.productKey));
            });
    body_ = new PackageBody(reply, means_.workers, std::move(file), click_.fileSize, this);
    connect(body_, &PackageBody::arriving, this, &DirectTransfer::onFileArriving);
    connect(body_, &PackageBody::ended, this, &DirectTransfer::onFileEnded);
}

/// A transfer that nobody waits for any more need not run to its end.
void DirectTransfer::onFileArriving()
{
    endIfPointless();
}

void DirectTransfer::onFileEnded(const PackageBody::Ending &file)
{
    if (endIfPointless())
        return;
    if (file.hasError || file.status != HttpOk || file.size == 0 || file.isTooLong)
        failFile(file.status);
    else
        body_->store(this, [this](const ProductFileResult &result) { onStored(result); });
}

void DirectTransfer::onStored(const ProductFileResult &file)
{
    if (endIfPointless())
        return;
    release();
    if (!file.isOk()) {
        show(DownloadStatus::SaveFailed);
        end();
        return;
    }
    showSavedFile(click_.status, file.path, means_.localisation);
    // The callback may take anything away, this object included.
    const auto quotaChanged = click_.quotaChanged;
    const auto log = means_.log;
    end();
    quotaChanged();
    log(LogLevel::Info, u"Quillmar product downloaded successfully"_s);
}

/// Nobody is to be told of a session that is over, and there is nowhere to show what became of the card.
bool DirectTransfer::endIfPointless()
{
    const bool isPointless = !click_.status || means_.generation() != generation_;
    if (isPointless)
        end();
    return isPointless;
}

void DirectTransfer::show(DownloadStatus status)
{
    showDownloadStatus(click_.status, status, means_.localisation);
}

void DirectTransfer::refuseForQuota()
{
    release();
    show(DownloadStatus::QuotaReached);
    const auto quotaChanged = click_.quotaChanged;
    end();
    quotaChanged();
}

void DirectTransfer::fail()
{
    release();
    show(DownloadStatus::Failed);
    end();
}

void DirectTransfer::failTicket(int status)
{
    warn(u"ticket request"_s, status);
    fail();
}

void DirectTransfer::failFile(int status)
{
    warn(u"file download"_s, status);
    fail();
}

void DirectTransfer::warn(const QString &what, int status)
{
    means_.log(LogLevel::Warning, u"Quillmar %1 failed. HTTP %2"_s.arg(what).arg(status));
}

void DirectTransfer::release()
{
    if (click_.button)
        releaseButton(click_.button);
}

void DirectTransfer::end()
{
    if (std::exchange(isOver_, true))
        return;
    abandon();
    Q_EMIT ended();
}

void DirectTransfer::abandon()
{
    if (ticketReply_)
        ticketReply_->disconnect(this);
    dropReply(ticketReply_);
    ticketReply_ = nullptr;
    if (body_)
        body_->abandon();
}

} // namespace quillmar
