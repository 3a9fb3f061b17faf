#pragma once

#include "service/account_view.h"

#include <QObject>
#include <QStringList>

namespace quillmar::test
{

/// A panel without widgets: remembers what it was told, and what would be on the screen because of it.
class RecordingView : public QObject, public AccountView
{
public:
    enum class Screen { SignIn, Home, Restoring };

    QObject *lifetime() override { return this; }
    QString username() const override { return usernameText; }
    QString password() const override { return passwordText; }
    void clearUsername() override;
    void focusUsername() override;
    void showSignInView() override;
    void showHomeView() override;
    void showRestoringView() override;
    void setSignInEnabled(bool enabled) override;
    void setRetryEnabled(bool enabled) override;
    void setRefreshEnabled(bool enabled) override;
    void setLogoutEnabled(bool enabled) override;
    void setProductListEnabled(bool enabled) override;
    void showStatus(Tone tone, QLatin1StringView key) override;
    void showProductsMessage(QLatin1StringView key) override;
    void hideProductsMessage() override;
    void clearProductsMessage() override;
    void setProducts(const QJsonArray &products) override;
    void refreshQuota() override;
    void clearQuota() override;

    QString usernameText = QStringLiteral("sara");
    QString passwordText = QStringLiteral("s3cret");
    Screen screen = Screen::SignIn;
    bool signInEnabled = true;
    bool retryVisible = false;
    bool retryEnabled = true;
    bool refreshEnabled = true;
    bool logoutEnabled = true;
    bool productListEnabled = true;
    QString status; ///< tone and key: "red Status.LoginFailed"
    QString productsMessage;
    bool productsMessageVisible = false;
    QJsonArray products;
    QStringList calls; ///< in order, with their arguments
};

} // namespace quillmar::test
