#include "tests/support/libobs_fake/libobs_fake.h"

using namespace Qt::StringLiterals;
using quillmar::test::LibobsFake;

void bfree(void *memory)
{
    LibobsFake::instance().freeString(memory);
}

void blogva(int level, const char *format, std::va_list arguments)
{
    LibobsFake::instance().appendLog(level, QString::vasprintf(format, arguments));
}

lookup_t *obs_module_load_locale(obs_module_t *module, const char *defaultLocale, const char *locale)
{
    Q_UNUSED(module)
    return LibobsFake::instance().newLookup(defaultLocale, locale);
}

bool text_lookup_getstr(lookup_t *lookup, const char *key, const char **text)
{
    const auto found = lookup->texts.constFind(key);
    if (found == lookup->texts.constEnd()) {
        return false;
    }
    *text = found->constData();
    return true;
}

void text_lookup_destroy(lookup_t *lookup)
{
    // Nothing to destroy is no call that matters, even when the program ends and there is no OBS any more.
    if (lookup != nullptr) {
        LibobsFake::instance().destroyLookup(lookup);
    }
}

char *obs_module_get_config_path(obs_module_t *module, const char *file)
{
    Q_UNUSED(module)
    LibobsFake &fake = LibobsFake::instance();
    return fake.configFolder().isNull() ? nullptr : fake.newString(fake.configFolder() + '/' + file);
}

const char *obs_get_module_binary_path(obs_module_t *module)
{
    Q_UNUSED(module)
    const QByteArray &path = LibobsFake::instance().moduleBinary();
    return path.isNull() ? nullptr : path.constData();
}
