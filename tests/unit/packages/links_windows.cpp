#include "tests/unit/packages/links.h"

#include "tests/support/wine/unix_side.h"

#include <qt_windows.h>

#include <winioctl.h>

#include <QDir>
#include <QFileInfo>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr ULONG kJunctionTag = 0xA0000003; ///< IO_REPARSE_TAG_MOUNT_POINT

/// The head of what a junction consists of; two paths follow, each with a NUL at its end.
struct JunctionHead {
    ULONG tag;
    USHORT length; ///< in bytes, of everything behind `reserved`
    USHORT reserved;
    USHORT targetOffset;
    USHORT targetLength;
    USHORT nameOffset;
    USHORT nameLength;
};

class FolderHandle
{
public:
    explicit FolderHandle(const QString &path)
        : handle_(CreateFileW(qUtf16Printable(path), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS, nullptr))
    {
    }
    ~FolderHandle() { CloseHandle(handle_); }
    Q_DISABLE_COPY_MOVE(FolderHandle)

    HANDLE get() const { return handle_; }

private:
    HANDLE handle_;
};

QByteArray junctionTo(const QString &target)
{
    const QString native = QDir::toNativeSeparators(target);
    const QString full = u"\\??\\"_s + native;
    JunctionHead head = {};
    head.tag = kJunctionTag;
    head.targetLength = static_cast<USHORT>(full.size() * 2);
    head.nameOffset = static_cast<USHORT>(head.targetLength + 2);
    head.nameLength = static_cast<USHORT>(native.size() * 2);
    head.length = static_cast<USHORT>(8 + head.targetLength + 2 + head.nameLength + 2);
    const auto text = [](const QString &path) {
        return QByteArray(reinterpret_cast<const char *>(path.utf16()), (path.size() + 1) * 2);
    };
    return QByteArray(reinterpret_cast<const char *>(&head), sizeof head) + text(full) + text(native);
}

bool makeJunction(const QString &target, const QString &path)
{
    if (!QDir().mkdir(path))
        return false;
    const FolderHandle folder(QDir::toNativeSeparators(path));
    QByteArray junction = junctionTo(target);
    DWORD size = 0;
    return DeviceIoControl(folder.get(), FSCTL_SET_REPARSE_POINT, junction.data(),
                           static_cast<DWORD>(junction.size()), nullptr, 0, &size, nullptr) != FALSE;
}

} // namespace

bool makeLink(const QString &target, const QString &path)
{
    const QString absolute = QDir::cleanPath(QFileInfo(path).absoluteDir().absoluteFilePath(target));
    const QString folder = QFileInfo(absolute).isDir() ? absolute : QString(absolute + u".folder"_s);
    if (!QDir().mkpath(folder))
        return false;
    return (isWine() ? makeUnixLink(folder, path) : makeJunction(folder, path)) && isLink(path);
}

bool isLink(const QString &path)
{
    const QString full = u"\\\\?\\"_s + QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    const DWORD attributes = GetFileAttributesW(qUtf16Printable(full));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

} // namespace quillmar::test
