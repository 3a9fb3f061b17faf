#pragma once

#include "packages/product_file_result.h"

#include <QByteArrayView>

namespace quillmar
{

/// Takes the bytes of a downloaded file as they come and keeps them only when store() succeeds. An object
/// that was not stored leaves nothing behind. Blocks; any one thread at a time.
class BodySink
{
public:
    BodySink() = default;
    virtual ~BodySink() = default;
    Q_DISABLE_COPY_MOVE(BodySink)

    /// Takes the next bytes. A failure to write them is remembered for store().
    virtual void append(QByteArrayView bytes) = 0;

    /// Ends the file. Its path, or the key of the failure. Called once.
    virtual ProductFileResult store() = 0;
};

} // namespace quillmar
