#include "plugin/locale_table.h"

#include "ui/localisation.h"

namespace quillmar
{

void LocaleTable::load(obs_module_t *module, const char *locale)
{
    clear();
    table_ = obs_module_load_locale(module, PersianCode.data(), locale);
}

void LocaleTable::clear()
{
    text_lookup_destroy(table_);
    table_ = nullptr;
}

bool LocaleTable::find(const char *key, const char **text) const
{
    return table_ != nullptr && text_lookup_getstr(table_, key, text);
}

} // namespace quillmar
