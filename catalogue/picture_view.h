#pragma once

#include <QImage>
#include <QPixmap>
#include <QSize>

class QWidget;

namespace quillmar
{

/// `image` as large as it fits into `place` (logical pixels, at least 1 each way), in its own proportions and
/// with as many pixels as the screen of `widget` has there.
QPixmap fittedPixmap(const QImage &image, const QSize &place, const QWidget *widget);

/// Opens a window of its own with `image`, at most 1100 x 800 logical pixels. It does not block, dies with
/// `parent` and destroys itself when it is closed.
void openEnlargedView(const QImage &image, const QString &title, QWidget *parent);

} // namespace quillmar
