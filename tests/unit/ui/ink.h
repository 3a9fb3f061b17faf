#pragma once

#include <QImage>
#include <QWidget>

#include <cstdlib>

namespace quillmar::test
{

/// How much of its letters a widget shows: what differs from the ground, which is the colour at the lower
/// left.
inline double inkOf(QWidget &widget)
{
    const QImage image = widget.grab().toImage().convertToFormat(QImage::Format_Grayscale8);
    const int ground = image.pixelColor(0, image.height() - 1).value();
    qint64 sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += std::abs(image.pixelColor(x, y).value() - ground);
    }
    return static_cast<double>(sum);
}

} // namespace quillmar::test
