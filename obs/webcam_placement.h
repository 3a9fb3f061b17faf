#pragma once

#include <QRectF>
#include <QSize>
#include <QSizeF>
#include <QString>

namespace quillmar
{

/// Where a webcam frame lies on a canvas, in pixels from the canvas's top left corner.
///
/// `wanted` is the frame's own size; a side below 1 takes the default (480 x 270), and no side exceeds the
/// canvas. The frame keeps 20 pixels from the edges as far as there is room. `position` is "center",
/// "top_right", "bottom_left", "bottom_right" or empty (bottom right); any other word is the top left.
QRectF placeWebcamFrame(QSize wanted, const QString &position, QSizeF canvas);

} // namespace quillmar
