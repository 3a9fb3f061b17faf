#include "tests/windows_host/loaded_module.h"

#include <QDir>
#include <QFileInfo>

#include <windows.h>

namespace quillmar::test
{

namespace
{

HMODULE openLibrary(const QString &path)
{
    const QString folder = QDir::toNativeSeparators(QFileInfo(path).absolutePath());
    SetDllDirectoryW(reinterpret_cast<const wchar_t *>(folder.utf16()));
    const HMODULE library = LoadLibraryW(reinterpret_cast<const wchar_t *>(path.utf16()));
    const DWORD error = GetLastError();
    SetDllDirectoryW(nullptr);
    if (library == nullptr)
        qFatal("Windows error %lu at loading %ls", error, qUtf16Printable(path));
    return library;
}

template <typename Function>
void find(HMODULE library, const char *name, Function *&function)
{
    function = reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(library, name)));
    if (function == nullptr)
        qFatal("The module has no %s", name);
}

} // namespace

LoadedModule::LoadedModule(const QString &path)
{
    const HMODULE library = openLibrary(path);
    void (*setPointer)(obs_module_t *) = nullptr;
    void (*setLocale)(const char *) = nullptr;
    find(library, "obs_module_load", load_);
    find(library, "obs_module_set_pointer", setPointer);
    find(library, "obs_module_ver", version_);
    find(library, "obs_module_unload", unload_);
    find(library, "obs_module_set_locale", setLocale);
    find(library, "obs_module_free_locale", freeLocale_);
    find(library, "obs_module_get_string", getString_);
    setPointer(reinterpret_cast<obs_module_t *>(&handle_));
    setLocale("en-US");
}

QByteArray LoadedModule::text(const char *key) const
{
    const char *text = nullptr;
    return getString_(key, &text) ? QByteArray(text) : QByteArray();
}

void LoadedModule::unload()
{
    freeLocale_();
    unload_();
}

} // namespace quillmar::test
