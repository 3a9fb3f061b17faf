#pragma once

#include "tests/host/support/driver_client.h"

#include <QColor>
#include <QImage>

namespace quillmar::test
{

/// What OBS sent out at one moment.
class ObsPicture
{
public:
    /// As OBS renders it now, in `size`; without pixels when OBS has no picture.
    static ObsPicture take(DriverClient &driver, QSize size);

    bool isNull() const { return image_.isNull(); }
    /// The name of the colour at a point, as far as the tests use colours: "black", "red", "green", "blue",
    /// "yellow", "magenta", or else its number.
    QString at(int x, int y) const;
    QString atCentre() const { return at(image_.width() / 2, image_.height() / 2); }
    /// A fifth of the pixels or more have other colours than in a picture of the same size.
    bool differsFrom(const ObsPicture &other) const;

private:
    QImage image_;
};

} // namespace quillmar::test
