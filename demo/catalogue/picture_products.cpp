#include "demo/catalogue/descriptions.h"
#include "demo/catalogue/exif.h"
#include "demo/catalogue/mockups.h"
#include "demo/catalogue/overlays.h"
#include "demo/catalogue/products.h"
#include "demo/catalogue/workshop.h"

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

constexpr int kOrientations = 8;

/// A product whose package is one picture, offered as it is.
ProductText singlePicture(Workshop &workshop, const QString &key, const QString &file)
{
    workshop.addPicture(key, file, drawLogo(480));
    workshop.ship(key, file);
    return {
        .key = key, .version = u"1.0.0"_s, .category = u"Extras"_s, .fileName = file, .mime = u"image/png"_s};
}

/// Eight files of one picture, each turned another way, that all look the same.
void makeTurned(Workshop &workshop)
{
    ProductText product = singlePicture(workshop, u"eight-turns"_s, u"Eight Turns.png"_s);
    product.name = u"Eight Turns"_s;
    product.description = u"One picture, stored in eight directions. All of them are shown upright."_s;
    const QImage upright = showSwatch(1, 1);
    for (int orientation = 1; orientation <= kOrientations; ++orientation) {
        product.gallery.append(picture(
            workshop.addPreviewFile(u"turned-%1.jpg"_s.arg(orientation), turnedJpeg(upright, orientation)),
            u"Stored in direction %1"_s.arg(orientation)));
    }
    workshop.addProduct(toJson(product));
}

/// A gallery of five in every format; the address of the first is out of order at its first request.
void makeFormats(Workshop &workshop)
{
    ProductText product = singlePicture(workshop, u"three-formats"_s, u"بستهٔ قالب‌ها.png"_s);
    product.name = u"سه قالب تصویر"_s;
    product.description =
        u"پنج پیش‌نمایش در سه قالب PNG، JPEG و WebP؛ نخستین آن‌ها یک بار از نشانی جایگزین می‌آید."_s;
    product.category = u"فارسی"_s;
    const QString steady = workshop.addPreview(u"formats-1.png"_s, showSwatch(1, 5));
    const QString unsteady = workshop.addPreview(u"unsteady-formats-1.png"_s, showSwatch(1, 5));
    product.gallery = {picture(unsteady, u"یک"_s, steady),
                       picture(workshop.addPreview(u"formats-2.jpg"_s, showSwatch(2, 5)), u"دو"_s),
                       picture(workshop.addPreview(u"formats-3.webp"_s, showSwatch(3, 5)), u"سه"_s),
                       picture(workshop.addPreview(u"formats-4.png"_s, showSwatch(4, 5)), u"چهار"_s),
                       picture(workshop.addPreview(u"formats-5.webp"_s, showSwatch(5, 5)), u"پنج"_s)};
    workshop.addProduct(toJson(product));
}

void makeUnseen(Workshop &workshop)
{
    ProductText product = singlePicture(workshop, u"unseen"_s, u"unseen.png"_s);
    product.name = u"Unseen"_s;
    product.description = u"Nobody has made a preview of this one yet."_s;
    workshop.addProduct(toJson(product));
}

} // namespace

void makePictures(Workshop &workshop)
{
    makeTurned(workshop);
    makeFormats(workshop);
    makeUnseen(workshop);
}

} // namespace quillmar::demo
