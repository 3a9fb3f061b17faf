#pragma once

#include <QJsonArray>
#include <QLatin1StringView>
#include <QObject>
#include <QString>

namespace quillmar
{

/// What the account state machine needs of the panel that shows it.
///
/// The panel has no opinion of its own: it shows what it is told, in the order in which it is told, and calls
/// nothing back before it returns. All texts are keys of the locale table. Threads: the user-interface thread
/// only.
class AccountView
{
public:
    /// Colour of the status line: white, green, red.
    enum class Tone { Progress, Success, Failure };

    virtual ~AccountView() = default;

    /// The object with which this view dies. The account guards every call with it.
    virtual QObject *lifetime() = 0;

    /// Texts of the fields exactly as typed.
    virtual QString username() const = 0;
    virtual QString password() const = 0;
    virtual void clearUsername() = 0;
    virtual void focusUsername() = 0;

    /// Shows the sign-in title row, both fields and the sign-in button, and enables that button. Hides the
    /// logout, refresh and retry buttons, the welcome label, the products message and the product list.
    /// Clears the password field.
    virtual void showSignInView() = 0;

    /// Hides the sign-in title row, both fields, the sign-in and retry buttons. Shows the welcome label, the
    /// logout button (and enables it), the refresh button and the product list. Clears the password field.
    /// Touches neither the quota nor the status line.
    virtual void showHomeView() = 0;

    /// Hides the sign-in title row, both fields and the sign-in button; shows the retry button, disabled.
    /// Clears the password field. Touches neither the quota nor the status line.
    virtual void showRestoringView() = 0;

    virtual void setSignInEnabled(bool enabled) = 0;
    virtual void setRetryEnabled(bool enabled) = 0;
    virtual void setRefreshEnabled(bool enabled) = 0;
    virtual void setLogoutEnabled(bool enabled) = 0;
    virtual void setProductListEnabled(bool enabled) = 0;

    /// Colours the status line, then shows the text of `key` in it.
    virtual void showStatus(Tone tone, QLatin1StringView key) = 0;

    /// Puts the text of `key` into the products message and shows it.
    virtual void showProductsMessage(QLatin1StringView key) = 0;

    /// Hides the products message; its text stays.
    virtual void hideProductsMessage() = 0;

    /// Hides the products message and forgets its text, so that a language switch does not bring it back.
    virtual void clearProductsMessage() = 0;

    /// Replaces the content of the product list.
    virtual void setProducts(const QJsonArray &products) = 0;

    /// Asks the quota display to fetch and show itself. The session of the new account is already in place.
    virtual void refreshQuota() = 0;

    /// Empties and hides the quota display.
    virtual void clearQuota() = 0;
};

} // namespace quillmar
