#include "plugin/locale_table.h"
#include "plugin/plugin_module.h"
#include "service/session_file.h"

#include "obs/libobs.h"
#include "obs/obs_handles.h"

#include <obs-module.h>

#include <memory>

namespace
{

/// What OBS hands over before the module is loaded, and the module itself from then on.
struct ModuleState {
    obs_module_t *handle = nullptr;
    quillmar::LocaleTable locale;
    std::unique_ptr<quillmar::PluginModule> plugin;
};

ModuleState &state()
{
    static ModuleState instance;
    return instance;
}

/// The session lies beside the settings; without a folder of configuration nothing is kept.
std::unique_ptr<quillmar::SessionStore> makeSessionStore()
{
    const QString path =
        quillmar::ObsString(obs_module_get_config_path(state().handle, "session.dpapi")).text();
    return std::make_unique<quillmar::SessionFile>(path, quillmar::makeTokenProtection());
}

} // namespace

MODULE_EXPORT void obs_module_set_pointer(obs_module_t *module);
MODULE_EXPORT uint32_t obs_module_ver();

void obs_module_set_pointer(obs_module_t *module)
{
    state().handle = module;
}

uint32_t obs_module_ver()
{
    // The oldest OBS that has everything the module calls: 31.1.1.
    return 0x1F010001;
}

void obs_module_set_locale(const char *locale)
{
    state().locale.load(state().handle, locale);
}

void obs_module_free_locale()
{
    state().locale.clear();
}

bool obs_module_get_string(const char *key, const char **text)
{
    return state().locale.find(key, text);
}

bool obs_module_load()
{
    state().plugin =
        std::make_unique<quillmar::PluginModule>(state().handle, state().locale, makeSessionStore());
    return state().plugin->load();
}

void obs_module_unload()
{
    if (state().plugin) {
        state().plugin->unload();
        state().plugin.reset();
    }
}
