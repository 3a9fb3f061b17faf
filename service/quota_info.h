#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>

namespace quillmar
{

/// How many downloads the account has left, as the service says.
struct QuotaInfo {
    enum class State { Unavailable = 0, Loading = 1, Loaded = 2 };

    State state = State::Unavailable; ///< the other fields are valid when this is Loaded
    bool enabled = false;             ///< downloads are counted against a limit
    bool unlimited = false;           ///< no limit applies to this account
    bool allowRedownload = false;
    QString period{}; ///< "daily", "weekly" or "monthly"; empty unless enabled and not unlimited
    qint64 limit = 0;
    qint64 used = 0; ///< may exceed `limit`
    qint64 remaining = 0;
    QDateTime resetAt{}; ///< UTC; invalid when the service gives none

    bool operator==(const QuotaInfo &) const = default;
};

/// Reads the reply of the quota route. A single value that breaks a rule makes the whole reply worthless: the
/// result is then Unavailable with every other field at its default.
///
/// `success` must be true, `enabled`, `unlimited` and `allow_redownload` bools. Counts are whole numbers from
/// 0 to 2^53 - 1, above which JSON numbers are no longer exact. `reset_at` is absent, null or an ISO 8601
/// date-time, with or without milliseconds. `period`, `limit` and `remaining` (at most `limit`) are read only
/// when a limit applies.
QuotaInfo parseQuota(const QJsonObject &object);

} // namespace quillmar
