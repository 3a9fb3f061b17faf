#pragma once

#include "service/account_view.h"
#include "service/log_function.h"
#include "service/update_info.h"
#include "ui/dock_widgets.h"

#include <QPointer>
#include <QWidget>

#include <functional>

class QLabel;

namespace quillmar
{

class Localisation;
class ProductList;

/// The one widget that the module adds to OBS: a sign-in view and a home view in one column, shown and hidden
/// widget by widget, below the language selector and the update banner.
///
/// Shows what it is told and reports clicks; it knows no service. The product list and the quota display are
/// put in once, after construction, and then belong to the panel. Threads: the user-interface thread.
class DockPanel : public QWidget, public AccountView
{
    Q_OBJECT

public:
    /// What the panel asks of the quota display. An empty function is skipped.
    struct QuotaHooks {
        std::function<void()> refresh;    ///< fetch and show
        std::function<void()> clear;      ///< forget and hide
        std::function<void()> updateText; ///< show again in the current language
    };

    /// Starts in the sign-in view. Texts come with the first retranslate(). `localisation` outlives the
    /// panel.
    explicit DockPanel(Localisation &localisation, QWidget *parent = nullptr);
    ~DockPanel() override;

    /// Puts `list` at the foot of the column, hidden.
    void setProductList(ProductList *list);

    /// Puts `quota` in its place above the refresh button, hidden.
    void setQuota(QLabel *quota, QuotaHooks hooks);

    /// From now on the selector switches the language, and the choice is saved at `settingsPath` unless that
    /// is empty. A choice that cannot be saved stands for this run; `log` then gets a warning.
    void enableLanguageSwitch(const QString &settingsPath, LogFunction log);

    /// Shows every text again in the current language and turns the layout its way.
    void retranslate();

    /// Hands the outcome of an update check to the banner.
    void showUpdate(const UpdateInfo &info, bool available);

    QObject *lifetime() override;
    QString username() const override;
    QString password() const override;
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

Q_SIGNALS:
    void signInRequested();
    void signOutRequested();
    void retryRequested();
    void refreshRequested();

private:
    void connectButtons();
    void setSignInVisible(bool visible);
    void setHomeVisible(bool visible);
    void turnLayout();
    void retranslateLabel(QLabel *label, Qt::Alignment extraAlignment);
    void retranslateTexts();
    void switchLanguage();
    void saveLanguageChoice();

    Localisation &localisation_;
    DockWidgets widgets_;
    QPointer<ProductList> productList_;
    QuotaHooks quota_;
    QString settingsPath_;
    LogFunction log_;
};

} // namespace quillmar
