#include "demo/catalogue/style.h"

#include <QFontMetricsF>
#include <QLinearGradient>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillmar::demo::style
{
namespace
{

bool isJoined(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.script() == QChar::Script_Arabic; });
}

QFont fontFor(const QString &text, const TextStyle &style, qreal pixels)
{
    const bool joined = isJoined(text);
    QFont font;
    font.setFamilies(joined ? QStringList{u"Noto Kufi Arabic"_s, u"Noto Sans Arabic"_s, u"DejaVu Sans"_s}
                            : QStringList{u"Noto Sans Display"_s, u"Noto Sans"_s, u"DejaVu Sans"_s});
    font.setPixelSize(std::max(1, qRound(joined ? pixels * 0.86 : pixels)));
    font.setBold(style.weight == Weight::Bold);
    if (style.tracked && !joined)
        font.setLetterSpacing(QFont::PercentageSpacing, 116);
    return font;
}

} // namespace

QColor withAlpha(QColor color, qreal alpha)
{
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

QImage transparentCanvas(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

void prepare(QPainter &painter)
{
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
}

void drawText(QPainter &painter, const QRectF &area, const QString &text, const TextStyle &style)
{
    qreal pixels = style.pixels;
    QFont font = fontFor(text, style, pixels);
    const int flags =
        style.flags | Qt::AlignAbsolute | (style.flags & Qt::TextWordWrap ? 0 : Qt::TextSingleLine);
    while (pixels > 8) {
        const QRectF needed = QFontMetricsF(font).boundingRect(area, flags, text);
        if (needed.width() <= area.width() && needed.height() <= area.height() * 1.35)
            break;
        pixels *= 0.94;
        font = fontFor(text, style, pixels);
    }
    painter.setFont(font);
    painter.setPen(style.color);
    painter.drawText(area, flags | Qt::TextDontClip, text);
}

void drawGlow(QPainter &painter, const QPainterPath &path, QColor color, qreal width, qreal glow)
{
    constexpr int layers = 8;
    painter.setBrush(Qt::NoBrush);
    for (int i = layers; i > 0; --i) {
        const qreal share = qreal(i) / layers;
        const QColor halo = withAlpha(color, 0.14 * (1.05 - share));
        painter.setPen({halo, width + 2 * glow * share, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin});
        painter.drawPath(path);
    }
    painter.setPen({color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin});
    painter.drawPath(path);
}

void drawPlate(QPainter &painter, const QRectF &area, qreal radius, qreal opacity)
{
    QLinearGradient fill(area.topLeft(), area.bottomRight());
    fill.setColorAt(0, withAlpha(kFern, opacity));
    fill.setColorAt(0.35, withAlpha(kMoss, opacity));
    fill.setColorAt(1, withAlpha(kInk, opacity));
    QLinearGradient rim(area.topLeft(), area.bottomLeft());
    rim.setColorAt(0, withAlpha(kMint, 0.45));
    rim.setColorAt(1, withAlpha(kNeon, 0.12));
    painter.setBrush(fill);
    painter.setPen({rim, 1.5});
    painter.drawRoundedRect(area, radius, radius);
}

void fillAccent(QPainter &painter, const QRectF &area, qreal radius)
{
    QLinearGradient fill(area.topLeft(), area.bottomRight());
    fill.setColorAt(0, kNeon);
    fill.setColorAt(1, kTeal);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(area, radius, radius);
}

void drawFeather(QPainter &painter, const QRectF &area, QColor color)
{
    painter.save();
    const qreal side = std::min(area.width(), area.height());
    painter.translate(area.center());
    painter.scale(side / 100, side / 100);
    QPainterPath vane(QPointF(40, -42));
    vane.cubicTo(0, -40, -30, -14, -28, 20);
    vane.lineTo(-12, 24);
    vane.lineTo(-18, 33);
    vane.cubicTo(20, 30, 44, -6, 40, -42);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPath(vane);
    QPainterPath shaft(QPointF(22, -22));
    shaft.cubicTo(0, -4, -22, 18, -38, 44);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setBrush(Qt::NoBrush);
    painter.setPen({withAlpha(kInk, 0.85), 4.5, Qt::SolidLine, Qt::RoundCap});
    painter.drawPath(shaft);
    QPainterPath quill(QPointF(-27, 27));
    quill.lineTo(-38, 44);
    painter.setPen({color, 6, Qt::SolidLine, Qt::RoundCap});
    painter.drawPath(quill);
    painter.restore();
}

void drawBadge(QPainter &painter, const QRectF &area)
{
    const qreal radius = area.width() * 0.26;
    drawGlow(painter, roundedPath(area, radius), kNeon, area.width() * 0.02, area.width() * 0.1);
    QLinearGradient fill(area.topLeft(), area.bottomRight());
    fill.setColorAt(0, kFern);
    fill.setColorAt(1, kInk);
    painter.setBrush(fill);
    painter.setPen({kNeon, area.width() * 0.03});
    painter.drawRoundedRect(area, radius, radius);
    const qreal inset = area.width() * 0.2;
    drawFeather(painter, area.adjusted(inset, inset, -inset, -inset), kNeon);
}

QPainterPath roundedPath(const QRectF &area, qreal radius)
{
    QPainterPath path;
    path.addRoundedRect(area, radius, radius);
    return path;
}

} // namespace quillmar::demo::style
