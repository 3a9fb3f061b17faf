#include "ui/dock_panel.h"

#include "catalogue/product_list.h"
#include "ui/announcement.h"
#include "ui/focus_ring.h"
#include "ui/language_preference.h"
#include "ui/localisation.h"
#include "ui/quillmar_line_edit.h"
#include "ui/styles.h"
#include "ui/update_banner.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

/// Narrowest dock that OBS may make of the panel, in pixels.
constexpr int MinimumPanelWidth = 300;

QLatin1StringView statusStyle(AccountView::Tone tone)
{
    switch (tone) {
    case AccountView::Tone::Progress:
        return "color: white;"_L1;
    case AccountView::Tone::Success:
        return "color: #55ff22;"_L1;
    case AccountView::Tone::Failure:
        return "color: #ff5555;"_L1;
    }
    Q_UNREACHABLE_RETURN({});
}

void callIfSet(const std::function<void()> &hook)
{
    if (hook)
        hook();
}

} // namespace

DockPanel::DockPanel(Localisation &localisation, QWidget *parent)
    : QWidget(parent), localisation_(localisation)
{
    setAttribute(Qt::WA_StyledBackground);
    setMinimumWidth(MinimumPanelWidth);
    setLayoutDirection(Qt::RightToLeft);
    setStyleSheet(styles::Dock);
    widgets_ = buildDockWidgets(this, localisation_);
    localisation_.setTranslatedText(widgets_.signInTitleLabel, "Login.Title"_L1);
    localisation_.setTranslatedText(widgets_.welcomeLabel, "Home.Welcome"_L1);
    connectButtons();
    new FocusRing(this);
}

DockPanel::~DockPanel() = default;

void DockPanel::connectButtons()
{
    const auto &w = widgets_;
    connect(w.signInButton, &QPushButton::clicked, this, &DockPanel::signInRequested);
    connect(w.usernameField, &QLineEdit::returnPressed, w.signInButton, &QPushButton::click);
    connect(w.passwordField, &QLineEdit::returnPressed, w.signInButton, &QPushButton::click);
    connect(w.logoutButton, &QPushButton::clicked, this, &DockPanel::signOutRequested);
    connect(w.retryButton, &QPushButton::clicked, this, &DockPanel::retryRequested);
    connect(w.refreshButton, &QPushButton::clicked, this, &DockPanel::refreshRequested);
}

void DockPanel::setProductList(ProductList *list)
{
    productList_ = list;
    list->hide();
    widgets_.column->insertWidget(widgets_.column->count() - 1, list, 1);
}

void DockPanel::setQuota(QLabel *quota, QuotaHooks hooks)
{
    quota_ = std::move(hooks);
    quota->hide();
    widgets_.column->insertWidget(widgets_.column->indexOf(widgets_.quotaLabel), quota);
    delete std::exchange(widgets_.quotaLabel, quota);
}

void DockPanel::enableLanguageSwitch(const QString &settingsPath, LogFunction log)
{
    settingsPath_ = settingsPath;
    log_ = std::move(log);
    connect(widgets_.languageSelector, &QComboBox::currentIndexChanged, this, &DockPanel::switchLanguage);
}

void DockPanel::switchLanguage()
{
    localisation_.setLanguage(widgets_.languageSelector->currentData().toString());
    retranslate();
    saveLanguageChoice();
}

void DockPanel::saveLanguageChoice()
{
    if (settingsPath_.isEmpty() || saveLanguage(settingsPath_, localisation_.language()))
        return;
    if (log_)
        log_(LogLevel::Warning, u"Could not save Quillmar language preference"_s);
}

void DockPanel::retranslate()
{
    widgets_.updateBanner->retranslate();
    turnLayout();
    retranslateLabel(widgets_.signInTitleLabel, Qt::AlignVCenter);
    retranslateLabel(widgets_.statusLabel, Qt::AlignVCenter | Qt::AlignAbsolute);
    retranslateLabel(widgets_.welcomeLabel, Qt::AlignVCenter | Qt::AlignAbsolute);
    retranslateLabel(widgets_.productsMessageLabel, Qt::AlignTop);
    retranslateTexts();
    if (productList_)
        productList_->retranslate();
    callIfSet(quota_.updateText);
    const QString languageLabel = localisation_.translate("Language.Label");
    widgets_.languageSelector->setAccessibleName(languageLabel);
    // On Unix a screen reader is given the chosen item in place of the name of a drop-down.
    widgets_.languageSelector->setAccessibleDescription(languageLabel);
    widgets_.languageSelector->setToolTip(languageLabel);
}

void DockPanel::turnLayout()
{
    const bool rightToLeft = localisation_.isRightToLeft();
    setLayoutDirection(localisation_.direction());
    widgets_.topRowLayout->setDirection(rightToLeft ? QBoxLayout::RightToLeft : QBoxLayout::LeftToRight);
    widgets_.logoutButton->setLayoutDirection(localisation_.direction());
    // The row holds a stretch and then the title, so the opposite direction puts the title at the reading
    // side.
    widgets_.signInTitleRow->setLayoutDirection(rightToLeft ? Qt::LeftToRight : Qt::RightToLeft);
}

void DockPanel::retranslateLabel(QLabel *label, Qt::Alignment extraAlignment)
{
    label->setLayoutDirection(localisation_.direction());
    label->setAlignment(localisation_.readingSide() | extraAlignment);
    localisation_.renderTranslatedText(label);
}

void DockPanel::retranslateTexts()
{
    const auto &w = widgets_;
    w.signInTitleLabel->setText(isolateBrandName(localisation_.translate("Login.Title")));
    w.welcomeLabel->setText(isolateBrandName(localisation_.translate("Home.Welcome")));
    const QString username = localisation_.translate("Login.Username");
    const QString password = localisation_.translate("Login.Password");
    w.usernameField->setPlaceholder(username);
    w.usernameField->setAccessibleName(username);
    w.passwordField->setPlaceholder(password);
    w.passwordField->setAccessibleName(password);
    w.signInButton->setText(localisation_.translate("Login.Button"));
    w.logoutButton->setText(localisation_.translate("Logout.Button"));
    w.refreshButton->setText(localisation_.translate("Gallery.Refresh"));
    w.refreshButton->setLayoutDirection(localisation_.direction());
    w.retryButton->setText(localisation_.translate("Session.Retry"));
}

void DockPanel::showUpdate(const UpdateInfo &info, bool available)
{
    widgets_.updateBanner->fill(info, available);
}

QObject *DockPanel::lifetime()
{
    return this;
}

QString DockPanel::username() const
{
    return widgets_.usernameField->text();
}

QString DockPanel::password() const
{
    return widgets_.passwordField->text();
}

void DockPanel::clearUsername()
{
    widgets_.usernameField->clear();
}

void DockPanel::focusUsername()
{
    widgets_.usernameField->setFocus();
}

void DockPanel::setSignInVisible(bool visible)
{
    widgets_.passwordField->clear();
    widgets_.signInTitleRow->setVisible(visible);
    widgets_.usernameField->setVisible(visible);
    widgets_.passwordField->setVisible(visible);
    widgets_.signInButton->setVisible(visible);
}

void DockPanel::setHomeVisible(bool visible)
{
    widgets_.welcomeLabel->setVisible(visible);
    widgets_.logoutButton->setVisible(visible);
    widgets_.refreshButton->setVisible(visible);
    if (productList_)
        productList_->setVisible(visible);
}

void DockPanel::showSignInView()
{
    setHomeVisible(false);
    widgets_.productsMessageLabel->hide();
    widgets_.retryButton->hide();
    setSignInVisible(true);
    widgets_.signInButton->setEnabled(true);
}

void DockPanel::showHomeView()
{
    setSignInVisible(false);
    widgets_.retryButton->hide();
    widgets_.logoutButton->setEnabled(true);
    setHomeVisible(true);
}

void DockPanel::showRestoringView()
{
    setSignInVisible(false);
    widgets_.retryButton->setEnabled(false);
    widgets_.retryButton->show();
}

void DockPanel::setSignInEnabled(bool enabled)
{
    widgets_.signInButton->setEnabled(enabled);
}

void DockPanel::setRetryEnabled(bool enabled)
{
    widgets_.retryButton->setEnabled(enabled);
}

void DockPanel::setRefreshEnabled(bool enabled)
{
    widgets_.refreshButton->setEnabled(enabled);
}

void DockPanel::setLogoutEnabled(bool enabled)
{
    widgets_.logoutButton->setEnabled(enabled);
}

void DockPanel::setProductListEnabled(bool enabled)
{
    if (productList_)
        productList_->setEnabled(enabled);
}

void DockPanel::showStatus(Tone tone, QLatin1StringView key)
{
    widgets_.statusLabel->setStyleSheet(statusStyle(tone));
    localisation_.setTranslatedText(widgets_.statusLabel, key);
    announce(widgets_.statusLabel);
}

void DockPanel::showProductsMessage(QLatin1StringView key)
{
    localisation_.setTranslatedText(widgets_.productsMessageLabel, key);
    widgets_.productsMessageLabel->show();
    announce(widgets_.productsMessageLabel);
}

void DockPanel::hideProductsMessage()
{
    widgets_.productsMessageLabel->hide();
}

void DockPanel::clearProductsMessage()
{
    widgets_.productsMessageLabel->hide();
    clearTranslatedText(widgets_.productsMessageLabel);
}

void DockPanel::setProducts(const QJsonArray &products)
{
    if (productList_)
        productList_->setProducts(products);
}

void DockPanel::refreshQuota()
{
    callIfSet(quota_.refresh);
}

void DockPanel::clearQuota()
{
    callIfSet(quota_.clear);
}

} // namespace quillmar
