#pragma once

#include <QByteArrayView>

namespace quillmar::test
{

/// Counts the arrays that this program gives back with a text still in them. One instance at a time.
class GivenBackArrays
{
public:
    /// `text` outlives the object and has at least eight bytes.
    explicit GivenBackArrays(QByteArrayView text);
    ~GivenBackArrays();
    Q_DISABLE_COPY_MOVE(GivenBackArrays)

    int count() const;

    /// Gives back one array with `text` in it, to see that such are found.
    static void giveBack(QByteArrayView text);
};

} // namespace quillmar::test
