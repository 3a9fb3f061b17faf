#pragma once

#include <qt_windows.h>

#include <QtTypes>

namespace quillmar::test
{

/// The library through which everything of this project reads and writes files.
inline constexpr const wchar_t *QtCoreModule = L"Qt6Core.dll";

/// While an instance lives, one loaded module calls another function than the one that it imports under a
/// name. Every other module of the process goes on as before. Ends the program when the module does not
/// import that name.
class ImportPatch
{
public:
    /// `function` has the signature and the calling convention of the one that it stands in for.
    template <typename Result, typename... Arguments>
    ImportPatch(const wchar_t *module, const char *name, Result(WINAPI *function)(Arguments...))
        : ImportPatch(module, name, reinterpret_cast<void *>(function))
    {
    }
    ~ImportPatch();

    /// Whether `module`, or this program where that is null, imports that name and can be patched.
    static bool isImported(const wchar_t *module, const char *name);
    Q_DISABLE_COPY_MOVE(ImportPatch)

private:
    ImportPatch(const wchar_t *module, const char *name, void *function);

    void **place_;
    void *original_;
};

} // namespace quillmar::test
