#include "tests/unit/catalogue/closed_folder.h"

#include <QFile>

#include <unistd.h>

namespace quillmar::test
{

/// Nothing is read-only for root, who gets a folder of the kernel's that takes no files instead.
ClosedFolder::ClosedFolder(const QString &folder)
    : folder_(folder), path_(geteuid() == 0 ? QStringLiteral("/proc/self/Quillmar") : folder)
{
    if (!QFile::setPermissions(folder_, QFile::ReadOwner | QFile::ExeOwner))
        qFatal("%ls cannot be closed", qUtf16Printable(folder_));
}

ClosedFolder::~ClosedFolder()
{
    QFile::setPermissions(folder_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace quillmar::test
