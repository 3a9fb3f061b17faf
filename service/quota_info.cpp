#include "service/quota_info.h"

#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr double MaximumCount = 9007199254740991.0; // 2^53 - 1

std::optional<qint64> count(const QJsonValue &value)
{
    // What is no number is read as -1, which is no count either.
    const double number = value.toDouble(-1.0);
    if (!std::isfinite(number) || number < 0.0 || number > MaximumCount || std::trunc(number) != number)
        return std::nullopt;
    return static_cast<qint64>(number);
}

bool readFlags(const QJsonObject &object, QuotaInfo &quota)
{
    const QJsonValue enabled = object.value("enabled"_L1);
    const QJsonValue unlimited = object.value("unlimited"_L1);
    const QJsonValue allowRedownload = object.value("allow_redownload"_L1);
    if (!object.value("success"_L1).toBool() || !enabled.isBool() || !unlimited.isBool() ||
        !allowRedownload.isBool())
        return false;
    quota.enabled = enabled.toBool();
    quota.unlimited = unlimited.toBool();
    quota.allowRedownload = allowRedownload.toBool();
    return true;
}

bool readUsed(const QJsonObject &object, QuotaInfo &quota)
{
    const std::optional<qint64> used = count(object.value("used"_L1));
    quota.used = used.value_or(0);
    return used.has_value();
}

bool readResetAt(const QJsonObject &object, QuotaInfo &quota)
{
    const QJsonValue value = object.value("reset_at"_L1);
    if (value.isUndefined() || value.isNull())
        return true;
    quota.resetAt = QDateTime::fromString(value.toString(), Qt::ISODateWithMs).toUTC();
    return quota.resetAt.isValid();
}

bool readLimit(const QJsonObject &object, QuotaInfo &quota)
{
    if (!quota.enabled || quota.unlimited)
        return true;
    quota.period = object.value("period"_L1).toString();
    if (quota.period != "daily"_L1 && quota.period != "weekly"_L1 && quota.period != "monthly"_L1)
        return false;
    const std::optional<qint64> limit = count(object.value("limit"_L1));
    const std::optional<qint64> remaining = count(object.value("remaining"_L1));
    if (!limit || !remaining || *remaining > *limit)
        return false;
    quota.limit = *limit;
    quota.remaining = *remaining;
    return true;
}

} // namespace

QuotaInfo parseQuota(const QJsonObject &object)
{
    QuotaInfo quota;
    if (!readFlags(object, quota) || !readUsed(object, quota) || !readResetAt(object, quota) ||
        !readLimit(object, quota))
        return {};
    quota.state = QuotaInfo::State::Loaded;
    return quota;
}

} // namespace quillmar
