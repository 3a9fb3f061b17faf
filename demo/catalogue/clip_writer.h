#pragma once

#include <QImage>
#include <QString>

#include <functional>

namespace quillmar::demo
{

/// One clip to encode with ffmpeg. The container follows from the suffix of the path: ".mp4" is H.264,
/// ".webm" is VP9.
struct Clip {
    QSize size;
    int framesPerSecond = 25;
    int frames = 50;
    bool transparent = false;                    ///< keep the alpha channel (".webm" only)
    std::function<QImage(qreal time)> drawFrame; ///< `time` runs from 0 (first frame) towards 1
};

/// Draws and encodes the clip. Empty on success, else what went wrong. Blocks; the same clip gives the same
/// bytes.
QString writeClip(const QString &path, const Clip &clip);

} // namespace quillmar::demo
