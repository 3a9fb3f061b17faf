#pragma once

#include <QImage>

/// Single frames of the clips; `time` runs from 0 to 1 over the clip.
namespace quillmar::demo
{

/// Slanted blades that close over the screen and open again. Covers everything from 0.42 to 0.58.
QImage drawBladeStinger(QSize size, qreal time);

/// Tiles that grow, cover everything around the middle, and shrink again.
QImage drawTileStinger(QSize size, qreal time);

/// Sparks that rise; transparent, loops.
QImage drawSparks(QSize size, qreal time);

/// How far a plate that comes, stays and goes is out at `time`: 0 to 1, soft at both ends.
qreal comeAndGo(qreal time);

} // namespace quillmar::demo
