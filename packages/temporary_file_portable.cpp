#include "packages/path_safety.h"
#include "packages/temporary_file.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace quillmar
{

namespace
{

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

} // namespace

struct TemporaryFile::State {
    QString root;
    QString target;
    std::unique_ptr<QSaveFile> file;
};

TemporaryFile::TemporaryFile(const QString &root, const QString &target)
    : state_(std::make_unique<State>(root, target, nullptr))
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

bool TemporaryFile::open()
{
    state_->file = std::make_unique<QSaveFile>(state_->target);
    if (state_->file->open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return true;
    state_->file.reset();
    return false;
}

bool TemporaryFile::isOpen() const
{
    return state_->file != nullptr;
}

/// QSaveFile commits a file that lost its end to a full disk, so each count is compared here.
bool TemporaryFile::write(QByteArrayView bytes)
{
    return state_->file->write(bytes.data(), bytes.size()) == bytes.size();
}

bool TemporaryFile::replaceTarget()
{
    const bool replaced = state_->file->commit();
    if (replaced)
        state_->file.reset();
    return replaced;
}

void TemporaryFile::remove()
{
    if (state_->file)
        state_->file->cancelWriting();
    state_->file.reset();
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
