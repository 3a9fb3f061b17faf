#pragma once

#include "service/account_view.h"
#include "service/log_function.h"
#include "service/service_reply.h"
#include "service/session.h"
#include "service/session_store.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>

#include <functional>

namespace quillmar
{

/// Signs in and out, fetches the product list, restores a kept session and ends one that the service no
/// longer accepts.
///
/// Owns nothing but the rules: the session and the store outlive it, the view and the network manager may die
/// before it (they hang on the dock), after which every operation does nothing. Each operation returns at
/// once and reports on the view; its reply is handled on the user-interface thread, and not at all when the
/// session has changed since. Only the reply to a sign-in is handled whatever has happened. Destroying the
/// account leaves replies without a handler.
class Account : public QObject
{
    Q_OBJECT

public:
    /// `network` is shared with whoever else talks to the service on behalf of the session; a sign-out ends
    /// all of it.
    Account(Session &session, SessionStore &store, AccountView &view, QNetworkAccessManager *network,
            LogFunction log, QObject *parent = nullptr);

    /// Signs in with the texts of the two fields. Ends in the home view, or with "Status.FieldsRequired",
    /// "Status.CountryNotAllowed" or "Status.LoginFailed". A token that cannot be kept gives
    /// "Session.SaveFailed", or "Session.RemoveFailed" when an older one is stuck; the session then lasts for
    /// this run.
    void signIn();

    /// Fetches the product list with `token`. `restoring`: the token is a kept one that becomes the session
    /// if the service accepts it; otherwise "Session.Offline" or "Session.RestoreFailed" with a retry on
    /// offer. Without `restoring` a failure leaves the list as it is and gives "Products.Failed".
    void requestProducts(const QString &token, bool restoring);

    /// Fetches the list again; nothing when signed out.
    void refreshProducts();

    /// Takes up the kept session again; to the sign-in view with "Session.Expired" when there is none.
    void retryRestore();

    /// Ends a session that the service no longer accepts: sign-in view with "Session.Expired", or with
    /// "Session.RemoveFailed" when the kept token could not be removed.
    void expireSession();

    /// Signs out at the service; nothing when signed out. Ends in the sign-in view with "Logout.Success" or
    /// "Session.RemoveFailed", or stays signed in with "Logout.Failed".
    void signOut();

private:
    using ReplyHandler = std::function<void(QNetworkReply &)>;

    bool isAttached() const;
    void whenFinished(QNetworkReply *reply, const ReplyHandler &handler);
    void whenFinishedInSession(QNetworkReply *reply, const ReplyHandler &handler);

    void handleSignIn(QNetworkReply &reply);
    void refuseLogin(const ServiceReply &reply);
    void acceptLogin(const QString &token);
    void keepSession(const QString &token);
    void showHome();

    void handleProducts(QNetworkReply &reply, const QString &token, bool restoring);
    void productsFailed(const ServiceReply &reply, bool restoring);
    void showProducts(const QJsonArray &products);

    void handleSignOut(QNetworkReply &reply);
    void leaveSession(const QNetworkReply &answer);
    void abortAllExcept(const QNetworkReply &answer);
    void closeIdleConnections();
    void setSignOutControlsEnabled(bool enabled);

    Session &session_;
    SessionStore &store_;
    AccountView &view_;
    QPointer<QObject> viewLifetime_;
    QPointer<QNetworkAccessManager> network_;
    LogFunction log_;
};

} // namespace quillmar
