#include "tests/unit/packages/second_drive.h"

#include "tests/support/wine/unix_side.h"

#include <qt_windows.h>

#include <QDir>
#include <QFileInfo>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QString freeLetter()
{
    const DWORD used = GetLogicalDrives();
    for (int letter = 'D'; letter < 'Z'; ++letter) {
        if ((used & (1U << (letter - 'A'))) == 0)
            return QChar(letter) + u":"_s;
    }
    return {};
}

/// Under Wine a drive is a link in a folder of the user's; `C:` tells where that folder is.
QString wineDrive(const QString &name)
{
    QString drive = unixPath(u"C:/"_s);
    while (drive.endsWith(u'/'))
        drive.chop(1);
    return drive.chopped(2) + name.toLower();
}

} // namespace

SecondDrive::SecondDrive(const QString &folder)
    : folder_(QDir::toNativeSeparators(folder)), name_(freeLetter())
{
    if (isWine())
        runUnixProgram(u"ln"_s, {u"-s"_s, unixPath(folder), wineDrive(name_)}, [this] { return exists(); });
    else
        DefineDosDeviceW(0, qUtf16Printable(name_), qUtf16Printable(folder_));
    if (!exists())
        name_.clear();
}

SecondDrive::~SecondDrive()
{
    if (isWine())
        runUnixProgram(u"rm"_s, {wineDrive(name_)}, [this] { return !exists(); });
    else
        DefineDosDeviceW(DDD_REMOVE_DEFINITION | DDD_EXACT_MATCH_ON_REMOVE, qUtf16Printable(name_),
                         qUtf16Printable(folder_));
}

bool SecondDrive::exists() const
{
    return QFileInfo::exists(name_ + u'/');
}

} // namespace quillmar::test
