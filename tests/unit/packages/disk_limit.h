#pragma once

#include <QtTypes>

namespace quillmar::test
{

/// While an instance lives, no file of this process can grow beyond `bytes`: a disk that fills up in the
/// middle of a file, for every user alike. One at a time.
class DiskLimit
{
public:
    explicit DiskLimit(qint64 bytes);
    ~DiskLimit();
    Q_DISABLE_COPY_MOVE(DiskLimit)
};

} // namespace quillmar::test
