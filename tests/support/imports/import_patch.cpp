#include "tests/support/imports/import_patch.h"

#include <QtLogging>

#include <cstring>

namespace quillmar::test
{

namespace
{

template <typename T>
T *at(HMODULE module, DWORD offset)
{
    return reinterpret_cast<T *>(reinterpret_cast<char *>(module) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR *firstLibrary(HMODULE module)
{
    const auto *start = at<IMAGE_DOS_HEADER>(module, 0);
    const auto *headers = at<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(start->e_lfanew));
    const DWORD imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    return at<IMAGE_IMPORT_DESCRIPTOR>(module, imports);
}

bool isNamed(HMODULE module, const IMAGE_THUNK_DATA &import, const char *name)
{
    if (IMAGE_SNAP_BY_ORDINAL(import.u1.Ordinal))
        return false;
    const auto *found = at<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(import.u1.AddressOfData));
    return std::strcmp(reinterpret_cast<const char *>(found->Name), name) == 0;
}

/// Where `module` keeps the address of what it imports under `name`.
void **placeOf(HMODULE module, const char *name)
{
    for (const auto *library = firstLibrary(module); library->Name != 0; ++library) {
        const auto *import = at<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
        auto *address = at<IMAGE_THUNK_DATA>(module, library->FirstThunk);
        for (; import->u1.AddressOfData != 0; ++import, ++address) {
            if (isNamed(module, *import, name))
                return reinterpret_cast<void **>(&address->u1.Function);
        }
    }
    return nullptr;
}

/// The same by name; null as well when no such module is loaded.
void **placeIn(const wchar_t *module, const char *name)
{
    const HMODULE loaded = GetModuleHandleW(module);
    return loaded != nullptr ? placeOf(loaded, name) : nullptr;
}

void put(void **place, void *function)
{
    DWORD protection = 0;
    VirtualProtect(place, sizeof(void *), PAGE_READWRITE, &protection);
    *place = function;
    VirtualProtect(place, sizeof(void *), protection, &protection);
}

} // namespace

ImportPatch::ImportPatch(const wchar_t *module, const char *name, void *function)
    : place_(placeIn(module, name))
{
    if (place_ == nullptr)
        qFatal("%ls does not import %s", module == nullptr ? L"This program" : module, name);
    original_ = *place_;
    put(place_, function);
}

bool ImportPatch::isImported(const wchar_t *module, const char *name)
{
    return placeIn(module, name) != nullptr;
}

ImportPatch::~ImportPatch()
{
    put(place_, original_);
}

} // namespace quillmar::test
