#pragma once

#include <QImage>
#include <QString>

namespace quillmar::demo
{

/// What a full-screen scene says. Right to left when `title` is.
struct SceneText {
    QString title;
    QString subtitle;
    QString footer;
};

/// A full-screen scene on the aurora. `phase` as for the backdrop; `progress` below 0 draws no progress bar.
QImage drawScene(QSize size, const SceneText &text, qreal phase, qreal progress = -1);

/// A still without words.
QImage drawWallpaper(QSize size);

} // namespace quillmar::demo
