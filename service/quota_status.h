#pragma once

#include "service/quota_info.h"
#include "ui/wrapping_label.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>

#include <functional>

namespace quillmar
{

class Localisation;
class Session;

/// One line that tells the signed-in user how many downloads are left.
///
/// Starts hidden; shown from a refresh() with a session until clear(). Only the reply to the latest refresh
/// of the session that sent it is used. Threads: the user-interface thread.
class QuotaStatus : public WrappingLabel
{
    Q_OBJECT

public:
    using SessionExpired = std::function<void()>;

    /// `session` and `localisation` outlive the label; `network` is shared and may die before it.
    QuotaStatus(const Session &session, QNetworkAccessManager *network, const Localisation &localisation,
                QWidget *parent = nullptr);

    /// Called after clear() when the service answers 401 or 403; may be empty. It may delete the label.
    void setSessionExpired(SessionExpired callback) { sessionExpired_ = std::move(callback); }

    /// Asks the service and shows "Quota.Loading", then what it says or "Quota.Unavailable". Signed out it is
    /// the same as clear().
    void refresh();

    /// Forgets the quota and hides; a reply under way is ignored.
    void clear();

    /// Shows text and alignment again in the current language.
    void updateText();

private:
    void setQuota(const QuotaInfo &quota);
    void handleReply(QNetworkReply &reply);
    void refuse();

    const Session &session_;
    QPointer<QNetworkAccessManager> network_;
    const Localisation &localisation_;
    SessionExpired sessionExpired_;
    QuotaInfo quota_;
    quint64 requestGeneration_ = 0;
};

} // namespace quillmar
