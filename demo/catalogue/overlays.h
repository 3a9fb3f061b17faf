#pragma once

#include <QImage>
#include <QString>

/// Graphics that lie over a stream: transparent but for their own shapes, unless a line says otherwise.
namespace quillmar::demo
{

/// 1920x1080: title bar above, three info boxes, ticker below.
QImage drawMatchOverlay();

/// A name plate that slides in from the left; `reveal` 0 to 1. Fits any width-to-height ratio of about 4.
QImage drawLowerThird(QSize size, const QString &name, const QString &role, qreal reveal = 1);

/// Box for chat messages, 480x720.
QImage drawChatBox();

/// 720x240, an opaque card.
QImage drawGoalCard(const QString &title, const QString &count, qreal share);

/// Square button with one of six signs (0 to 5).
QImage drawIcon(int sign, int side);

/// The brand badge alone.
QImage drawLogo(int side);

/// Camera border with an empty middle; `pulse` 0 to 1 makes it glow.
QImage drawWebcamFrame(QSize size, const QString &name, int variant, qreal pulse = 0);

} // namespace quillmar::demo
