// Linked into a program, has it die in the middle of its work when its environment says so.

#include "tests/support/imports/import_patch.h"
#include "tests/unit/packages/sudden_end.h"

#include <QString>

#include <optional>

namespace
{

using namespace quillmar::test;

int callsLeft = 0;

/// The call `function`, made as before, unless it is the last one.
template <auto function>
struct Counted;

template <typename Result, typename... Arguments, Result(WINAPI **function)(Arguments...)>
struct Counted<function> {
    static Result WINAPI call(Arguments... arguments)
    {
        if (--callsLeft == 0)
            TerminateProcess(GetCurrentProcess(), SuddenEndCode);
        return (*function)(arguments...);
    }
};

/// The call itself, past what this program imports.
template <typename Function>
Function *systemCall(const char *name)
{
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name);
    return reinterpret_cast<Function *>(reinterpret_cast<void *>(found));
}

auto *createFile = systemCall<decltype(CreateFileW)>("CreateFileW");
auto *writeFile = systemCall<decltype(WriteFile)>("WriteFile");
auto *flushFile = systemCall<decltype(FlushFileBuffers)>("FlushFileBuffers");
auto *renameFile = systemCall<decltype(SetFileInformationByHandle)>("SetFileInformationByHandle");
auto *closeHandle = systemCall<decltype(CloseHandle)>("CloseHandle");
auto *createFolder = systemCall<decltype(CreateDirectoryW)>("CreateDirectoryW");

std::optional<ImportPatch> ofQt;
std::optional<ImportPatch> ofThisProgram;

template <auto function>
void countCalls(const char *name)
{
    if (qEnvironmentVariable(SuddenEndCall.data()) != QLatin1StringView(name))
        return;
    ofQt.emplace(QtCoreModule, name, &Counted<function>::call);
    // Folders are made by Qt alone.
    if (QLatin1StringView(name) != QLatin1StringView("CreateDirectoryW"))
        ofThisProgram.emplace(nullptr, name, &Counted<function>::call);
}

[[maybe_unused]] const bool isSet = [] {
    callsLeft = qEnvironmentVariableIntValue(SuddenEndCount.data());
    countCalls<&createFile>("CreateFileW");
    countCalls<&writeFile>("WriteFile");
    countCalls<&flushFile>("FlushFileBuffers");
    countCalls<&renameFile>("SetFileInformationByHandle");
    countCalls<&closeHandle>("CloseHandle");
    countCalls<&createFolder>("CreateDirectoryW");
    return true;
}();

} // namespace
