#include "tests/support/wine/unix_side.h"

#include <qt_windows.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QThread>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr int kDeadlineMs = 30'000;

} // namespace

bool isWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

QString unixPath(const QString &path)
{
    using GetUnixName = char *(CDECL *)(const WCHAR *);
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name");
    const auto getUnixName = reinterpret_cast<GetUnixName>(reinterpret_cast<void *>(found));
    char *name = getUnixName(qUtf16Printable(QDir::toNativeSeparators(path)));
    const QString result = QString::fromUtf8(name);
    HeapFree(GetProcessHeap(), 0, name);
    return result;
}

bool runUnixProgram(const QString &name, const QStringList &arguments, const std::function<bool()> &isDone)
{
    QProcess::startDetached(u"Z:/usr/bin/"_s + name, arguments);
    const QDeadlineTimer deadline(kDeadlineMs);
    while (!isDone() && !deadline.hasExpired())
        QThread::yieldCurrentThread();
    return isDone();
}

bool makeUnixLink(const QString &target, const QString &path)
{
    return runUnixProgram(u"ln"_s, {u"-s"_s, u"-n"_s, unixPath(target), unixPath(path)},
                          [&path] { return QFileInfo::exists(path); });
}

} // namespace quillmar::test
