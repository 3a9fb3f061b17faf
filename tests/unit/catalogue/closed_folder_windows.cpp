#include "tests/unit/catalogue/closed_folder.h"

#include <QDir>

#include <qt_windows.h>

#include <string>

#include <aclapi.h>

namespace quillmar::test
{

namespace
{

/// Lets everybody do everything in a folder, but for what is forbidden.
bool setRights(const QString &folder, DWORD forbidden)
{
    EXPLICIT_ACCESS_W entries[2] = {};
    for (EXPLICIT_ACCESS_W &entry : entries) {
        entry.grfInheritance = NO_INHERITANCE;
        entry.Trustee.TrusteeForm = TRUSTEE_IS_NAME;
        entry.Trustee.TrusteeType = TRUSTEE_IS_WELL_KNOWN_GROUP;
        entry.Trustee.ptstrName = const_cast<wchar_t *>(L"Everyone");
    }
    entries[0].grfAccessPermissions = forbidden;
    entries[0].grfAccessMode = DENY_ACCESS;
    entries[1].grfAccessPermissions = GENERIC_ALL;
    entries[1].grfAccessMode = GRANT_ACCESS;
    const ULONG skipped = forbidden == 0 ? 1 : 0;
    ACL *list = nullptr;
    if (SetEntriesInAclW(2 - skipped, entries + skipped, nullptr, &list) != ERROR_SUCCESS)
        return false;
    std::wstring name = QDir::toNativeSeparators(folder).toStdWString();
    const DWORD error = SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                              nullptr, list, nullptr);
    LocalFree(list);
    return error == ERROR_SUCCESS;
}

} // namespace

ClosedFolder::ClosedFolder(const QString &folder) : folder_(folder), path_(folder)
{
    if (!setRights(folder_, FILE_ADD_FILE | FILE_ADD_SUBDIRECTORY))
        qFatal("%ls cannot be closed", qUtf16Printable(folder_));
}

ClosedFolder::~ClosedFolder()
{
    setRights(folder_, 0);
}

} // namespace quillmar::test
