#pragma once

#include <QString>

namespace quillmar::test
{

/// A drive letter of its own for a folder, as long as an instance lives.
class SecondDrive
{
public:
    explicit SecondDrive(const QString &folder);
    ~SecondDrive();
    Q_DISABLE_COPY_MOVE(SecondDrive)

    /// The letter with a colon; empty when there is none.
    const QString &name() const { return name_; }

private:
    bool exists() const;

    QString folder_;
    QString name_;
};

} // namespace quillmar::test
