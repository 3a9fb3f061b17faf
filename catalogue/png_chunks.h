#pragma once

#include <QByteArray>

namespace quillmar
{

/// `data` begins like a PNG file.
bool hasPngSignature(const QByteArray &data);

/// `png` with those chunks only that its pixels depend on; empty when a chunk is longer than the bytes left.
///
/// Texts and colour profiles are nothing that a preview shows, but a few bytes of them make the decoder
/// allocate gigabytes: 57 bytes whose text chunk claims 1 GiB cost 1 GiB, and a hundred compressed texts 8
/// MiB each.
QByteArray pngPixelChunks(const QByteArray &png);

} // namespace quillmar
