#pragma once

#include <QByteArray>
#include <QImage>

namespace quillmar
{

/// Longest body of a preview; bytes.
inline constexpr qint64 MaximumPreviewSize = qint64(8) * 1024 * 1024;

/// The picture in `data`, turned as its EXIF data say and at most 1600 x 1200 pixels, or null.
///
/// PNG, JPEG and WebP of at most 8192 pixels on a side and 16 megapixels in all, by content; of an animation
/// the first frame. Nothing in `data` is trusted. Any thread; touches nothing shared. Takes up to a second
/// for pictures of everyday make, and less than five for any other.
QImage decodePreview(const QByteArray &data);

} // namespace quillmar
