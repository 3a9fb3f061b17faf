#include "packages/path_safety.h"
#include "packages/temporary_file.h"

#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace quillmar
{

using namespace Qt::StringLiterals;

namespace
{

constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr mode_t kFolderMode = 0777; ///< less what the user's mask takes away
constexpr mode_t kFileMode = 0666;
constexpr mode_t kPermissions = 0777;

class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor()
    {
        if (isOpen())
            ::close(number_);
    }
    Q_DISABLE_COPY(Descriptor)

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

private:
    int number_ = -1;
};

/// The kernel refuses links itself since 5.6; not open where it cannot, or when a part of the path is
/// missing.
Descriptor openAtOnce(const QString &folder)
{
    open_how how = {};
    how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_NO_SYMLINKS;
    const QByteArray path = QFile::encodeName(folder);
    return Descriptor(
        static_cast<int>(::syscall(SYS_openat2, AT_FDCWD, path.constData(), &how, sizeof(how))));
}

/// Folder by folder from the top, each below the one that is already held, so that none can be exchanged for
/// a link on the way. Missing ones are created where there is a list to note them in, deepest first.
Descriptor openStepByStep(const QString &folder, QStringList *created)
{
    Descriptor held(::open("/", kFolderFlags));
    QString path;
    for (const QString &name : folder.split(u'/', Qt::SkipEmptyParts)) {
        path += u'/' + name;
        const QByteArray bytes = QFile::encodeName(name);
        Descriptor next(::openat(held.number(), bytes.constData(), kFolderFlags));
        if (!next.isOpen() && errno == ENOENT && created != nullptr) {
            if (::mkdirat(held.number(), bytes.constData(), kFolderMode) == 0)
                created->prepend(path);
            next = Descriptor(::openat(held.number(), bytes.constData(), kFolderFlags));
        }
        if (!next.isOpen())
            return {};
        held = std::move(next);
    }
    return held;
}

/// Not open when any part of the path is a link, or is missing and not to be created.
Descriptor openFolder(const QString &folder, QStringList *created)
{
    if (Descriptor held = openAtOnce(folder); held.isOpen())
        return held;
    if (Descriptor held = openStepByStep(folder, created); held.isOpen())
        return held;
    // Once more: a download that gave up may have removed an empty folder between two steps.
    return errno == ENOENT ? openStepByStep(folder, created) : Descriptor();
}

QByteArray nameOf(const QString &path)
{
    return QFile::encodeName(path.sliced(path.lastIndexOf(u'/') + 1));
}

QString folderOf(const QString &path)
{
    return path.first(std::max<qsizetype>(path.lastIndexOf(u'/'), 1));
}

QByteArray newName()
{
    return ".quillmar-" + QByteArray::number(QRandomGenerator::global()->generate64(), 16);
}

/// Another process may have taken the file away meanwhile, as it does with a record that it renews.
bool mayWriteOver(const Descriptor &folder, const QByteArray &name)
{
    return ::faccessat(folder.number(), name.constData(), W_OK, 0) == 0 || errno == ENOENT;
}

/// The way to a file that has no name yet.
QByteArray wayTo(const Descriptor &file)
{
    return "/proc/self/fd/" + QByteArray::number(file.number());
}

/// Some file systems have nothing to synchronise and say so with an error of their own.
bool isOnDisk(const Descriptor &file)
{
    return ::fdatasync(file.number()) == 0 || (errno != EIO && errno != ENOSPC && errno != EDQUOT);
}

} // namespace

struct TemporaryFile::State {
    QString target; ///< empty when it is outside the root
    QByteArray name;
    Descriptor folder; ///< of the target, as prepared last
    Descriptor file;
    Descriptor home;      ///< folder of a file that has a name
    QByteArray temporary; ///< that name; empty on file systems that know files without one

    bool link(const QByteArray &as) const
    {
        return ::linkat(AT_FDCWD, wayTo(file).constData(), folder.number(), as.constData(),
                        AT_SYMLINK_FOLLOW) == 0;
    }

    bool rename(const Descriptor &from, const QByteArray &as) const
    {
        return ::renameat(from.number(), as.constData(), folder.number(), name.constData()) == 0;
    }

    /// Nothing takes the place of an existing file by linking, so that it goes over another name then.
    bool linkOverTarget() const
    {
        const QByteArray other = newName();
        if (!link(other))
            return false;
        if (rename(folder, other))
            return true;
        ::unlinkat(folder.number(), other.constData(), 0);
        return false;
    }
};

TemporaryFile::TemporaryFile(const QString &root, const QString &target) : state_(std::make_unique<State>())
{
    state_->target = pathBelowRoot(root, target);
    state_->name = nameOf(state_->target);
}

TemporaryFile::~TemporaryFile()
{
    remove();
}

bool TemporaryFile::prepareFolder(QStringList &created)
{
    State &s = *state_;
    if (s.target.isEmpty())
        return false;
    s.folder = openFolder(folderOf(s.target), &created);
    struct stat status = {};
    const bool isThere = ::fstatat(s.folder.number(), s.name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    return s.folder.isOpen() && !(isThere && S_ISLNK(status.st_mode));
}

bool TemporaryFile::open()
{
    State &s = *state_;
    struct stat old = {};
    const bool isThere = ::fstatat(s.folder.number(), s.name.constData(), &old, AT_SYMLINK_NOFOLLOW) == 0;
    if (isThere && (S_ISDIR(old.st_mode) || !mayWriteOver(s.folder, s.name)))
        return false;
    s.file = Descriptor(::openat(s.folder.number(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, kFileMode));
    if (!s.file.isOpen() && (errno == EOPNOTSUPP || errno == EISDIR || errno == ENOENT)) {
        s.temporary = newName();
        s.home = Descriptor(::openat(s.folder.number(), ".", kFolderFlags));
        s.file = Descriptor(::openat(s.folder.number(), s.temporary.constData(),
                                     O_CREAT | O_EXCL | O_RDWR | O_NOFOLLOW | O_CLOEXEC, kFileMode));
    }
    if (s.file.isOpen() && isThere && S_ISREG(old.st_mode))
        ::fchmod(s.file.number(), old.st_mode & kPermissions);
    return s.file.isOpen();
}

bool TemporaryFile::isOpen() const
{
    return state_->file.isOpen();
}

bool TemporaryFile::write(QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t count = ::write(state_->file.number(), bytes.data(), static_cast<size_t>(bytes.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        bytes = bytes.sliced(count);
    }
    return true;
}

bool TemporaryFile::replaceTarget()
{
    State &s = *state_;
    if (!isOnDisk(s.file))
        return false;
    const bool replaced = s.temporary.isEmpty() ? s.link(s.name) || (errno == EEXIST && s.linkOverTarget())
                                                : s.rename(s.home, s.temporary);
    if (replaced) {
        s.file = {};
        s.temporary.clear();
    }
    return replaced;
}

void TemporaryFile::remove()
{
    State &s = *state_;
    if (!s.temporary.isEmpty())
        ::unlinkat(s.home.number(), s.temporary.constData(), 0);
    s.temporary.clear();
    s.file = {};
}

bool makeFolder(const QString &root, const QString &folder)
{
    const QString path = pathBelowRoot(root, folder);
    QStringList created;
    return !path.isEmpty() && openFolder(path, &created).isOpen();
}

void removeEmptyFolder(const QString &folder)
{
    const Descriptor above = openFolder(folderOf(folder), nullptr);
    if (above.isOpen())
        ::unlinkat(above.number(), nameOf(folder).constData(), AT_REMOVEDIR);
}

} // namespace quillmar
