#include "demo/catalogue/descriptions.h"
#include "demo/catalogue/mockups.h"
#include "demo/catalogue/overlays.h"
#include "demo/catalogue/products.h"
#include "demo/catalogue/scenes.h"
#include "demo/catalogue/workshop.h"

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

/// One file, no components: the card offers the file itself.
void makeWallpaper(Workshop &workshop)
{
    const QString key = u"midnight-wallpaper"_s;
    const QString file = u"Midnight Wallpaper.jpg"_s;
    const QImage wallpaper = drawWallpaper({2560, 1440});
    workshop.addPicture(key, file, wallpaper);
    workshop.ship(key, file);
    const QString shown = workshop.addPreview(u"midnight-wallpaper.jpg"_s, showScene(wallpaper, kCoverSize));
    workshop.addProduct(toJson(
        ProductText{.key = key,
                    .version = u"1.0.0"_s,
                    .name = u"Midnight – Desktop Wallpaper"_s,
                    .description = u"A single picture in 2560 × 1440 for the desktop behind the stream."_s,
                    .category = u"Extras"_s,
                    .fileName = file,
                    .mime = u"image/jpeg"_s,
                    .gallery = {picture(shown, u"Wallpaper"_s)}}));
}

/// No archive: the package is its own component.
void makeLogo(Workshop &workshop)
{
    const QString key = u"quillmar-mark"_s;
    const QString file = u"quillmar-mark.png"_s;
    const QImage logo = drawLogo(720);
    workshop.addPicture(key, file, logo);
    workshop.ship(key, file);
    const QString shown = workshop.addPreview(u"quillmar-mark.png"_s, showOnStage(logo, kCoverSize));
    QJsonObject product =
        toJson(ProductText{.key = key,
                           .version = u"5"_s,
                           .name = u"Quillmar Mark"_s,
                           .description = u"The feather badge as a transparent picture."_s,
                           .category = u"Extras"_s,
                           .fileName = file,
                           .mime = u"image/png"_s,
                           .components = {toJson(ComponentText{.key = u"mark"_s,
                                                               .name = u"Feather badge"_s,
                                                               .assetPath = file,
                                                               .mime = u"image/png"_s,
                                                               .insertMode = u"webcam_frame"_s,
                                                               .sourceType = u"image"_s,
                                                               .position = u"top_right"_s,
                                                               .width = 220,
                                                               .height = 220})}});
    product.remove("preview_gallery"_L1);
    product.insert("preview_image"_L1, shown);
    product.insert("preview_revision"_L1, u"7"_s);
    workshop.addProduct(product);
}

void makeGradients(Workshop &workshop)
{
    const QString key = u"forty-gradients"_s;
    constexpr int count = 40;
    QJsonArray gallery;
    for (int i = 1; i <= count; ++i) {
        const QImage swatch = showSwatch(i, count);
        workshop.addPicture(key, u"gradients/%1.jpg"_s.arg(i, 2, 10, QChar(u'0')), swatch);
        const QString address = workshop.addPreview(u"gradient-%1.jpg"_s.arg(i, 2, 10, QChar(u'0')), swatch);
        gallery.append(picture(address, u"Gradient %1"_s.arg(i)));
    }
    workshop.pack(key, u"Forty Gradients.ZIP"_s, Archiver::Python);
    workshop.addProduct(
        toJson(ProductText{.key = key,
                           .version = u"1.0.0"_s,
                           .name = u"Forty Gradients"_s,
                           .description = u"Forty quiet backgrounds in one folder, from leaf to sea."_s,
                           .category = u" Overlays "_s,
                           .fileName = u"Forty Gradients.ZIP"_s,
                           .mime = u"application/octet-stream"_s,
                           .gallery = gallery,
                           .components = {toJson(ComponentText{.key = u"all"_s,
                                                               .name = u"All gradients (folder)"_s,
                                                               .assetPath = u"gradients"_s,
                                                               .insertMode = u"overlay"_s,
                                                               .sourceType = u"image"_s,
                                                               .assetKind = u"folder"_s}),
                                          toJson(ComponentText{.key = u"first"_s,
                                                               .name = u"Gradient 1 as a scene"_s,
                                                               .assetPath = u"gradients/01.jpg"_s,
                                                               .mime = u"image/jpeg"_s,
                                                               .insertMode = u"fullscreen_scene"_s,
                                                               .sourceType = u"image"_s,
                                                               .sortOrder = -1})}}));
}

void makeLongWords(Workshop &workshop)
{
    const QString key = u"long-words"_s;
    const QString file = u"long-words.png"_s;
    const QImage card = drawGoalCard(u"Donaudampfschifffahrtsgesellschaftskapitän"_s, u"1 / 1"_s, 1);
    workshop.addPicture(key, file, card);
    workshop.ship(key, file);
    const QString shown = workshop.addPreview(u"long-words.png"_s, showOnStage(card));
    workshop.addProduct(toJson(ProductText{
        .key = key,
        .version = u"2026.01.02-release-candidate.4"_s,
        .name = u"Donaudampfschifffahrtselektrizitätenhauptbetriebswerkbauunterbeamtengesellschaft"_s,
        .description =
            u"A card whose words are longer than the dock is wide, and whose description is longer than a "
            u"card has room for. It goes on about nothing in particular, politely, until it is sure to have "
            u"passed two hundred and forty characters,   and then it adds one more remark:\n\n"
            u"Rindfleischetikettierungsüberwachungsaufgabenübertragungsgesetz."_s,
        .category = QString(),
        .fileName = file,
        .mime = u"image/png"_s,
        .gallery = {picture(shown, u"Card"_s)},
        .components = {toJson(
            ComponentText{.key = u"card"_s,
                          .name = u"Rindfleischetikettierungsüberwachungsaufgabenübertragungsgesetzeskarte"_s,
                          .assetPath = file,
                          .mime = u"image/png"_s,
                          .insertMode = u"overlay"_s,
                          .sourceType = u"image"_s})}}));
}

QJsonObject iconProduct(Workshop &workshop, const QString &key, const QString &name,
                        const QString &description, Archiver archiver)
{
    QList<QImage> icons;
    for (int sign = 0; sign < 6; ++sign) {
        icons.append(drawIcon(sign, 240));
        workshop.addPicture(key, u"icons/sign %1.png"_s.arg(sign + 1), icons.last());
    }
    const QString file = key + u".zip"_s;
    workshop.pack(key, file, archiver);
    const QString shown = workshop.addPreview(key + u".png"_s, showRow(icons));
    return toJson(ProductText{.key = key,
                              .version = u"1.0.0"_s,
                              .name = name,
                              .description = description,
                              .category = u"overlays"_s,
                              .fileName = file,
                              .mime = u"application/zip"_s,
                              .gallery = {picture(shown, name)},
                              .components = {toJson(ComponentText{.key = u"heart"_s,
                                                                  .name = u"Heart"_s,
                                                                  .assetPath = u"icons/sign 2.png"_s,
                                                                  .mime = u"image/png"_s,
                                                                  .insertMode = u"overlay"_s,
                                                                  .sourceType = u"image"_s,
                                                                  .sortOrder = 1}),
                                             toJson(ComponentText{.key = u"all"_s,
                                                                  .name = u"All icons (folder)"_s,
                                                                  .assetPath = u"icons/"_s,
                                                                  .insertMode = u"overlay"_s,
                                                                  .sourceType = u"image"_s,
                                                                  .assetKind = u"folder"_s,
                                                                  .sortOrder = 1})}});
}

void makeDigestOddities(Workshop &workshop)
{
    QJsonObject unknown =
        iconProduct(workshop, u"icons-unmeasured"_s, u"Round Icons, unmeasured"_s,
                    u"The service knows neither size nor digest of this package."_s, Archiver::InfoZip);
    unknown.insert("file_size"_L1, 0);
    unknown.insert("sha256"_L1, QString());
    workshop.addProduct(unknown);
    const QJsonObject loud =
        iconProduct(workshop, u"Icons_LOUD.v2"_s, u"Round Icons, loud digest"_s,
                    u"The digest of this package comes in upper-case letters."_s, Archiver::SevenZip);
    workshop.addProduct(loud, Workshop::Digest::UpperCase);
}

/// Components that cannot be added, each for another reason.
void makeOddments(Workshop &workshop)
{
    const QString key = u"oddments"_s;
    workshop.addPicture(key, u"pictures/badge.png"_s, drawLogo(480));
    workshop.addPicture(key, u"pictures/scene.png"_s, drawWallpaper({1280, 720}));
    workshop.pack(key, u"oddments.zip"_s, Archiver::BsdTar);
    const QString shown = workshop.addPreview(u"oddments.png"_s, showOnStage(drawLogo(480), kCoverSize));
    const auto badge = [](const QString &name, const QString &mode, const QString &source, int order) {
        return ComponentText{.key = u"badge-%1"_s.arg(order),
                             .name = name,
                             .assetPath = u"pictures/badge.png"_s,
                             .mime = u"image/png"_s,
                             .insertMode = mode,
                             .sourceType = source,
                             .sortOrder = order};
    };
    ComponentText manual = badge(u"Download only"_s, u"overlay"_s, u"image"_s, 1);
    manual.autoInsert = false;
    ComponentText nothing = badge(u"A note without a file"_s, u"overlay"_s, u"image"_s, 2);
    nothing.assetPath.clear();
    nothing.assetKind = u"note"_s;
    ComponentText gone = badge(u"A file that the archive lacks"_s, u"overlay"_s, u"image"_s, 6);
    gone.assetPath = u"pictures/gone.png"_s;
    workshop.addProduct(toJson(ProductText{
        .key = key,
        .version = u"0.0.1"_s,
        .name = u"Oddments"_s,
        .description = u"Parts that can be downloaded but not added, and one that can be neither."_s,
        .category = u"Webcam frames "_s,
        .fileName = u"oddments.zip"_s,
        .mime = u"application/zip"_s,
        .gallery = {picture(Workshop::previewAddress(u"gone.png"_s), u"Only the fallback exists"_s, shown),
                    picture(Workshop::previewAddress(u"also-gone.png"_s), u"Neither exists"_s)},
        .components = {toJson(manual), toJson(nothing),
                       toJson(badge(u"Stinger made of a picture"_s, u"stinger_transition"_s, u"image"_s, 3)),
                       toJson(badge(u"Unknown way to insert"_s, u"hologram"_s, u"image"_s, 4)),
                       toJson(badge(u"Unknown kind of source"_s, u"overlay"_s, u"audio"_s, 5)),
                       toJson(gone)}}));
}

} // namespace

void makeOddities(Workshop &workshop)
{
    makeWallpaper(workshop);
    makeLogo(workshop);
    makeGradients(workshop);
    makeLongWords(workshop);
    makeDigestOddities(workshop);
    makeOddments(workshop);
}

} // namespace quillmar::demo
