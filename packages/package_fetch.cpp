#include "packages/package_fetch.h"

#include "packages/incoming_package.h"
#include "service/download_ticket.h"
#include "service/routes.h"
#include "service/service_reply.h"

#include <QJsonObject>

#include <utility>

namespace quillmar
{

using namespace Qt::StringLiterals;

namespace
{

constexpr int kHttpOk = 200;
constexpr int kHttpUnauthorized = 401;
constexpr int kHttpForbidden = 403;

} // namespace

PackageFetch::PackageFetch(Means means, const ComponentProduct &product, quint64 generation, QObject *parent)
    : QObject(parent), means_(std::move(means)), product_(product), generation_(generation)
{
}

PackageFetch::~PackageFetch()
{
    abandon();
}

void PackageFetch::start()
{
    if (isStale()) {
        end(Ending::Stale, {});
        return;
    }
    if (!means_.network) {
        fail();
        return;
    }
    ticketReply_ =
        means_.network->post(routes::downloadTicket(means_.token()), ticketRequestBody(product_.product_key));
    limitBody(ticketReply_, MaximumTicketReplySize);
    connect(ticketReply_, &QNetworkReply::finished, ticketReply_, &QObject::deleteLater);
    connect(ticketReply_, &QNetworkReply::finished, this, &PackageFetch::onTicketFinished);
    // Queued: the manager that takes its replies with it may itself be in the middle of its destructor.
    connect(ticketReply_, &QObject::destroyed, this, &PackageFetch::onTicketLost, Qt::QueuedConnection);
}

void PackageFetch::onTicketFinished()
{
    const ServiceReply reply = readServiceReply(*ticketReply_);
    ticketReply_->disconnect(this);
    ticketReply_ = nullptr;
    if (isStale()) {
        end(Ending::Stale, {});
        return;
    }
    if (endIfRefused(reply.status, reply.object))
        return;
    const QString ticket = reply.text("ticket"_L1);
    if (reply.hasError() || reply.status != kHttpOk || !isUsableTicket(ticket))
        fail();
    else
        requestFile(ticket);
}

void PackageFetch::onTicketLost()
{
    if (!body_)
        fail();
}

void PackageFetch::requestFile(const QString &ticket)
{
    if (!means_.network) {
        fail();
        return;
    }
    QNetworkReply *reply = means_.network->post(routes::downloadFile(ticket), QByteArray());
    auto package = std::make_shared<IncomingPackage>(means_.root, product_);
    body_ = new PackageBody(reply, means_.workers, std::move(package), product_.file_size, this);
    connect(body_, &PackageBody::arriving, this, &PackageFetch::onFileArriving);
    connect(body_, &PackageBody::ended, this, &PackageFetch::onFileEnded);
}

/// A transfer that nobody waits for any more need not run to its end.
void PackageFetch::onFileArriving()
{
    if (isStale())
        end(Ending::Stale, {});
}

void PackageFetch::onFileEnded(const PackageBody::Ending &file)
{
    if (isStale()) {
        end(Ending::Stale, {});
        return;
    }
    if (endIfRefused(file.status, file.reason))
        return;
    if (file.hasError || file.status != kHttpOk || file.size == 0) {
        fail();
        return;
    }
    const QPointer<PackageFetch> guard(this);
    const bool isTooLong = file.isTooLong;
    Q_EMIT quotaSpent();
    if (!guard)
        return;
    if (isTooLong)
        fail();
    else
        storeFile();
}

void PackageFetch::storeFile()
{
    body_->store(this, [this](const ProductFileResult &result) { end(Ending::Completed, result); });
}

bool PackageFetch::isStale() const
{
    return means_.generation() != generation_;
}

bool PackageFetch::endIfRefused(int status, const QJsonObject &reason)
{
    if (status == kHttpUnauthorized || status == kHttpForbidden) {
        end(Ending::SessionRefused, ProductFileResult::failure(u"Status.LoginRequired"_s));
        return true;
    }
    const bool isQuota = saysQuotaReached(status, reason);
    if (isQuota)
        end(Ending::QuotaReached, ProductFileResult::failure(u"Download.QuotaReached"_s));
    return isQuota;
}

void PackageFetch::fail()
{
    end(Ending::Completed, ProductFileResult::failure(u"Download.Failed"_s));
}

void PackageFetch::end(Ending ending, const ProductFileResult &result)
{
    if (std::exchange(isOver_, true))
        return;
    abandon();
    Q_EMIT ended(ending, result);
}

void PackageFetch::abandon()
{
    if (ticketReply_)
        ticketReply_->disconnect(this);
    dropReply(ticketReply_);
    ticketReply_ = nullptr;
    if (body_)
        body_->abandon();
}

} // namespace quillmar
