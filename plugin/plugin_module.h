#pragma once

#include "service/log_function.h"
#include "service/session.h"
#include "service/session_store.h"
#include "ui/localisation.h"

#include "obs/libobs.h"

#include <QPointer>

#include <memory>

class QNetworkAccessManager;

namespace quillmar
{

class Account;
class DirectDownloads;
class DockPanel;
class LocaleTable;
class ProductDownloads;
class ProductPreviews;
class QuotaStatus;
class UpdateChecker;

/// Everything between load and unload: builds the objects of the module, wires them, and takes them down.
///
/// The panel and its children belong to OBS once the dock is registered, and OBS destroys them before it
/// unloads the module when it closes; everything of theirs is held through guarded pointers. User-interface
/// thread only.
class PluginModule
{
public:
    /// `locale` outlives this object; `store` is where the session is kept between runs.
    PluginModule(obs_module_t *handle, LocaleTable &locale, std::unique_ptr<SessionStore> store);

    /// Takes a panel along that OBS never took over.
    ~PluginModule();

    PluginModule(const PluginModule &) = delete;
    PluginModule &operator=(const PluginModule &) = delete;

    /// Builds the panel, registers the dock, has the update check begin and takes up a kept session. False
    /// when OBS refuses the dock.
    bool load();

    /// Ends running work, then removes the dock. Waits for worker tasks.
    void unload();

private:
    void applySavedLanguage();
    void addLibraryPath() const;
    void buildPanel();
    void buildQuota();
    void buildPreviews();
    void buildDownloads();
    void buildDirectDownloads();
    void buildCatalogue();
    void buildUpdateChecker();
    void connectPanel();
    bool registerDock();
    void restoreSession();
    void expireSession();
    void refreshQuota();

    obs_module_t *handle_;
    LocaleTable &locale_;
    LogFunction log_;
    QString settingsPath_;
    Localisation localisation_;
    Session session_;
    std::unique_ptr<SessionStore> store_;
    QPointer<DockPanel> panel_;
    QPointer<QNetworkAccessManager> network_;
    QPointer<Account> account_;
    QPointer<QuotaStatus> quota_;
    QPointer<ProductPreviews> previews_;
    QPointer<ProductDownloads> downloads_;
    QPointer<UpdateChecker> updateChecker_;
    QPointer<DirectDownloads> directDownloads_;
    bool isDockAdded_ = false;
};

} // namespace quillmar
