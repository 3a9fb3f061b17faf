#include "demo/catalogue/motion.h"

#include "demo/catalogue/style.h"

#include <QLinearGradient>
#include <QRadialGradient>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillmar::demo
{
namespace
{

qreal soft(qreal x)
{
    const qreal t = std::clamp(x, 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

/// 0 outside, 1 while the screen is covered.
qreal coverage(qreal time, qreal delay)
{
    const qreal in = soft((time - delay) / 0.3);
    const qreal out = soft((1 - time - delay) / 0.3);
    return std::min(in, out);
}

void drawCentreBadge(QPainter &painter, QSize size, qreal time)
{
    const qreal shown = soft((0.5 - std::abs(time - 0.5) - 0.33) / 0.1);
    if (shown <= 0)
        return;
    const qreal side = size.height() * 0.3 * (0.8 + 0.2 * shown);
    painter.setOpacity(shown);
    style::drawBadge(painter, {(size.width() - side) / 2, (size.height() - side) / 2, side, side});
    painter.setOpacity(1);
}

/// Fractional part of a fixed pseudo-random sequence.
qreal scatter(int index, int salt)
{
    const qreal value = std::sin(index * 12.9898 + salt * 78.233) * 43758.5453;
    return value - std::floor(value);
}

} // namespace

QImage drawBladeStinger(QSize size, qreal time)
{
    QImage image = style::transparentCanvas(size);
    QPainter painter(&image);
    style::prepare(painter);
    constexpr int blades = 6;
    const qreal slant = size.height() * 0.35;
    const qreal width = (size.width() + slant) / blades;
    const bool leaving = time > 0.5;
    for (int i = 0; i < blades; ++i) {
        const qreal height = size.height() * coverage(time, 0.02 * i);
        const qreal top = (i % 2 == 0) != leaving ? 0 : size.height() - height;
        if (height < 1)
            continue;
        const qreal left = width * i - slant;
        QPainterPath blade;
        const auto edge = [&](qreal y) { return left + slant * (1 - y / size.height()); };
        blade.moveTo(edge(top), top);
        blade.lineTo(edge(top) + width + 2, top);
        blade.lineTo(edge(top + height) + width + 2, top + height);
        blade.lineTo(edge(top + height), top + height);
        blade.closeSubpath();
        QLinearGradient fill(left, 0, left + width, size.height());
        fill.setColorAt(0, style::kFern);
        fill.setColorAt(1, style::kInk);
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawPath(blade);
        QPainterPath rim(QPointF(edge(top), top));
        rim.lineTo(edge(top + height), top + height);
        style::drawGlow(painter, rim, style::kNeon, size.height() * 0.004, size.height() * 0.015);
    }
    drawCentreBadge(painter, size, time);
    return image;
}

QImage drawTileStinger(QSize size, qreal time)
{
    QImage image = style::transparentCanvas(size);
    QPainter painter(&image);
    style::prepare(painter);
    const qreal side = size.height() / 5.0;
    const int columns = static_cast<int>(std::ceil(size.width() / side));
    for (int row = 0; row < 5; ++row) {
        for (int column = 0; column < columns; ++column) {
            const qreal wait = 0.11 * (qreal(column) / columns + qreal(row) / 5) / 2;
            const qreal grown = coverage(time, wait) * 1.02;
            const qreal length = side * grown;
            if (length < 2)
                continue;
            const QPointF centre((column + 0.5) * side, (row + 0.5) * side);
            const QRectF tile(centre - QPointF(length / 2, length / 2), QSizeF(length, length));
            const qreal radius = side * 0.5 * (1 - std::min(grown, 1.0));
            painter.setPen(Qt::NoPen);
            painter.setBrush((row + column) % 2 == 0 ? style::kMoss : style::kNight);
            painter.drawRoundedRect(tile, radius, radius);
            if (grown < 0.98)
                style::drawGlow(painter, style::roundedPath(tile, radius), style::kNeon, 2, side * 0.06);
        }
    }
    drawCentreBadge(painter, size, time);
    return image;
}

QImage drawSparks(QSize size, qreal time)
{
    QImage image = style::transparentCanvas(size);
    QPainter painter(&image);
    style::prepare(painter);
    painter.setPen(Qt::NoPen);
    constexpr int sparks = 46;
    for (int i = 0; i < sparks; ++i) {
        const qreal age = std::fmod(scatter(i, 1) + time * (1 + i % 2), 1.0);
        const qreal sway = std::sin(2 * std::numbers::pi * (age + scatter(i, 2))) * 0.02;
        const QPointF at((scatter(i, 3) + sway) * size.width(), size.height() * (1.05 - 1.1 * age));
        const qreal radius = size.height() * (0.008 + 0.018 * scatter(i, 4));
        const qreal light = std::sin(std::numbers::pi * age);
        QRadialGradient fill(at, radius);
        const QColor color = i % 4 == 0 ? style::kMint : style::kNeon;
        fill.setColorAt(0, style::withAlpha(style::kText, light));
        fill.setColorAt(0.25, style::withAlpha(color, 0.85 * light));
        fill.setColorAt(1, style::withAlpha(color, 0));
        painter.setBrush(fill);
        painter.drawEllipse(at, radius, radius);
    }
    return image;
}

qreal comeAndGo(qreal time)
{
    return std::min(soft(time / 0.2), soft((1 - time) / 0.2));
}

} // namespace quillmar::demo
