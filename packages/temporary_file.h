#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <memory>

namespace quillmar
{

/// The file that grows beside a target until it takes its place. Each system has its own way to do this
/// without ever following a link that appears on the way to the target. Any one thread at a time.
class TemporaryFile
{
public:
    /// `target` is to lie below `root`.
    TemporaryFile(const QString &root, const QString &target);
    ~TemporaryFile();
    Q_DISABLE_COPY_MOVE(TemporaryFile)

    /// The target may be written: it lies below the root, neither it nor a folder above it is a link, and its
    /// folder exists now. Folders that were created are put in front of `created`.
    bool prepareFolder(QStringList &created);

    /// Opens the temporary file in the prepared folder. False also when the target is a folder, or a file
    /// that this user may not write.
    bool open();
    bool isOpen() const;

    /// All of `bytes`, or false.
    bool write(QByteArrayView bytes);

    /// Makes the file the target of the folder that was prepared last, in one step, once its bytes are on
    /// the disk. No longer open afterwards if that succeeds.
    bool replaceTarget();

    /// Takes an open file away.
    void remove();

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Creates `folder` and what is missing above it, unless it is outside of `root` or below a link.
bool makeFolder(const QString &root, const QString &folder);

/// Removes an empty folder. One that is not empty, or not there, stays as it is.
void removeEmptyFolder(const QString &folder);

} // namespace quillmar
