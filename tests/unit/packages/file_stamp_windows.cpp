#include "tests/unit/packages/file_tree.h"

#include <qt_windows.h>

#include <QDir>

namespace quillmar::test
{

QByteArray fileStamp(const QString &path)
{
    const HANDLE file = CreateFileW(qUtf16Printable(QDir::toNativeSeparators(path)), 0, FILE_SHARE_READ,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    BY_HANDLE_FILE_INFORMATION status = {};
    const bool isKnown = GetFileInformationByHandle(file, &status) != FALSE;
    CloseHandle(file);
    if (!isKnown)
        return {};
    return QByteArray::number(status.nFileIndexHigh) + ' ' + QByteArray::number(status.nFileIndexLow) + ' ' +
           QByteArray::number(status.ftLastWriteTime.dwHighDateTime) + ' ' +
           QByteArray::number(status.ftLastWriteTime.dwLowDateTime);
}

} // namespace quillmar::test
