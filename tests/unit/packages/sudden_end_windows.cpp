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

// An imported function has no address that a template could take.
auto *createFile = &CreateFileW;
auto *writeFile = &WriteFile;
auto *flushFile = &FlushFileBuffers;
auto *renameFile = &SetFileInformationByHandle;
auto *closeHandle = &CloseHandle;
auto *createFolder = &CreateDirectoryW;

std::optional<ImportPatch> ofQt;
std::optional<ImportPatch> ofThisProgram;

template <auto function>
void countCalls(const char *name)
{
    if (qEnvironmentVariable(SuddenEndCall.data()) != QLatin1StringView(name))
        return;
    ofQt.emplace(QtCoreModule, name, &Counted<function>::call);
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
