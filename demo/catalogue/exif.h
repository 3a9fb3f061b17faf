#pragma once

#include <QByteArray>
#include <QImage>

/// Pictures as cameras store them: turned, with a note that says how to turn them back.
namespace quillmar::demo
{

/// `upright` as a JPEG file with EXIF orientation `orientation`, 1 to 8. Shown with its orientation applied,
/// it looks like `upright`. Empty when it cannot be encoded.
QByteArray turnedJpeg(const QImage &upright, int orientation);

} // namespace quillmar::demo
