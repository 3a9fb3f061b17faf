#include "obs/webcam_placement.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr QSize DefaultSize{480, 270};
constexpr qreal WidestMargin = 20.0;

qreal side(int wanted, int fallback, qreal canvas)
{
    return std::min<qreal>(wanted >= 1 ? wanted : fallback, canvas);
}

} // namespace

QRectF placeWebcamFrame(QSize wanted, const QString &position, QSizeF canvas)
{
    const QSizeF size{side(wanted.width(), DefaultSize.width(), canvas.width()),
                      side(wanted.height(), DefaultSize.height(), canvas.height())};
    const QSizeF free = canvas - size;
    if (position == "center"_L1) {
        return {QPointF{free.width() * 0.5, free.height() * 0.5}, size};
    }

    const qreal marginX = std::min(free.width() * 0.5, WidestMargin);
    const qreal marginY = std::min(free.height() * 0.5, WidestMargin);
    const bool atRightBottom = position.isEmpty() || position == "bottom_right"_L1;
    const bool right = atRightBottom || position == "top_right"_L1;
    const bool bottom = atRightBottom || position == "bottom_left"_L1;
    return {QPointF{right ? free.width() - marginX : marginX, bottom ? free.height() - marginY : marginY},
            size};
}

} // namespace quillmar
