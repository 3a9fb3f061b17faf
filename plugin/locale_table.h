#pragma once

#include "obs/libobs.h"

#include <QString>

namespace quillmar
{

/// The one text-lookup table of the module. Loading drops the table before it. User-interface thread only.
class LocaleTable
{
public:
    LocaleTable() = default;
    ~LocaleTable() { clear(); }
    LocaleTable(const LocaleTable &) = delete;
    LocaleTable &operator=(const LocaleTable &) = delete;

    /// Loads the texts of `locale` over those of Persian, which serve where `locale` has none.
    void load(obs_module_t *module, const char *locale);

    void clear();

    /// False, with `*text` untouched, when no table is loaded or it has no entry. The text lives as long as
    /// the table.
    bool find(const char *key, const char **text) const;

private:
    lookup_t *table_ = nullptr;
};

} // namespace quillmar
