#pragma once

#include <QByteArray>

namespace quillmar
{

/// `data` begins like a JPEG file.
bool hasJpegSignature(const QByteArray &data);

/// Number of scans of `jpeg`, up to its end marker or the end of the bytes.
///
/// Each scan of a progressive picture makes the decoder walk through all of its pixels, and ten bytes are
/// enough for one.
qsizetype countJpegScans(const QByteArray &jpeg);

} // namespace quillmar
