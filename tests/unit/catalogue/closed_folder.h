#pragma once

#include <QString>

namespace quillmar::test
{

/// While an instance lives, nobody can make a file in a folder.
class ClosedFolder
{
public:
    /// `folder` exists. Ends the program when it cannot be closed.
    explicit ClosedFolder(const QString &folder);
    ~ClosedFolder();
    ClosedFolder(const ClosedFolder &) = delete;
    ClosedFolder &operator=(const ClosedFolder &) = delete;

    /// The folder, or another one where there is nothing that can be forbidden to the caller.
    const QString &path() const { return path_; }

private:
    QString folder_;
    QString path_;
};

} // namespace quillmar::test
