#include <qt_windows.h>

#include <QCoreApplication>
#include <QDir>

#include <cstdio>

/// Holds a file open, as a virus scanner or a player does, until its input ends.
///
///     file_holder exclusively|reading FILE
///
/// Says "held" once it does. "reading" lets others read meanwhile, but neither write nor replace the file.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return 2;
    const DWORD sharing = arguments[1] == QLatin1StringView("reading") ? FILE_SHARE_READ : 0;
    const QString path = QDir::toNativeSeparators(arguments[2]);
    const HANDLE file =
        CreateFileW(qUtf16Printable(path), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return 1;
    std::puts("held");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    CloseHandle(file);
    return 0;
}
