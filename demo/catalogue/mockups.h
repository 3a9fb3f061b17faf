#pragma once

#include <QImage>
#include <QList>
#include <QString>

/// Preview pictures: assets as they look in use.
namespace quillmar::demo
{

inline constexpr QSize kCoverSize{1040, 560};
inline constexpr QSize kPreviewSize{960, 540};

/// An overlay over a game, filling the picture.
QImage showOverlay(const QImage &overlay, QSize size = kPreviewSize);

/// A graphic in the middle of a dark stage.
QImage showOnStage(const QImage &graphic, QSize size = kPreviewSize);

/// A camera frame around a person.
QImage showFrame(const QImage &frame, QSize size = kPreviewSize);

/// An opaque picture, cut to `size`.
QImage showScene(const QImage &scene, QSize size = kPreviewSize);

/// Three pictures fanned out, with a title: the cover of a pack.
QImage showPack(const QImage &left, const QImage &middle, const QImage &right, const QString &title);

/// Up to six square graphics in two rows.
QImage showRow(const QList<QImage> &graphics);

/// Number `number` of a series, each in a shade of its own.
QImage showSwatch(int number, int count);

} // namespace quillmar::demo
