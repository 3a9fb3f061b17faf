#include "tests/unit/packages/disk_limit.h"

#include "tests/support/imports/import_patch.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <optional>

namespace quillmar::test
{

namespace
{

std::atomic<qint64> room = 0;

/// The call itself, past what this program imports.
auto *const writeFile = reinterpret_cast<decltype(&WriteFile)>(
    reinterpret_cast<void *>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "WriteFile")));

/// Where the next byte goes; everything else that can be written to, such as a pipe, has no end.
qint64 positionIn(HANDLE file)
{
    LARGE_INTEGER position = {};
    const bool isOnDisk =
        GetFileType(file) == FILE_TYPE_DISK && SetFilePointerEx(file, {}, &position, FILE_CURRENT);
    return isOnDisk ? position.QuadPart : std::numeric_limits<qint64>::min() / 2;
}

/// As much as there is room for, then nothing.
BOOL WINAPI writeWithinLimit(HANDLE file, LPCVOID bytes, DWORD count, LPDWORD written,
                             LPOVERLAPPED overlapped)
{
    const qint64 left = std::max<qint64>(room - positionIn(file), 0);
    const auto fitting = static_cast<DWORD>(std::min<qint64>(left, count));
    if (fitting > 0 || count == 0)
        return writeFile(file, bytes, fitting, written, overlapped);
    *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

std::optional<ImportPatch> ofQt;
std::optional<ImportPatch> ofThisProgram;

} // namespace

DiskLimit::DiskLimit(qint64 bytes)
{
    room = bytes;
    ofQt.emplace(QtCoreModule, "WriteFile", &writeWithinLimit);
    // A program that writes by way of Qt alone imports no such call itself.
    if (ImportPatch::isImported(nullptr, "WriteFile"))
        ofThisProgram.emplace(nullptr, "WriteFile", &writeWithinLimit);
}

DiskLimit::~DiskLimit()
{
    ofThisProgram.reset();
    ofQt.reset();
}

} // namespace quillmar::test
