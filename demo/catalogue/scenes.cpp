#include "demo/catalogue/scenes.h"

#include "demo/catalogue/backdrops.h"
#include "demo/catalogue/style.h"

namespace quillmar::demo
{
namespace
{

QImage opaqueCanvas(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(style::kInk);
    return image;
}

void drawProgress(QPainter &painter, const QRectF &track, qreal progress, bool rtl)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(style::withAlpha(style::kInk, 0.85));
    painter.drawRoundedRect(track, track.height() / 2, track.height() / 2);
    QRectF done = track.adjusted(2, 2, -2, -2);
    const qreal width = done.width() * progress;
    rtl ? done.setLeft(done.right() - width) : done.setWidth(width);
    style::fillAccent(painter, done, done.height() / 2);
}

void drawWords(QPainter &painter, const SceneText &text)
{
    const bool rtl = text.title.isRightToLeft();
    const int side = (rtl ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
    style::drawText(painter, {160, 430, 1600, 190}, text.title,
                    {.pixels = 156, .weight = style::Weight::Bold, .flags = side});
    style::drawText(painter, {168, 626, 1584, 84}, text.subtitle,
                    {.pixels = 50, .color = style::kMint, .flags = side});
    style::drawText(painter, {168, 950, 1584, 60}, text.footer,
                    {.pixels = 32, .color = style::kMuted, .flags = side, .tracked = true});
}

} // namespace

QImage drawScene(QSize size, const SceneText &text, qreal phase, qreal progress)
{
    QImage image = opaqueCanvas(size);
    QPainter painter(&image);
    style::prepare(painter);
    painter.scale(size.width() / 1920.0, size.height() / 1080.0);
    drawAurora(painter, {1920, 1080}, phase);
    const bool rtl = text.title.isRightToLeft();
    style::drawBadge(painter, {rtl ? 1620.0 : 168.0, 190, 132, 132});
    drawWords(painter, text);
    style::fillAccent(painter, {rtl ? 1512.0 : 168.0, 744, 240, 8}, 4);
    if (progress >= 0)
        drawProgress(painter, {168, 824, 1584, 28}, progress, rtl);
    return image;
}

QImage drawWallpaper(QSize size)
{
    QImage image = opaqueCanvas(size);
    QPainter painter(&image);
    style::prepare(painter);
    drawAurora(painter, size, 0.3);
    const qreal side = size.height() * 0.34;
    style::drawBadge(painter, {(size.width() - side) / 2, (size.height() - side) / 2, side, side});
    return image;
}

} // namespace quillmar::demo
