#include "plugin/plugin_module.h"

#include "catalogue/direct_download.h"
#include "catalogue/product_list.h"
#include "catalogue/product_previews.h"
#include "obs/obs_handles.h"
#include "packages/product_downloads.h"
#include "plugin/locale_table.h"
#include "plugin/plugin_log.h"
#include "service/account.h"
#include "service/quota_status.h"
#include "service/update_checker.h"
#include "ui/dock_panel.h"
#include "ui/language_preference.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QImageReader>
#include <QNetworkAccessManager>
#include <QSslSocket>

namespace quillmar
{

namespace
{

constexpr char DockId[] = "quillmar-dock";
constexpr char DockTitle[] = "Quillmar";

void writeLog(LogLevel level, const QString &line)
{
    pluginLog(level, "%s", line.toUtf8().constData());
}

} // namespace

PluginModule::PluginModule(obs_module_t *handle, LocaleTable &locale, std::unique_ptr<SessionStore> store)
    : handle_(handle),
      locale_(locale),
      log_(writeLog),
      localisation_(
          [this](const char *key, const char **text) { return locale_.find(key, text); },
          [this](const QString &language) { locale_.load(handle_, language.toUtf8().constData()); }),
      store_(std::move(store))
{
}

PluginModule::~PluginModule()
{
    // Without an application there is nothing left that a widget could be taken from.
    if (!isDockAdded_ && QCoreApplication::instance() != nullptr) {
        delete downloads_;
        delete directDownloads_;
        delete panel_;
    }
}

bool PluginModule::load()
{
    pluginLog(LogLevel::Info, "plugin loaded successfully (version %s)", QUILLMAR_VERSION);
    settingsPath_ = ObsString(obs_module_get_config_path(handle_, "settings.ini")).text();
    applySavedLanguage();
    buildPanel();
    buildQuota();
    buildPreviews();
    buildDownloads();
    buildDirectDownloads();
    buildCatalogue();
    buildUpdateChecker();
    connectPanel();
    if (!registerDock()) {
        return false;
    }
    if (updateChecker_) {
        updateChecker_->scheduleStart();
    }
    restoreSession();
    return true;
}

void PluginModule::unload()
{
    delete downloads_;
    delete directDownloads_;
    delete previews_;
    delete updateChecker_;
    // At a normal exit OBS has destroyed the panel already, and with it the dock.
    if (panel_) {
        obs_frontend_remove_dock(DockId);
    }
    session_.clear();
    pluginLog(LogLevel::Info, "plugin unloaded");
}

void PluginModule::applySavedLanguage()
{
    localisation_.setLanguage(loadLanguage(settingsPath_));
}

/// Plug-ins of Qt that OBS does not ship lie beside the module.
void PluginModule::addLibraryPath() const
{
    const char *binary = obs_get_module_binary_path(handle_);
    if (binary == nullptr) {
        return;
    }
    const QString folder = QFileInfo(QString::fromUtf8(binary)).absolutePath();
    QCoreApplication::addLibraryPath(folder);
    pluginLog(LogLevel::Info, "Qt plugin path added: %s", folder.toUtf8().constData());
}

void PluginModule::buildPanel()
{
    panel_ = new DockPanel(localisation_);
    addLibraryPath();
    if (!QSslSocket::supportsSsl()) {
        pluginLog(LogLevel::Warning, "Qt has no TLS back-end here: the service cannot be reached");
    }
    network_ = new QNetworkAccessManager(panel_);
    account_ = new Account(session_, *store_, *panel_, network_, log_, panel_);
}

void PluginModule::buildQuota()
{
    quota_ = new QuotaStatus(session_, network_, localisation_, panel_);
    const auto call = [quota = quota_](void (QuotaStatus::*function)()) {
        return [quota, function] {
            if (quota) {
                (quota.data()->*function)();
            }
        };
    };
    panel_->setQuota(quota_, {.refresh = call(&QuotaStatus::refresh),
                              .clear = call(&QuotaStatus::clear),
                              .updateText = call(&QuotaStatus::updateText)});
}

void PluginModule::buildPreviews()
{
    if (!QImageReader::supportedImageFormats().contains("webp")) {
        pluginLog(LogLevel::Warning, "Qt has no WebP plug-in here: previews in that format are not shown");
    }
    previews_ = new ProductPreviews(panel_);
}

void PluginModule::buildDownloads()
{
    downloads_ = new ProductDownloads(network_, QString());
    downloads_->setCallbacks({
        .token = [this] { return session_.token(); },
        .generation = [this] { return session_.generation(); },
        .sessionExpired = [this] { expireSession(); },
        .quotaChanged = [this] { refreshQuota(); },
    });
    quota_->setSessionExpired([this] { expireSession(); });
}

void PluginModule::buildDirectDownloads()
{
    directDownloads_ = new DirectDownloads({network_, localisation_, [this] { return session_.token(); },
                                            [this] { return session_.generation(); }, log_});
}

void PluginModule::buildCatalogue()
{
    CatalogueServices services{localisation_, downloads_, previews_};
    services.startDirectDownload =
        [direct = directDownloads_](QPushButton *button, QLabel *status, const QString &productKey,
                                    std::function<void()> quotaUsed, qint64 fileSize) {
            if (direct)
                direct->startDirectDownload(button, status, productKey, std::move(quotaUsed), fileSize);
        };
    panel_->setProductList(new ProductList(std::move(services), [this] { refreshQuota(); }));
}

void PluginModule::buildUpdateChecker()
{
    updateChecker_ = new UpdateChecker(panel_, QStringLiteral(QUILLMAR_VERSION), settingsPath_);
    updateChecker_->setResultCallback([panel = panel_](const UpdateInfo &info, bool available) {
        if (panel) {
            panel->showUpdate(info, available);
        }
    });
    updateChecker_->setLogCallback([this](const QString &message) { log_(LogLevel::Warning, message); });
}

void PluginModule::connectPanel()
{
    panel_->enableLanguageSwitch(settingsPath_, log_);
    panel_->retranslate();
    QObject::connect(panel_, &DockPanel::signInRequested, account_, &Account::signIn);
    QObject::connect(panel_, &DockPanel::signOutRequested, account_, &Account::signOut);
    QObject::connect(panel_, &DockPanel::retryRequested, account_, &Account::retryRestore);
    QObject::connect(panel_, &DockPanel::refreshRequested, account_, &Account::refreshProducts);
}

bool PluginModule::registerDock()
{
    isDockAdded_ = obs_frontend_add_dock_by_id(DockId, DockTitle, panel_.data());
    if (!isDockAdded_) {
        pluginLog(LogLevel::Error, "Failed to add Quillmar dock");
        return false;
    }
    pluginLog(LogLevel::Info, "Quillmar dock added successfully");
    return true;
}

void PluginModule::restoreSession()
{
    const QString token = store_->load();
    if (token.isEmpty()) {
        return;
    }
    panel_->setSignInEnabled(false);
    account_->requestProducts(token, true);
}

void PluginModule::expireSession()
{
    if (account_) {
        account_->expireSession();
    }
}

void PluginModule::refreshQuota()
{
    if (quota_) {
        quota_->refresh();
    }
}

} // namespace quillmar
