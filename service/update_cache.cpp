#include "service/update_cache.h"

#include "ui/settings_file.h"

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr QLatin1StringView ResponseKey("Updates/response");
constexpr QLatin1StringView SuccessKey("Updates/lastSuccess");
constexpr QLatin1StringView AttemptKey("Updates/lastAttempt");

/// By way of text, because the value may be of any type, and a huge floating-point number as well.
qint64 seconds(const QSettings &settings, QLatin1StringView key)
{
    return settings.value(key).toString().toLongLong();
}

} // namespace

UpdateCache loadUpdateCache(const QString &path)
{
    UpdateCache cache;
    useSettings(path, [&cache](const QSettings &settings) {
        cache.response = settings.value(ResponseKey).toByteArray();
        cache.lastSuccess = seconds(settings, SuccessKey);
        cache.lastAttempt = seconds(settings, AttemptKey);
    });
    return cache;
}

void saveUpdateAttempt(const QString &path, qint64 time)
{
    useSettings(path, [time](QSettings &settings) { settings.setValue(AttemptKey, time); });
}

bool saveUpdateSuccess(const QString &path, const QByteArray &response, qint64 time)
{
    // It would stand there word for word and make the file unreadable for good.
    if (hasStreamedValues(response))
        return false;
    return useSettings(path, [&response, time](QSettings &settings) {
        settings.setValue(ResponseKey, response);
        settings.setValue(SuccessKey, time);
    });
}

} // namespace quillmar
