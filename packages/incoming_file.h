#pragma once

#include "packages/atomic_file.h"
#include "packages/body_sink.h"

#include <optional>

namespace quillmar
{

/// One downloaded file on its way into a folder, as it is: taken in pieces beside the file that it replaces.
///
/// A file of the same name is replaced; until then it is as it was. Links on the way to the folder, and in
/// place of the file, are refused.
class IncomingFile : public BodySink
{
public:
    /// `folder` is absolute and cleaned; it is created with the first bytes.
    explicit IncomingFile(const QString &folder);

    /// What the file is called; only a name that isSafeFileName() accepts is ever written. Before the first
    /// append().
    void setName(const QString &name);

    void append(QByteArrayView bytes) override;

    /// The path of the file, or "Download.SaveFailed" when it has no name that may be written, nothing came,
    /// or anything could not be written.
    ProductFileResult store() override;

private:
    QString folder_;
    QString path_;
    std::optional<PendingFile> file_; ///< while a name is known that may be written
    bool isOpen_ = false;
};

} // namespace quillmar
