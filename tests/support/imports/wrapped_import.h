#pragma once

#include "tests/support/imports/import_patch.h"

#include <memory>
#include <optional>
#include <utility>

namespace quillmar::test
{

/// While it lives, `wrapper(real, arguments...)` is called in place of a function that a module imports, and
/// decides whether the real one is called. One instance per type of wrapper at a time.
template <typename Wrapper, typename Result, typename... Arguments>
class WrappedImport
{
public:
    using Real = Result(WINAPI *)(Arguments...);

    WrappedImport(const wchar_t *module, const char *name, Real real, Wrapper wrapper)
        : real_(real), wrapper_(std::move(wrapper))
    {
        current = this;
        patch_.emplace(module, name, &call);
    }
    ~WrappedImport()
    {
        patch_.reset();
        current = nullptr;
    }
    Q_DISABLE_COPY_MOVE(WrappedImport)

private:
    static Result WINAPI call(Arguments... arguments)
    {
        return current->wrapper_(current->real_, arguments...);
    }

    static inline WrappedImport *current = nullptr;

    Real real_;
    Wrapper wrapper_;
    std::optional<ImportPatch> patch_;
};

/// Wraps until the result is given up. `module` is a DLL, or null for the program itself.
template <typename Result, typename... Arguments, typename Wrapper>
[[nodiscard]] std::shared_ptr<void> wrapImport(const wchar_t *module, const char *name,
                                               Result(WINAPI *real)(Arguments...), Wrapper wrapper)
{
    return std::make_shared<WrappedImport<Wrapper, Result, Arguments...>>(module, name, real,
                                                                          std::move(wrapper));
}

} // namespace quillmar::test
