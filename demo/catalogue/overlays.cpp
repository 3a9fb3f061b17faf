#include "demo/catalogue/overlays.h"

#include "demo/catalogue/style.h"

#include <QLinearGradient>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

void drawInfoBox(QPainter &painter, const QRectF &area, const QString &caption, const QString &value)
{
    style::drawPlate(painter, area, 18);
    style::fillAccent(painter, {area.left() + 22, area.top() + 26, 6, area.height() - 52}, 3);
    const QRectF inner = area.adjusted(46, 16, -20, -16);
    style::drawText(painter, {inner.left(), inner.top(), inner.width(), inner.height() * 0.42}, caption,
                    {.pixels = 22, .color = style::kMuted, .tracked = true});
    style::drawText(painter,
                    {inner.left(), inner.top() + inner.height() * 0.4, inner.width(), inner.height() * 0.6},
                    value, {.pixels = 36, .weight = style::Weight::Bold});
}

void drawTitleBar(QPainter &painter)
{
    const QRectF bar(560, 30, 800, 92);
    style::drawGlow(painter, style::roundedPath(bar, 46), style::kNeon, 2, 14);
    style::drawPlate(painter, bar, 46, 0.96);
    style::drawBadge(painter, {584, 44, 64, 64});
    style::drawText(painter, {680, 30, 460, 92}, u"NEON GARDEN CUP"_s,
                    {.pixels = 38, .weight = style::Weight::Bold, .tracked = true});
    style::fillAccent(painter, {1180, 52, 150, 48}, 24);
    style::drawText(painter, {1180, 52, 150, 48}, u"LIVE"_s,
                    {.pixels = 28,
                     .weight = style::Weight::Bold,
                     .color = style::kInk,
                     .flags = Qt::AlignCenter,
                     .tracked = true});
}

void drawTicker(QPainter &painter)
{
    const QRectF strip(0, 1008, 1920, 72);
    painter.fillRect(strip, style::withAlpha(style::kInk, 0.92));
    QPainterPath edge(strip.topLeft());
    edge.lineTo(strip.topRight());
    style::drawGlow(painter, edge, style::kNeon, 3, 12);
    style::fillAccent(painter, {32, 1022, 190, 44}, 12);
    style::drawText(painter, {32, 1022, 190, 44}, u"TODAY"_s,
                    {.pixels = 26,
                     .weight = style::Weight::Bold,
                     .color = style::kInk,
                     .flags = Qt::AlignCenter,
                     .tracked = true});
    style::drawText(
        painter, {252, 1012, 1640, 66},
        u"Road to the final  ·  Viewer games from nine  ·  Thank you for the first ten thousand"_s,
        {.pixels = 30, .color = style::kMint});
}

QPainterPath signPath(int sign)
{
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    switch (sign) {
    case 0: // play
        path.moveTo(36, 26);
        path.lineTo(76, 50);
        path.lineTo(36, 74);
        path.closeSubpath();
        break;
    case 1: // heart
        path.moveTo(50, 76);
        path.cubicTo(8, 48, 22, 20, 50, 38);
        path.cubicTo(78, 20, 92, 48, 50, 76);
        break;
    case 2: // star
        path.moveTo(50, 20);
        for (const QPointF &point : std::array<QPointF, 9>{
                 {{58, 41}, {80, 42}, {63, 56}, {69, 78}, {50, 65}, {31, 78}, {37, 56}, {20, 42}, {42, 41}}})
            path.lineTo(point);
        path.closeSubpath();
        break;
    case 3: // speech
        path.addRoundedRect(22, 26, 56, 38, 12, 12);
        path.moveTo(34, 62);
        path.lineTo(34, 80);
        path.lineTo(52, 63);
        break;
    case 4: // bolt
        path.moveTo(56, 18);
        for (const QPointF &point :
             std::array<QPointF, 5>{{{30, 54}, {48, 54}, {42, 82}, {70, 44}, {52, 44}}})
            path.lineTo(point);
        path.closeSubpath();
        break;
    default: // bell
        path.moveTo(26, 68);
        path.cubicTo(38, 58, 28, 24, 50, 24);
        path.cubicTo(72, 24, 62, 58, 74, 68);
        path.closeSubpath();
        path.addEllipse(QPointF(50, 75), 6, 5);
    }
    return path;
}

/// Corner brackets of a frame, `reach` pixels long.
QPainterPath brackets(const QRectF &area, qreal reach, qreal radius)
{
    QPainterPath path;
    path.moveTo(area.left(), area.top() + reach);
    path.lineTo(area.left(), area.top() + radius);
    path.quadTo(area.topLeft(), {area.left() + radius, area.top()});
    path.lineTo(area.left() + reach, area.top());
    path.moveTo(area.right(), area.bottom() - reach);
    path.lineTo(area.right(), area.bottom() - radius);
    path.quadTo(area.bottomRight(), {area.right() - radius, area.bottom()});
    path.lineTo(area.right() - reach, area.bottom());
    return path;
}

void drawFrameBorder(QPainter &painter, const QRectF &border, qreal unit, int variant, qreal pulse)
{
    const qreal radius = variant % 2 == 0 ? unit * 1.1 : unit * 0.25;
    const qreal glow = unit * (0.35 + 0.35 * pulse);
    painter.setBrush(Qt::NoBrush);
    painter.setPen({style::withAlpha(style::kInk, 0.9), unit * 0.42});
    painter.drawPath(style::roundedPath(border, radius));
    if (variant < 2) {
        style::drawGlow(painter, style::roundedPath(border, radius), style::kNeon, unit * 0.12, glow);
        return;
    }
    painter.setPen({style::kFern.lighter(160), unit * 0.1});
    painter.drawPath(style::roundedPath(border, radius));
    style::drawGlow(painter, brackets(border, unit * 3.2, radius), style::kNeon, unit * 0.2, glow);
}

} // namespace

QImage drawMatchOverlay()
{
    QImage image = style::transparentCanvas({1920, 1080});
    QPainter painter(&image);
    style::prepare(painter);
    drawTitleBar(painter);
    drawInfoBox(painter, {40, 40, 330, 120}, u"LATEST FOLLOW"_s, u"Parisa"_s);
    drawInfoBox(painter, {40, 176, 330, 120}, u"LATEST GIFT"_s, u"Cyrus  ×5"_s);
    drawInfoBox(painter, {1550, 40, 330, 120}, u"TOP FAN"_s, u"Leila"_s);
    drawTicker(painter);
    return image;
}

QImage drawLowerThird(QSize size, const QString &name, const QString &role, qreal reveal)
{
    QImage image = style::transparentCanvas(size);
    QPainter painter(&image);
    style::prepare(painter);
    const qreal h = size.height();
    const QRectF plate(h * 0.12, h * 0.2, (size.width() - h * 0.24) * reveal, h * 0.6);
    if (plate.width() < h * 0.5)
        return image;
    style::drawGlow(painter, style::roundedPath(plate, h * 0.14), style::kNeon, h * 0.012, h * 0.07);
    style::drawPlate(painter, plate, h * 0.14, 0.96);
    painter.setClipRect(plate.adjusted(h * 0.02, 0, -h * 0.06, 0));
    const bool rtl = name.isRightToLeft();
    const qreal badge = h * 0.4;
    const qreal right = size.width() - h * 0.12;
    const QRectF badgeArea(rtl ? right - badge - h * 0.1 : plate.left() + h * 0.1, plate.top() + h * 0.1,
                           badge, badge);
    style::drawBadge(painter, badgeArea);
    const qreal textLeft = rtl ? h * 0.3 : badgeArea.right() + h * 0.13;
    const qreal textRight = rtl ? badgeArea.left() - h * 0.13 : right - h * 0.1;
    const int side = (rtl ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
    style::drawText(painter, {textLeft, plate.top() + h * 0.05, textRight - textLeft, h * 0.3}, name,
                    {.pixels = h * 0.22, .weight = style::Weight::Bold, .flags = side});
    style::drawText(painter, {textLeft, plate.top() + h * 0.33, textRight - textLeft, h * 0.2}, role,
                    {.pixels = h * 0.12, .color = style::kNeon, .flags = side, .tracked = true});
    return image;
}

QImage drawChatBox()
{
    QImage image = style::transparentCanvas({480, 720});
    QPainter painter(&image);
    style::prepare(painter);
    const QRectF box(16, 16, 448, 688);
    style::drawGlow(painter, style::roundedPath(box, 28), style::kNeon, 2, 12);
    style::drawPlate(painter, box, 28, 0.82);
    style::drawText(painter, {44, 32, 300, 56}, u"CHAT"_s,
                    {.pixels = 30, .weight = style::Weight::Bold, .color = style::kNeon, .tracked = true});
    QPainterPath rule(QPointF(44, 96));
    rule.lineTo(436, 96);
    style::drawGlow(painter, rule, style::kNeon, 1.5, 5);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 6; ++i) {
        const qreal top = 124 + i * 94;
        painter.setBrush(style::withAlpha(i % 2 == 0 ? style::kNeon : style::kTeal, 0.55));
        painter.drawEllipse(QPointF(66, top + 20), 20, 20);
        painter.setBrush(style::withAlpha(style::kMint, 0.5));
        painter.drawRoundedRect(QRectF(104, top + 2, 110 + (i * 37) % 90, 12), 6, 6);
        painter.setBrush(style::withAlpha(style::kMuted, 0.28));
        painter.drawRoundedRect(QRectF(104, top + 26, 300 - (i * 53) % 120, 12), 6, 6);
        painter.drawRoundedRect(QRectF(104, top + 48, 220 - (i * 71) % 130, 12), 6, 6);
    }
    return image;
}

QImage drawGoalCard(const QString &title, const QString &count, qreal share)
{
    QImage image(720, 240, QImage::Format_RGB32);
    image.fill(style::kNight);
    QPainter painter(&image);
    style::prepare(painter);
    style::drawPlate(painter, {0.5, 0.5, 719, 239}, 0, 1);
    style::drawBadge(painter, {36, 60, 120, 120});
    style::drawText(painter, {196, 36, 340, 64}, title, {.pixels = 36, .weight = style::Weight::Bold});
    style::drawText(painter, {480, 36, 204, 64}, count,
                    {.pixels = 30, .color = style::kNeon, .flags = Qt::AlignRight | Qt::AlignVCenter});
    const QRectF track(196, 132, 488, 44);
    painter.setPen(Qt::NoPen);
    painter.setBrush(style::kInk);
    painter.drawRoundedRect(track, 22, 22);
    const QRectF done(track.left() + 6, track.top() + 6, (track.width() - 12) * share, 32);
    style::drawGlow(painter, style::roundedPath(done, 16), style::withAlpha(style::kNeon, 0.5), 2, 8);
    style::fillAccent(painter, done, 16);
    return image;
}

QImage drawIcon(int sign, int side)
{
    QImage image = style::transparentCanvas({side, side});
    QPainter painter(&image);
    style::prepare(painter);
    painter.scale(side / 100.0, side / 100.0);
    const QRectF plate(8, 8, 84, 84);
    style::drawGlow(painter, style::roundedPath(plate, 24), style::kNeon, 1.5, 5);
    style::drawPlate(painter, plate, 24, 1);
    QLinearGradient fill(30, 20, 70, 80);
    fill.setColorAt(0, style::kNeon);
    fill.setColorAt(1, style::kTeal);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawPath(signPath(sign));
    return image;
}

QImage drawLogo(int side)
{
    QImage image = style::transparentCanvas({side, side});
    QPainter painter(&image);
    style::prepare(painter);
    const qreal inset = side * 0.12;
    style::drawBadge(painter, {inset, inset, side - 2 * inset, side - 2 * inset});
    return image;
}

QImage drawWebcamFrame(QSize size, const QString &name, int variant, qreal pulse)
{
    QImage image = style::transparentCanvas(size);
    QPainter painter(&image);
    style::prepare(painter);
    const qreal unit = std::min(size.width() / 16.0, size.height() / 9.0) * 0.5;
    const qreal margin = unit * 0.9;
    const QRectF border(margin, margin, size.width() - 2 * margin, size.height() - 2 * margin);
    drawFrameBorder(painter, border, unit, variant, pulse);
    if (name.isEmpty())
        return image;
    const QRectF tag(border.center().x() - unit * 3.6, border.bottom() - unit * 1.1, unit * 7.2, unit * 1.7);
    style::drawGlow(painter, style::roundedPath(tag, unit * 0.85), style::kNeon, unit * 0.06, unit * 0.25);
    style::drawPlate(painter, tag, unit * 0.85, 1);
    style::drawText(
        painter, tag.adjusted(unit * 0.5, 0, -unit * 0.5, 0), name,
        {.pixels = unit, .weight = style::Weight::Bold, .flags = Qt::AlignCenter, .tracked = true});
    return image;
}

} // namespace quillmar::demo
