#include "tests/host/support/obs_picture.h"

#include <QJsonObject>
#include <QTemporaryDir>

#include <array>
#include <cstdlib>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

// Clips go through a conversion of colours that costs some steps.
constexpr int Tolerance = 40;

struct NamedColour {
    QLatin1StringView name;
    QRgb colour;
};

constexpr std::array Colours{NamedColour{"black"_L1, 0xff000000},  NamedColour{"red"_L1, 0xffff0000},
                             NamedColour{"green"_L1, 0xff00ff00},  NamedColour{"blue"_L1, 0xff0000ff},
                             NamedColour{"yellow"_L1, 0xffffff00}, NamedColour{"magenta"_L1, 0xffff00ff}};

bool isClose(QRgb left, QRgb right)
{
    return std::abs(qRed(left) - qRed(right)) <= Tolerance &&
           std::abs(qGreen(left) - qGreen(right)) <= Tolerance &&
           std::abs(qBlue(left) - qBlue(right)) <= Tolerance;
}

} // namespace

ObsPicture ObsPicture::take(DriverClient &driver, QSize size)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"program.png"_s);
    driver.ask(u"program-picture"_s,
               {{u"file"_s, file}, {u"width"_s, size.width()}, {u"height"_s, size.height()}});
    ObsPicture picture;
    picture.image_ = QImage(file);
    return picture;
}

QString ObsPicture::at(int x, int y) const
{
    const QRgb pixel = image_.pixel(x, y);
    for (const NamedColour &named : Colours) {
        if (isClose(pixel, named.colour))
            return named.name;
    }
    return QColor(pixel).name();
}

bool ObsPicture::differsFrom(const ObsPicture &other) const
{
    int different = 0;
    for (int y = 0; y < image_.height(); ++y) {
        for (int x = 0; x < image_.width(); ++x)
            different += isClose(image_.pixel(x, y), other.image_.pixel(x, y)) ? 0 : 1;
    }
    return different * 5 >= image_.width() * image_.height();
}

} // namespace quillmar::test
