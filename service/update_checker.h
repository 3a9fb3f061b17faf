#pragma once

#include "service/clock.h"
#include "service/update_info.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <optional>

namespace quillmar
{

struct UpdateCache;

/// Asks the service now and then whether there is a newer version of the module: at most once a day after an
/// answer, at most once an hour after an attempt, over restarts too.
///
/// The last good answer is kept in the settings and reported at the next start before anything is asked. A
/// check that fails is logged and changes nothing. Requests say nothing about the user. Destroying the
/// checker ends a request under way without a callback. Threads: the user-interface thread.
class UpdateChecker : public QObject
{
    Q_OBJECT

public:
    /// `available`: the version of `info` is newer than the installed one. May delete the checker.
    using ResultCallback = std::function<void(const UpdateInfo &info, bool available)>;
    using LogCallback = std::function<void(const QString &message)>;

    /// `settingsPath` names an INI file, or is empty: nothing is kept then.
    UpdateChecker(QObject *parent, const QString &installedVersion, const QString &settingsPath,
                  Clock clock = systemTime);
    ~UpdateChecker() override;

    void setResultCallback(ResultCallback callback) { resultCallback_ = std::move(callback); }
    void setLogCallback(LogCallback callback) { logCallback_ = std::move(callback); }

    /// Has start() run at the next turn of the event loop; only the first call does.
    void scheduleStart();

    /// Takes up what the last run kept, reports it, then checks. Does nothing for good when the installed
    /// version is none.
    void start();

    /// Asks the service, unless a request is under way or it is too early, and sets the time of the next
    /// check.
    void checkNow();

    /// Reports the last good answer, if there is one.
    void evaluate() const;

private:
    void adopt(const UpdateCache &cache);
    bool isTooEarly(qint64 now) const;
    void send();
    void handleReply();
    void accept(const UpdateInfo &info, const QByteArray &body);
    void reschedule();
    void log(const QString &message) const;

    const QString installedVersion_;
    const QString settingsPath_;
    const Clock clock_;
    QNetworkAccessManager network_;
    QTimer timer_;
    QPointer<QNetworkReply> reply_; ///< the one under way
    std::optional<UpdateInfo> cached_;
    qint64 lastSuccess_ = 0; ///< seconds since the Unix epoch, 0 for never
    qint64 lastAttempt_ = 0;
    ResultCallback resultCallback_;
    LogCallback logCallback_;
    bool started_ = false;
};

} // namespace quillmar
