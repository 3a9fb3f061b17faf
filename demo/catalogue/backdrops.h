#pragma once

#include <QPainter>
#include <QSizeF>

/// Full-frame backgrounds. `phase` runs from 0 to 1 and ends where it began, so that a clip loops without a
/// seam.
namespace quillmar::demo
{

/// Ribbons of light over near-black.
void drawAurora(QPainter &painter, QSizeF size, qreal phase);

/// A landscape at night that stands for "the game" under an overlay.
void drawLandscape(QPainter &painter, QSizeF size);

/// A person in front of a wall, standing for a camera picture.
void drawPortrait(QPainter &painter, const QRectF &area);

} // namespace quillmar::demo
