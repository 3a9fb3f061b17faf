#include "service/update_checker.h"

#include "service/routes.h"
#include "service/service_reply.h"
#include "service/update_cache.h"

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr qint64 SecondsAfterSuccess = 86400;
constexpr qint64 SecondsAfterAttempt = 3600;

/// Bounds of the time to the next check, in seconds.
constexpr qint64 ShortestDelay = 1;
constexpr qint64 LongestDelay = 86400;

bool isPlausible(qint64 time, qint64 now)
{
    return time >= 0 && time <= now;
}

} // namespace

UpdateChecker::UpdateChecker(QObject *parent, const QString &installedVersion, const QString &settingsPath,
                             Clock clock)
    : QObject(parent),
      installedVersion_(installedVersion),
      settingsPath_(settingsPath),
      clock_(std::move(clock)),
      network_(this),
      timer_(this)
{
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &UpdateChecker::checkNow);
}

UpdateChecker::~UpdateChecker()
{
    timer_.stop();
    dropReply(reply_);
}

void UpdateChecker::scheduleStart()
{
    if (!std::exchange(started_, true))
        QTimer::singleShot(std::chrono::milliseconds(0), this, &UpdateChecker::start);
}

void UpdateChecker::start()
{
    if (!parseVersion(installedVersion_)) {
        log(u"Update check skipped: invalid installed version"_s);
        return;
    }
    if (!settingsPath_.isEmpty())
        adopt(loadUpdateCache(settingsPath_));
    const QPointer<UpdateChecker> alive(this);
    evaluate();
    if (alive)
        checkNow();
}

/// A time in the future was written before the clock went back and would hold off checks for who knows how
/// long.
void UpdateChecker::adopt(const UpdateCache &cache)
{
    const qint64 now = clock_();
    cached_ = parseUpdateReply(cache.response);
    lastSuccess_ = cached_ && isPlausible(cache.lastSuccess, now) ? cache.lastSuccess : 0;
    lastAttempt_ = isPlausible(cache.lastAttempt, now) ? cache.lastAttempt : 0;
}

void UpdateChecker::checkNow()
{
    if (reply_)
        return;
    const qint64 now = clock_();
    if (isTooEarly(now)) {
        reschedule();
        return;
    }
    lastAttempt_ = now;
    if (!settingsPath_.isEmpty())
        saveUpdateAttempt(settingsPath_, now);
    send();
}

bool UpdateChecker::isTooEarly(qint64 now) const
{
    return (lastSuccess_ > 0 && now - lastSuccess_ < SecondsAfterSuccess) ||
           (lastAttempt_ > 0 && now - lastAttempt_ < SecondsAfterAttempt);
}

void UpdateChecker::send()
{
    reply_ = network_.get(routes::pluginVersion());
    // One byte more than is allowed has to fit, or a reply that is too long would wait for ever.
    reply_->setReadBufferSize(MaximumUpdateReplySize + 1);
    limitBody(reply_, MaximumUpdateReplySize);
    connect(reply_, &QNetworkReply::finished, reply_, &QObject::deleteLater);
    connect(reply_, &QNetworkReply::finished, this, &UpdateChecker::handleReply);
}

void UpdateChecker::handleReply()
{
    const ServiceReply read = readServiceReply(*std::exchange(reply_, nullptr));
    const QPointer<UpdateChecker> alive(this);
    const bool isGood = !read.hasError() && read.status == 200;
    if (const auto info = isGood ? parseUpdateReply(read.body) : std::nullopt)
        accept(*info, read.body);
    else
        log(u"Update check unavailable (HTTP %1, network error %2)"_s.arg(read.status).arg(int(read.error)));
    if (alive)
        reschedule();
}

void UpdateChecker::accept(const UpdateInfo &info, const QByteArray &body)
{
    cached_ = info;
    lastSuccess_ = clock_();
    if (!settingsPath_.isEmpty() && !saveUpdateSuccess(settingsPath_, body, lastSuccess_))
        log(u"Could not save update-check cache"_s);
    evaluate();
}

void UpdateChecker::reschedule()
{
    const qint64 due = std::max(lastSuccess_ + SecondsAfterSuccess, lastAttempt_ + SecondsAfterAttempt);
    timer_.start(std::chrono::seconds(std::clamp(due - clock_(), ShortestDelay, LongestDelay)));
}

void UpdateChecker::evaluate() const
{
    if (!cached_ || !resultCallback_)
        return;
    const std::optional<Version> latest = parseVersion(cached_->latestVersion);
    const std::optional<Version> installed = parseVersion(installedVersion_);
    // Copies, because the callback may delete this object.
    const UpdateInfo info = *cached_;
    const ResultCallback report = resultCallback_;
    report(info, latest && installed && *latest > *installed);
}

void UpdateChecker::log(const QString &message) const
{
    if (logCallback_)
        logCallback_(message);
}

} // namespace quillmar
