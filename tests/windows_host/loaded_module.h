#pragma once

#include "tests/support/libobs_fake/libobs_fake.h"

#include <QString>

namespace quillmar::test
{

/// The module's DLL, loaded and driven in OBS's order. Like OBS it never lets go of the DLL.
class LoadedModule
{
public:
    /// Loads the DLL at `path`, whose own folder is searched first for what it needs; then hands over the
    /// module's handle and OBS's own language. Ends the program when the DLL cannot be used.
    explicit LoadedModule(const QString &path);

    quint32 version() const { return version_(); }

    /// The text of `key` in the language of the module; a null array when it has none.
    QByteArray text(const char *key) const;

    bool load() { return load_(); }

    /// Frees the texts and unloads, in this order.
    void unload();

private:
    bool (*load_)() = nullptr;
    void (*unload_)() = nullptr;
    void (*freeLocale_)() = nullptr;
    quint32 (*version_)() = nullptr;
    bool (*getString_)(const char *key, const char **text) = nullptr;
    int handle_ = 0; ///< what the module's handle points to: something that nobody looks at
};

} // namespace quillmar::test
