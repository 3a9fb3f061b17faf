#pragma once

#include "packages/temporary_file.h"

class QFile;

namespace quillmar
{

/// Writes `bytes` to `target` so that a reader sees the old file or the new one, never a part.
///
/// Creates missing folders. `target` must lie inside `root`, with no link on the way, before and after the
/// folders are created. A regular file with the same content is left untouched. Returns false when a path is
/// refused or anything could not be written; the old file is then as it was and nothing else is left behind.
/// Any thread.
bool writeFileAtomically(const QString &root, const QString &target, QByteArrayView bytes);

/// The same for `length` bytes of the open file `source` from `offset` on, in pieces of bounded size.
bool copyRangeAtomically(const QString &root, const QString &target, QFile &source, qint64 offset,
                         qint64 length);

/// A file that grows beside its target and replaces it in one step, or not at all.
///
/// Until commit() the target is as it was. Whatever ends before that, with the object at the latest, takes
/// the temporary file and the folders that were created for it away again. Any one thread at a time.
class PendingFile
{
public:
    PendingFile(const QString &root, const QString &target);
    ~PendingFile();
    Q_DISABLE_COPY_MOVE(PendingFile)

    /// Tests the target, creates its folder, tests again and opens the temporary file.
    bool open();

    /// Appends all of `bytes`. False after any failure, from then on always.
    bool write(QByteArrayView bytes);

    /// Tests the target once more, so that a link or a removed folder of the meantime counts, and renames.
    /// False unless every step since open() succeeded.
    bool commit();

    /// Gives up what was written.
    void discard();

    /// The target may be written: it and its folder are inside the root, without links, and the folder exists
    /// now.
    bool prepareFolder();

private:
    TemporaryFile file_;
    QStringList createdFolders_; ///< deepest first
};

} // namespace quillmar
