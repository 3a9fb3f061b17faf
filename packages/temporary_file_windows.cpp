#include "packages/path_safety.h"
#include "packages/temporary_file.h"
#include "packages/windows_path.h"

#include <qt_windows.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

namespace quillmar
{

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace
{

constexpr qsizetype kMostBytesAtOnce = 1 << 30;

/// For how long a file that somebody holds is tried again: virus scanners and the other worker let go after a
/// moment.
constexpr auto kPatience = 250ms;
constexpr auto kPause = 10ms;

/// Folders from `folder` upwards that do not exist yet, deepest first.
QStringList missingFolders(QString folder)
{
    QStringList missing;
    while (!QFileInfo::exists(folder)) {
        missing.append(folder);
        const QString parent = QFileInfo(folder).absolutePath();
        if (parent == folder)
            break;
        folder = parent;
    }
    return missing;
}

/// A folder, or a file that this user may not write, stays what it is.
bool mayReplace(const QString &target)
{
    const DWORD attributes = GetFileAttributesW(qUtf16Printable(extendedLengthPath(target)));
    return attributes == INVALID_FILE_ATTRIBUTES ||
           (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) == 0;
}

QString newNameBeside(const QString &target)
{
    const QString folder = QFileInfo(target).absolutePath();
    const quint64 number = QRandomGenerator::global()->generate64();
    return QString(folder + u"/.quillmar-"_s + QString::number(number, 16));
}

/// What the system takes for a new name: a head and, directly behind its fields, the characters.
std::vector<std::byte> renameRequest(const QString &target)
{
    const QString name = extendedLengthPath(target);
    const auto length = static_cast<std::size_t>(name.size()) * sizeof(WCHAR);
    std::vector<std::byte> request(sizeof(FILE_RENAME_INFO) + length);
    auto *info = reinterpret_cast<FILE_RENAME_INFO *>(request.data());
    info->ReplaceIfExists = TRUE;
    info->FileNameLength = static_cast<DWORD>(length);
    std::copy_n(qUtf16Printable(name), name.size(), info->FileName);
    return request;
}

bool isHeldBySomebody(DWORD error)
{
    return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
}

} // namespace

struct TemporaryFile::State {
    QString root;
    QString target;
    HANDLE file = INVALID_HANDLE_VALUE;

    void close()
    {
        CloseHandle(file);
        file = INVALID_HANDLE_VALUE;
    }
};

TemporaryFile::TemporaryFile(const QString &root, const QString &target)
    : state_(std::make_unique<State>(root, target))
{
}

TemporaryFile::~TemporaryFile()
{
    remove();
}

bool TemporaryFile::prepareFolder(QStringList &created)
{
    if (!isInsideRoot(state_->root, state_->target))
        return false;
    const QString folder = QFileInfo(state_->target).absolutePath();
    created = missingFolders(folder) + created;
    // Tried twice: a download that gave up may remove an empty parent between two of the steps.
    if (!QDir().mkpath(folder) && !QDir().mkpath(folder))
        return false;
    return isInsideRoot(state_->root, state_->target);
}

/// Under a name of its own that nobody can know, so that there is never a link to follow.
bool TemporaryFile::open()
{
    if (!mayReplace(state_->target))
        return false;
    const QString path = extendedLengthPath(newNameBeside(state_->target));
    state_->file = CreateFileW(qUtf16Printable(path), GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr,
                               CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    return isOpen();
}

bool TemporaryFile::isOpen() const
{
    return state_->file != INVALID_HANDLE_VALUE;
}

bool TemporaryFile::write(QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const auto count = static_cast<DWORD>(std::min(bytes.size(), kMostBytesAtOnce));
        DWORD written = 0;
        if (!WriteFile(state_->file, bytes.data(), count, &written, nullptr) || written == 0)
            return false;
        bytes = bytes.sliced(written);
    }
    return true;
}

/// The new name replaces a link that appeared in the target's place, instead of following it.
bool TemporaryFile::replaceTarget()
{
    std::vector<std::byte> request = renameRequest(state_->target);
    if (!FlushFileBuffers(state_->file))
        return false;
    const QDeadlineTimer deadline(kPatience);
    while (!SetFileInformationByHandle(state_->file, FileRenameInfo, request.data(),
                                       static_cast<DWORD>(request.size()))) {
        if (!isHeldBySomebody(GetLastError()) || deadline.hasExpired() || !mayReplace(state_->target))
            return false;
        QThread::sleep(kPause);
    }
    state_->close();
    return true;
}

void TemporaryFile::remove()
{
    if (!isOpen())
        return;
    FILE_DISPOSITION_INFO disposition = {TRUE};
    SetFileInformationByHandle(state_->file, FileDispositionInfo, &disposition, sizeof disposition);
    state_->close();
}

bool makeFolder(const QString &root, const QString &folder)
{
    return isInsideRoot(root, folder) && QDir().mkpath(folder);
}

void removeEmptyFolder(const QString &folder)
{
    QDir().rmdir(folder);
}

} // namespace quillmar
