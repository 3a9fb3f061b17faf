#include "demo/catalogue/backdrops.h"

#include "demo/catalogue/style.h"

#include <QLinearGradient>
#include <QPainterPath>
#include <QRadialGradient>

#include <cmath>
#include <numbers>

namespace quillmar::demo
{
namespace
{

constexpr qreal kTurn = 2 * std::numbers::pi;

void drawLight(QPainter &painter, QPointF centre, qreal radius, QColor color, qreal strength)
{
    QRadialGradient light(centre, radius);
    light.setColorAt(0, style::withAlpha(color, strength));
    light.setColorAt(0.5, style::withAlpha(color, strength * 0.35));
    light.setColorAt(1, style::withAlpha(color, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(light);
    painter.drawEllipse(centre, radius, radius);
}

qreal wave(qreal x, qreal phase, int number)
{
    return std::sin(kTurn * (x * (0.7 + 0.25 * number) + phase + number * 0.31)) * 0.6 +
           std::sin(kTurn * (x * (1.6 + 0.2 * number) - phase + number * 0.17)) * 0.25;
}

void drawRibbon(QPainter &painter, QSizeF size, qreal phase, int number, QColor color)
{
    const qreal middle = size.height() * (0.64 + 0.12 * number);
    const qreal swing = size.height() * 0.07;
    const qreal thickness = size.height() * (0.3 - 0.04 * number);
    QPainterPath crest;
    QPainterPath body;
    constexpr int steps = 48;
    for (int i = 0; i <= steps; ++i) {
        const qreal x = qreal(i) / steps;
        const QPointF point(x * size.width(), middle + swing * wave(x, phase, number));
        i == 0 ? crest.moveTo(point) : crest.lineTo(point);
    }
    body = crest;
    body.lineTo(size.width(), middle + swing + thickness);
    body.lineTo(0, middle + swing + thickness);
    body.closeSubpath();
    QLinearGradient fill(0, middle - swing, 0, middle + swing + thickness);
    fill.setColorAt(0, style::withAlpha(color, 0.34));
    fill.setColorAt(0.45, style::withAlpha(color, 0.10));
    fill.setColorAt(1, style::withAlpha(color, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawPath(body);
    style::drawGlow(painter, crest, style::withAlpha(color, 0.5), size.height() * 0.0016,
                    size.height() * 0.014);
}

void drawRaster(QPainter &painter, QSizeF size)
{
    const qreal gap = size.height() / 24;
    painter.setPen(Qt::NoPen);
    painter.setBrush(style::withAlpha(style::kMint, 0.07));
    for (qreal y = gap / 2; y < size.height(); y += gap) {
        for (qreal x = gap / 2; x < size.width(); x += gap)
            painter.drawEllipse(QPointF(x, y), gap * 0.045, gap * 0.045);
    }
}

/// Height of a mountain range at `x`: tents of shrinking size on top of each other.
qreal rangeAt(qreal x, int seed)
{
    qreal height = 0;
    qreal share = 0.6;
    for (int octave = 0; octave < 4; ++octave) {
        const qreal place = x * (1.9 * std::pow(2.1, octave)) + seed * 0.37 + octave * 0.61;
        height += share * std::abs(2 * (place - std::floor(place)) - 1);
        share *= 0.42;
    }
    return height;
}

void drawRidge(QPainter &painter, QSizeF size, qreal base, qreal height, int seed, QColor top, QColor bottom)
{
    QPainterPath ridge(QPointF(0, size.height()));
    constexpr int steps = 160;
    for (int i = 0; i <= steps; ++i)
        ridge.lineTo(size.width() * i / steps, base - height * rangeAt(qreal(i) / steps, seed));
    ridge.lineTo(size.width(), size.height());
    QLinearGradient fill(0, base - height, 0, size.height());
    fill.setColorAt(0, top);
    fill.setColorAt(1, bottom);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawPath(ridge);
}

} // namespace

void drawAurora(QPainter &painter, QSizeF size, qreal phase)
{
    QLinearGradient ground(0, 0, size.width(), size.height());
    ground.setColorAt(0, style::kInk);
    ground.setColorAt(0.6, style::kNight);
    ground.setColorAt(1, style::kMoss);
    painter.fillRect(QRectF({}, size), ground);
    const qreal angle = kTurn * phase;
    const QPointF right(size.width() * (0.8 + 0.05 * std::cos(angle)),
                        size.height() * (0.2 + 0.06 * std::sin(angle)));
    const QPointF left(size.width() * (0.15 - 0.04 * std::sin(angle)),
                       size.height() * (0.85 + 0.04 * std::cos(angle)));
    drawLight(painter, right, size.height() * 0.9, style::kFern.lighter(150), 0.55);
    drawLight(painter, left, size.height() * 0.8, style::kTeal, 0.16);
    drawRaster(painter, size);
    drawRibbon(painter, size, phase, 0, style::kTeal);
    drawRibbon(painter, size, phase, 1, style::kNeon);
    drawRibbon(painter, size, phase, 2, style::kNeon.darker(140));
}

void drawLandscape(QPainter &painter, QSizeF size)
{
    QLinearGradient sky(0, 0, 0, size.height());
    sky.setColorAt(0, QColor(0x0a, 0x1c, 0x2a));
    sky.setColorAt(0.55, QColor(0x1f, 0x5a, 0x5e));
    sky.setColorAt(1, QColor(0x7f, 0xa8, 0x7a));
    painter.fillRect(QRectF({}, size), sky);
    const QPointF moon(size.width() * 0.63, size.height() * 0.36);
    drawLight(painter, moon, size.height() * 0.55, QColor(0xff, 0xf2, 0xc0), 0.5);
    painter.setBrush(QColor(0xff, 0xf6, 0xd8));
    painter.drawEllipse(moon, size.height() * 0.075, size.height() * 0.075);
    const qreal h = size.height();
    drawRidge(painter, size, h * 0.74, h * 0.30, 1, QColor(0x2c, 0x66, 0x68), QColor(0x3d, 0x7a, 0x6c));
    drawRidge(painter, size, h * 0.84, h * 0.26, 4, QColor(0x1b, 0x49, 0x4a), QColor(0x24, 0x55, 0x49));
    drawRidge(painter, size, h * 0.98, h * 0.24, 7, QColor(0x0d, 0x2a, 0x2b), QColor(0x0c, 0x20, 0x1d));
}

void drawPortrait(QPainter &painter, const QRectF &area)
{
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    QLinearGradient wall(area.topLeft(), area.bottomRight());
    wall.setColorAt(0, QColor(0x2a, 0x4a, 0x46));
    wall.setColorAt(1, QColor(0x12, 0x24, 0x26));
    painter.fillRect(area, wall);
    drawLight(painter, area.topLeft() + QPointF(area.width() * 0.2, area.height() * 0.2), area.height() * 0.8,
              style::kTeal, 0.45);
    const qreal unit = area.height() / 10;
    const QPointF head(area.center().x(), area.top() + unit * 4.4);
    QLinearGradient body(head, head + QPointF(0, unit * 6));
    body.setColorAt(0, QColor(0x10, 0x1d, 0x1c));
    body.setColorAt(1, QColor(0x06, 0x0c, 0x0c));
    painter.setPen(Qt::NoPen);
    painter.setBrush(body);
    painter.drawRoundedRect(QRectF(head.x() - unit * 3.2, head.y() + unit * 2.3, unit * 6.4, unit * 6),
                            unit * 2.4, unit * 2.4);
    painter.drawEllipse(head, unit * 1.65, unit * 1.95);
    QPainterPath headset;
    headset.arcMoveTo(QRectF(head.x() - unit * 1.85, head.y() - unit * 2.2, unit * 3.7, unit * 4.2), 10);
    headset.arcTo(QRectF(head.x() - unit * 1.85, head.y() - unit * 2.2, unit * 3.7, unit * 4.2), 10, 160);
    style::drawGlow(painter, headset, style::kNeon, unit * 0.22, unit * 0.3);
    style::fillAccent(painter, {head.x() - unit * 2.1, head.y() - unit * 0.7, unit * 0.6, unit * 1.5},
                      unit * 0.3);
    style::fillAccent(painter, {head.x() + unit * 1.5, head.y() - unit * 0.7, unit * 0.6, unit * 1.5},
                      unit * 0.3);
    painter.restore();
}

} // namespace quillmar::demo
