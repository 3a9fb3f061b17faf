#include "demo/catalogue/backdrops.h"
#include "demo/catalogue/mockups.h"
#include "demo/catalogue/motion.h"
#include "demo/catalogue/overlays.h"
#include "demo/catalogue/pack.h"
#include "demo/catalogue/products.h"
#include "demo/catalogue/scenes.h"

#include <cmath>
#include <numbers>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

constexpr QSize kHd{1280, 720};
constexpr QSize kPlate{1024, 256};
constexpr QSize kCamera{640, 360};

Clip stinger(QImage (*draw)(QSize, qreal))
{
    return {.size = kHd,
            .framesPerSecond = 30,
            .frames = 36,
            .transparent = true,
            .drawFrame = [draw](qreal time) { return draw(kHd, time); }};
}

QImage drawLoop(qreal time)
{
    QImage image(kHd, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawAurora(painter, kHd, time);
    return image;
}

QImage drawCountdown(qreal time)
{
    return drawScene(kHd,
                     {u"Starting soon"_s, u"The first round is about to begin"_s, u"QUILLMAR  ·  LIVE"_s},
                     time, time);
}

QImage drawPulsingFrame(qreal time)
{
    return drawWebcamFrame(kCamera, u"LIVE"_s, 0, 0.5 - 0.5 * std::cos(2 * std::numbers::pi * time));
}

/// A stinger is laid over the picture of a game at three moments.
QImage showMoment(QImage (*draw)(QSize, qreal), qreal time)
{
    return showOverlay(draw(kHd, time));
}

QJsonObject stingerComponent(const QString &name, const QString &path, int point, int order,
                             const QString &shown)
{
    return toJson(ComponentText{.key = u"stinger-%1"_s.arg(order + 1),
                                .name = name,
                                .assetPath = path,
                                .mime = mimeOf(path),
                                .insertMode = u"stinger_transition"_s,
                                .sourceType = u"media"_s,
                                .transitionPoint = point,
                                .sortOrder = order,
                                .gallery = {picture(shown, name)}});
}

void makeStingers(Workshop &workshop)
{
    const QString key = u"pulse-stingers"_s;
    const QString file = u"pulse-stingers.zip"_s;
    const QString blades = u"stingers/blades.webm"_s;
    const QString tiles = u"stingers/tiles.webm"_s;
    workshop.addClip(key, blades, stinger(drawBladeStinger));
    workshop.addClip(key, tiles, stinger(drawTileStinger));
    workshop.pack(key, file, Archiver::InfoZip);
    const QImage half = showMoment(drawBladeStinger, 0.2);
    const QImage full = showMoment(drawBladeStinger, 0.5);
    const QImage wall = showMoment(drawTileStinger, 0.23);
    const QString cover =
        workshop.addPreview(u"pulse-cover.png"_s, showPack(half, full, wall, u"Pulse Stingers"_s));
    const QString bladesShown = workshop.addPreview(u"pulse-blades.jpg"_s, half);
    const QString tilesShown = workshop.addPreview(u"pulse-tiles.webp"_s, wall);
    workshop.addProduct(toJson(ProductText{
        .key = key,
        .version = u"1.2.0"_s,
        .name = u"Pulse – Stinger Transitions"_s,
        .description = u"Two quick stingers with a clear middle: slanted blades and a wall of tiles."_s,
        .category = u"Stingers"_s,
        .fileName = file,
        .mime = u"application/zip"_s,
        .gallery = {picture(cover, u"Cover"_s), picture(bladesShown, u"Blades"_s),
                    picture(tilesShown, u"Tiles"_s)},
        .components = {stingerComponent(u"Blades"_s, blades, 600, 0, bladesShown),
                       stingerComponent(u"Tiles"_s, tiles, 600, 1, tilesShown),
                       stingerComponent(u"Tiles, point far too late"_s, tiles, 500'000, 2, tilesShown),
                       stingerComponent(u"Blades, point before the start"_s, blades, -40, 3, bladesShown)}}));
}

/// One clip of the motion set, its component and its preview.
struct Part {
    QString path;
    QString name;
    QString mode;
    QString preview;
    int order = 0;
    Clip clip;
    QImage shown;
};

QList<Part> motionParts()
{
    const auto drawSparksFrame = [](qreal time) { return drawSparks(kHd, time); };
    return {{u"frames/pulse.webm"_s,
             u"Breathing frame"_s,
             u"webcam_frame"_s,
             u"living-light-frame.png"_s,
             2,
             {.size = kCamera, .frames = 50, .transparent = true, .drawFrame = drawPulsingFrame},
             showFrame(drawPulsingFrame(0.5))},
            {u"scenes/countdown.mp4"_s,
             u"Countdown"_s,
             u"fullscreen_scene"_s,
             u"living-light-countdown.jpg"_s,
             0,
             {.size = kHd, .frames = 75, .drawFrame = drawCountdown},
             showScene(drawCountdown(0.6))},
            {u"loops/sparks.webm"_s,
             u"Rising sparks"_s,
             u"overlay"_s,
             u"living-light-sparks.webp"_s,
             1,
             {.size = kHd, .frames = 50, .transparent = true, .drawFrame = drawSparksFrame},
             showOverlay(drawSparksFrame(0.4))},
            {u"loops/aurora.mp4"_s,
             u"Aurora backdrop"_s,
             u"overlay"_s,
             u"living-light-loop.jpg"_s,
             3,
             {.size = kHd, .frames = 75, .drawFrame = drawLoop},
             showScene(drawLoop(0.4))}};
}

ComponentText motionComponent(const Part &part)
{
    const bool isFrame = part.mode == "webcam_frame"_L1;
    return {.key = part.path.section(u'/', -1).section(u'.', 0, 0),
            .name = part.name,
            .assetPath = part.path,
            .mime = mimeOf(part.path),
            .insertMode = part.mode,
            .sourceType = u"media"_s,
            .position = isFrame ? u"bottom_left"_s : QString(),
            .loop = part.mode != "fullscreen_scene"_L1,
            .width = isFrame ? 480 : 0,
            .height = isFrame ? 270 : 0,
            .sortOrder = part.order};
}

void makeLoops(Workshop &workshop)
{
    const QString key = u"living-light"_s;
    const QList<Part> parts = motionParts();
    Pack pack(workshop, key);
    for (const Part &part : parts) {
        workshop.addClip(key, part.path, part.clip);
        pack.add(motionComponent(part), part.preview, part.shown);
    }
    pack.publish({.version = u"0.9.4"_s,
                  .name = u"Living Light – Motion Set"_s,
                  .description = u"Moving light for every layer: an endless backdrop, rising sparks, a "
                                 u"breathing camera frame and a countdown scene."_s,
                  .category = u"Motion"_s},
                 Archiver::SevenZip, u"living-light-cover.jpg"_s,
                 showPack(parts.at(0).shown, parts.at(1).shown, parts.at(2).shown, u"Living Light"_s));
}

/// A package that is no archive: its one component is the clip itself.
void makePersianClip(Workshop &workshop)
{
    const QString key = u"zirnevis-motaharrek"_s;
    const QString name = u"zirnevis.webm"_s;
    const auto draw = [](qreal time) {
        return drawLowerThird(kPlate, u"آرش و مینا"_s, u"پخش زندهٔ امشب"_s, comeAndGo(time));
    };
    workshop.addClip(
        key, name,
        {.size = kPlate, .framesPerSecond = 25, .frames = 75, .transparent = true, .drawFrame = draw});
    workshop.ship(key, name);
    const QString shown = workshop.addPreview(u"zirnevis.png"_s, showOnStage(draw(0.5), kCoverSize));
    workshop.addProduct(toJson(ProductText{
        .key = key,
        .version = u"1.1.0"_s,
        .name = u"زیرنویس متحرک فارسی"_s,
        .description = u"یک زیرنویس شفاف که آرام باز و بسته می‌شود."_s,
        .category = u"متحرک"_s,
        .fileName = name,
        .mime = u"video/webm"_s,
        .gallery = {picture(shown, u"زیرنویس"_s)},
        .components = {toJson(ComponentText{.key = u"clip"_s,
                                            .name = u"زیرنویس متحرک"_s,
                                            .assetPath = name,
                                            .mime = u"video/webm"_s,
                                            .insertMode = u"overlay"_s,
                                            .sourceType = u"media"_s,
                                            .loop = true,
                                            .gallery = {picture(shown, u"زیرنویس"_s)}})}}));
}

} // namespace

void makeMotion(Workshop &workshop)
{
    makeStingers(workshop);
    makeLoops(workshop);
    makePersianClip(workshop);
}

} // namespace quillmar::demo
