#include "service/quota_status.h"

#include "service/routes.h"
#include "service/service_reply.h"
#include "service/session.h"
#include "ui/localisation.h"

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

/// A reply holds nine short values; what is larger than this is something else.
constexpr qint64 MaximumReplySize = 1024 * 1024;

QLatin1StringView textKey(const QuotaInfo &quota)
{
    if (quota.state == QuotaInfo::State::Loading)
        return "Quota.Loading"_L1;
    if (quota.state != QuotaInfo::State::Loaded)
        return "Quota.Unavailable"_L1;
    if (!quota.enabled)
        return "Quota.Disabled"_L1;
    if (quota.unlimited)
        return "Quota.Unlimited"_L1;
    if (quota.period == "daily"_L1)
        return "Quota.Daily"_L1;
    return quota.period == "weekly"_L1 ? "Quota.Weekly"_L1 : "Quota.Monthly"_L1;
}

QString filled(QString text, const QuotaInfo &quota)
{
    return text.replace("%1"_L1, QString::number(quota.remaining))
        .replace("%2"_L1, QString::number(quota.limit));
}

} // namespace

QuotaStatus::QuotaStatus(const Session &session, QNetworkAccessManager *network,
                         const Localisation &localisation, QWidget *parent)
    : WrappingLabel(parent), session_(session), network_(network), localisation_(localisation)
{
    hide();
}

void QuotaStatus::refresh()
{
    if (!session_.isSignedIn() || !network_) {
        clear();
        return;
    }
    ++requestGeneration_;
    setQuota({.state = QuotaInfo::State::Loading});
    show();
    QNetworkReply *reply = network_->get(routes::downloadQuota(session_.token()));
    limitBody(reply, MaximumReplySize);
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    connect(reply, &QNetworkReply::finished, this,
            [this, reply, request = requestGeneration_, session = session_.generation()] {
                if (session == session_.generation() && request == requestGeneration_)
                    handleReply(*reply);
            });
}

void QuotaStatus::handleReply(QNetworkReply &reply)
{
    const ServiceReply read = readServiceReply(reply);
    if (read.isRefused()) {
        refuse();
        return;
    }
    const bool isGood = !read.hasError() && read.status == 200 && read.isObject;
    setQuota(isGood ? parseQuota(read.object) : QuotaInfo());
}

void QuotaStatus::refuse()
{
    clear();
    // The procedure may delete this label, and the function with it.
    const SessionExpired expire = sessionExpired_;
    if (expire)
        expire();
}

void QuotaStatus::clear()
{
    ++requestGeneration_;
    setQuota({});
    hide();
}

void QuotaStatus::setQuota(const QuotaInfo &quota)
{
    quota_ = quota;
    updateText();
}

void QuotaStatus::updateText()
{
    setLayoutDirection(localisation_.direction());
    setAlignment(localisation_.readingSide() | Qt::AlignVCenter | Qt::AlignAbsolute);
    localisation_.setTranslatedText(this, textKey(quota_));
    setText(filled(text(), quota_));
}

} // namespace quillmar
