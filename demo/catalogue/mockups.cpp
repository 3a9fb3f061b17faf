#include "demo/catalogue/mockups.h"

#include "demo/catalogue/backdrops.h"
#include "demo/catalogue/style.h"

#include <QLinearGradient>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

QRectF fitted(QSizeF inner, const QRectF &area)
{
    const QSizeF size = inner.scaled(area.size(), Qt::KeepAspectRatio);
    return {area.center() - QPointF(size.width() / 2, size.height() / 2), size};
}

QImage canvas(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(style::kInk);
    return image;
}

void drawStage(QPainter &painter, QSizeF size)
{
    painter.save();
    painter.scale(size.width() / 1920, size.height() / 1080);
    drawAurora(painter, {1920, 1080}, 0.15);
    painter.restore();
}

void drawTilted(QPainter &painter, const QImage &image, QPointF centre, qreal width, qreal angle)
{
    painter.save();
    painter.translate(centre);
    painter.rotate(angle);
    const qreal height = width * 9 / 16;
    const QRectF area(-width / 2, -height / 2, width, height);
    const QPainterPath outline = style::roundedPath(area, 14);
    painter.setPen(Qt::NoPen);
    painter.setBrush(style::withAlpha(style::kInk, 0.6));
    painter.drawRoundedRect(area.translated(0, 10).adjusted(-8, -8, 8, 8), 20, 20);
    painter.setClipPath(outline);
    painter.drawImage(area, image);
    painter.setClipping(false);
    style::drawGlow(painter, outline, style::withAlpha(style::kNeon, 0.8), 1.5, 6);
    painter.restore();
}

} // namespace

QImage showOverlay(const QImage &overlay, QSize size)
{
    QImage image = canvas(size);
    QPainter painter(&image);
    style::prepare(painter);
    drawLandscape(painter, size);
    const QImage small = overlay.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    painter.drawImage(0, 0, small);
    return image;
}

QImage showOnStage(const QImage &graphic, QSize size)
{
    QImage image = canvas(size);
    QPainter painter(&image);
    style::prepare(painter);
    drawStage(painter, size);
    const QRectF area = QRectF({}, size).adjusted(size.width() * 0.1, size.height() * 0.12,
                                                  -size.width() * 0.1, -size.height() * 0.12);
    const QRectF target = fitted(graphic.size(), area);
    const QImage small =
        graphic.scaled(target.size().toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    painter.drawImage(target.topLeft(), small);
    return image;
}

QImage showFrame(const QImage &frame, QSize size)
{
    QImage image = canvas(size);
    QPainter painter(&image);
    style::prepare(painter);
    drawLandscape(painter, size);
    painter.fillRect(image.rect(), style::withAlpha(style::kInk, 0.55));
    const QRectF area = QRectF({}, size).adjusted(size.width() * 0.08, size.height() * 0.08,
                                                  -size.width() * 0.08, -size.height() * 0.08);
    const QRectF target = fitted(frame.size(), area);
    const qreal inset = std::min(target.width() / 16, target.height() / 9) * 0.5;
    drawPortrait(painter, target.adjusted(inset, inset, -inset, -inset));
    painter.drawImage(target, frame);
    return image;
}

QImage showScene(const QImage &scene, QSize size)
{
    const QImage filled = scene.scaled(size, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    const QPoint offset((filled.width() - size.width()) / 2, (filled.height() - size.height()) / 2);
    return filled.copy({offset, size});
}

QImage showPack(const QImage &left, const QImage &middle, const QImage &right, const QString &title)
{
    QImage image = canvas(kCoverSize);
    QPainter painter(&image);
    style::prepare(painter);
    drawStage(painter, kCoverSize);
    drawTilted(painter, left, {228, 222}, 400, -8);
    drawTilted(painter, right, {812, 222}, 400, 8);
    drawTilted(painter, middle, {520, 250}, 500, 0);
    style::drawText(painter, {60, 444, 920, 96}, title,
                    {.pixels = 58, .weight = style::Weight::Bold, .flags = Qt::AlignCenter});
    return image;
}

QImage showRow(const QList<QImage> &graphics)
{
    QImage image = canvas(kCoverSize);
    QPainter painter(&image);
    style::prepare(painter);
    drawStage(painter, kCoverSize);
    const qreal side = 240;
    for (qsizetype i = 0; i < graphics.size(); ++i) {
        const QPointF corner(120 + qreal(i % 3) * 280, 30 + qreal(i / 3) * 260);
        painter.drawImage(QRectF(corner, QSizeF(side, side)), graphics.at(i));
    }
    return image;
}

QImage showSwatch(int number, int count)
{
    QImage image = canvas({640, 360});
    QPainter painter(&image);
    style::prepare(painter);
    const int hue = 80 + 110 * number / count;
    QLinearGradient fill(0, 0, 640, 360);
    fill.setColorAt(0, QColor::fromHsv(hue, 200, 40));
    fill.setColorAt(0.5, QColor::fromHsv(hue, 220, 150));
    fill.setColorAt(1, QColor::fromHsv(hue + 20, 190, 30));
    painter.fillRect(image.rect(), fill);
    style::drawText(painter, {40, 60, 560, 200}, u"%1"_s.arg(number, 2, 10, QChar(u'0')),
                    {.pixels = 150, .weight = style::Weight::Bold, .flags = Qt::AlignCenter});
    style::drawText(painter, {40, 260, 560, 50}, u"GRADIENT %1 OF %2"_s.arg(number).arg(count),
                    {.pixels = 24, .color = style::kMint, .flags = Qt::AlignCenter, .tracked = true});
    return image;
}

} // namespace quillmar::demo
