#include "service/session_file.h"
#include "switched_protection.h"
#include "tests/support/imports/wrapped_import.h"

#include <QByteArray>
#include <QString>

#include <qt_windows.h>

using quillmar::test::QtCoreModule;
using quillmar::test::wrapImport;

namespace
{

constexpr UINT Killed = 9;

int callsLeft = 0;

/// Ends this process as if it were killed, just before the function would have been called for the last time.
template <typename Function>
std::shared_ptr<void> dieBefore(const char *name, Function *function)
{
    return wrapImport(QtCoreModule, name, function, [](auto *real, auto... arguments) {
        if (--callsLeft == 0) {
            TerminateProcess(GetCurrentProcess(), Killed);
        }
        return real(arguments...);
    });
}

std::shared_ptr<void> dieBeforeCall(const QByteArray &name)
{
    if (name == "CreateFileW") {
        return dieBefore("CreateFileW", &CreateFileW);
    }
    if (name == "WriteFile") {
        return dieBefore("WriteFile", &WriteFile);
    }
    if (name == "FlushFileBuffers") {
        return dieBefore("FlushFileBuffers", &FlushFileBuffers);
    }
    if (name == "SetFileInformationByHandle") {
        return dieBefore("SetFileInformationByHandle", &SetFileInformationByHandle);
    }
    return dieBefore("CloseHandle", &CloseHandle);
}

} // namespace

/// session_saver_dying FILE TOKEN FUNCTION NUMBER: saves the token, as a process that is killed before its
/// so-many'th call of a function of Windows.
int main(int argc, char **argv)
{
    if (argc != 5) {
        return 2;
    }
    quillmar::SessionFile store(QString::fromLocal8Bit(argv[1]),
                                std::make_unique<quillmar::test::SwitchedProtection>());
    callsLeft = QByteArray(argv[4]).toInt();
    const std::shared_ptr<void> death = dieBeforeCall(argv[3]);
    return store.save(QString::fromLocal8Bit(argv[2])) ? 0 : 1;
}
