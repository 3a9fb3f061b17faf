#include "service/account.h"

#include "service/log_text.h"
#include "service/routes.h"

#include <QJsonDocument>

namespace quillmar
{

namespace
{

using Tone = AccountView::Tone;
using Key = QLatin1StringView;

QByteArray credentials(const AccountView &view)
{
    const QJsonObject object{{QStringLiteral("username"), view.username()},
                             {QStringLiteral("password"), view.password()}};
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

/// The service confirms a sign-out with any 2xx status, unless it says in so many words that it did not
/// succeed.
bool isSignedOut(const ServiceReply &reply)
{
    return !reply.hasError() && reply.status >= 200 && reply.status <= 299 &&
           reply.object.value(Key("success")).toBool(true);
}

bool hasProducts(const ServiceReply &reply)
{
    return !reply.hasError() && reply.status == 200 && reply.object.value(Key("products")).isArray();
}

QList<QPointer<QNetworkReply>> runningReplies(const QNetworkAccessManager &network)
{
    QList<QPointer<QNetworkReply>> running;
    for (QNetworkReply *reply : network.findChildren<QNetworkReply *>(Qt::FindDirectChildrenOnly)) {
        if (reply->isRunning()) {
            running.append(reply);
        }
    }
    return running;
}

} // namespace

Account::Account(Session &session, SessionStore &store, AccountView &view, QNetworkAccessManager *network,
                 LogFunction log, QObject *parent)
    : QObject(parent),
      session_(session),
      store_(store),
      view_(view),
      viewLifetime_(view.lifetime()),
      network_(network),
      log_(std::move(log))
{
}

bool Account::isAttached() const
{
    return viewLifetime_ && network_;
}

void Account::whenFinished(QNetworkReply *reply, const ReplyHandler &handler)
{
    limitBody(reply);
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    connect(reply, &QNetworkReply::finished, this, [this, reply, handler] {
        if (isAttached()) {
            handler(*reply);
        }
    });
}

void Account::whenFinishedInSession(QNetworkReply *reply, const ReplyHandler &handler)
{
    whenFinished(reply, [this, handler, sent = session_.generation()](QNetworkReply &finished) {
        if (session_.generation() == sent) {
            handler(finished);
        }
    });
}

void Account::signIn()
{
    if (!isAttached()) {
        return;
    }
    if (view_.username().isEmpty() || view_.password().isEmpty()) {
        view_.showStatus(Tone::Failure, Key("Status.FieldsRequired"));
        return;
    }
    view_.setSignInEnabled(false);
    view_.showStatus(Tone::Progress, Key("Status.LoggingIn"));
    whenFinished(network_->post(routes::login(), credentials(view_)),
                 [this](QNetworkReply &reply) { handleSignIn(reply); });
}

void Account::handleSignIn(QNetworkReply &reply)
{
    view_.setSignInEnabled(true);
    const ServiceReply read = readServiceReply(reply);
    closeIdleConnections();
    const QString token = read.text(Key("token"));
    if (read.hasError() || read.status != 200 || token.isEmpty()) {
        refuseLogin(read);
    } else {
        acceptLogin(token);
    }
}

void Account::refuseLogin(const ServiceReply &reply)
{
    const QString code = reply.text(Key("code"));
    const bool isForeign = code == Key("country_not_allowed");
    view_.showStatus(Tone::Failure, isForeign ? Key("Status.CountryNotAllowed") : Key("Status.LoginFailed"));
    log_(LogLevel::Warning, QStringLiteral("Quillmar login failed. HTTP %1, API code: %2")
                                .arg(QString::number(reply.status), logText(code)));
}

void Account::acceptLogin(const QString &token)
{
    session_.replace(token);
    showHome();
    keepSession(token);
    view_.showProductsMessage(Key("Products.Loading"));
    requestProducts(token, false);
    log_(LogLevel::Info, QStringLiteral("Quillmar login successful"));
}

void Account::showHome()
{
    view_.showHomeView();
    view_.refreshQuota();
    view_.showStatus(Tone::Success, Key("Status.LoginSuccess"));
}

void Account::keepSession(const QString &token)
{
    if (store_.save(token)) {
        return;
    }
    const bool removed = store_.remove();
    view_.showStatus(Tone::Failure, removed ? Key("Session.SaveFailed") : Key("Session.RemoveFailed"));
}

void Account::requestProducts(const QString &token, bool restoring)
{
    if (!isAttached()) {
        return;
    }
    view_.setRefreshEnabled(false);
    if (restoring) {
        view_.clearQuota();
        view_.showRestoringView();
        view_.showStatus(Tone::Progress, Key("Session.Restoring"));
    }
    whenFinishedInSession(
        network_->get(routes::products(token)),
        [this, token, restoring](QNetworkReply &reply) { handleProducts(reply, token, restoring); });
}

void Account::handleProducts(QNetworkReply &reply, const QString &token, bool restoring)
{
    view_.setRefreshEnabled(true);
    if (restoring) {
        view_.setSignInEnabled(true);
        view_.setRetryEnabled(true);
    }
    const ServiceReply read = readServiceReply(reply);
    if (read.isRefused()) {
        expireSession();
        return;
    }
    if (!hasProducts(read)) {
        productsFailed(read, restoring);
        return;
    }
    if (restoring) {
        session_.replace(token);
        showHome();
    }
    showProducts(read.object.value(Key("products")).toArray());
}

void Account::productsFailed(const ServiceReply &reply, bool restoring)
{
    if (!restoring) {
        view_.showProductsMessage(Key("Products.Failed"));
        return;
    }
    const bool isOffline = reply.status == 0 && reply.hasError();
    view_.showStatus(Tone::Failure, isOffline ? Key("Session.Offline") : Key("Session.RestoreFailed"));
}

void Account::showProducts(const QJsonArray &products)
{
    view_.setProducts(products);
    if (products.isEmpty()) {
        view_.showProductsMessage(Key("Products.Empty"));
    } else {
        view_.hideProductsMessage();
    }
}

void Account::refreshProducts()
{
    if (session_.isSignedIn()) {
        requestProducts(session_.token(), false);
    }
}

void Account::retryRestore()
{
    if (!isAttached()) {
        return;
    }
    const QString token = store_.load();
    if (!token.isEmpty()) {
        requestProducts(token, true);
        return;
    }
    view_.showSignInView();
    view_.showStatus(Tone::Failure, Key("Session.Expired"));
}

void Account::expireSession()
{
    if (!isAttached()) {
        return;
    }
    view_.clearQuota();
    session_.clear();
    const bool removed = store_.remove();
    view_.setProducts({});
    view_.showSignInView();
    view_.showStatus(Tone::Failure, removed ? Key("Session.Expired") : Key("Session.RemoveFailed"));
    view_.setLogoutEnabled(true);
    view_.setProductListEnabled(true);
}

void Account::signOut()
{
    if (!isAttached() || !session_.isSignedIn()) {
        return;
    }
    setSignOutControlsEnabled(false);
    view_.showStatus(Tone::Progress, Key("Logout.Progress"));
    whenFinishedInSession(network_->post(routes::logout(session_.token()), QByteArray()),
                          [this](QNetworkReply &reply) { handleSignOut(reply); });
}

void Account::handleSignOut(QNetworkReply &reply)
{
    setSignOutControlsEnabled(true);
    if (isSignedOut(readServiceReply(reply))) {
        leaveSession(reply);
    } else {
        view_.showStatus(Tone::Failure, Key("Logout.Failed"));
    }
}

void Account::leaveSession(const QNetworkReply &answer)
{
    session_.clear();
    view_.clearQuota();
    const bool removed = store_.remove();
    view_.setProducts({});
    view_.clearProductsMessage();
    abortAllExcept(answer);
    closeIdleConnections();
    view_.clearUsername();
    view_.showSignInView();
    view_.showStatus(removed ? Tone::Success : Tone::Failure,
                     removed ? Key("Logout.Success") : Key("Session.RemoveFailed"));
    view_.focusUsername();
}

void Account::abortAllExcept(const QNetworkReply &answer)
{
    // Their handlers run inside abort(), see a new generation and may end further replies.
    const QList<QPointer<QNetworkReply>> replies = runningReplies(*network_);
    for (const QPointer<QNetworkReply> &reply : replies) {
        if (reply && reply != &answer) {
            reply->abort();
        }
    }
}

/// An open connection keeps the bytes of its last request, and with them a password or a token, until the
/// next one. Closing would strand a reply that is still on the way.
void Account::closeIdleConnections()
{
    if (runningReplies(*network_).isEmpty()) {
        network_->clearConnectionCache();
    }
}

void Account::setSignOutControlsEnabled(bool enabled)
{
    view_.setLogoutEnabled(enabled);
    view_.setRefreshEnabled(enabled);
    view_.setProductListEnabled(enabled);
}

} // namespace quillmar
