#include "demo/catalogue/backdrops.h"
#include "demo/catalogue/descriptions.h"
#include "demo/catalogue/mockups.h"
#include "demo/catalogue/motion.h"
#include "demo/catalogue/overlays.h"
#include "demo/catalogue/products.h"
#include "demo/catalogue/scenes.h"
#include "demo/catalogue/workshop.h"

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

void makeStingers(Workshop &workshop)
{
    const QString key = u"pulse-stingers"_s;
    workshop.addClip(key, u"stingers/blades.webm"_s, stinger(drawBladeStinger));
    workshop.addClip(key, u"stingers/tiles.webm"_s, stinger(drawTileStinger));
    workshop.pack(key, u"pulse-stingers.zip"_s, Archiver::InfoZip);
    const QImage half = showMoment(drawBladeStinger, 0.2);
    const QImage full = showMoment(drawBladeStinger, 0.5);
    const QImage tiles = showMoment(drawTileStinger, 0.23);
    const QString cover =
        workshop.addPreview(u"pulse-cover.png"_s, showPack(half, full, tiles, u"Pulse Stingers"_s));
    const QString blades = workshop.addPreview(u"pulse-blades.jpg"_s, half);
    const QString grid = workshop.addPreview(u"pulse-tiles.webp"_s, tiles);
    const auto component = [](const QString &name, const QString &path, int point, int order,
                              const QString &shown) {
        return toJson(ComponentText{.key = name.toLower(),
                                    .name = name,
                                    .assetPath = path,
                                    .mime = u"video/webm"_s,
                                    .insertMode = u"stinger_transition"_s,
                                    .sourceType = u"media"_s,
                                    .transitionPoint = point,
                                    .sortOrder = order,
                                    .gallery = {picture(shown, name)}});
    };
    workshop.addProduct(toJson(ProductText{
        .key = key,
        .version = u"1.2.0"_s,
        .name = u"Pulse – Stinger Transitions"_s,
        .description = u"Two quick stingers with a clear middle: slanted blades and a wall of tiles."_s,
        .category = u"Stingers"_s,
        .fileName = u"pulse-stingers.zip"_s,
        .mime = u"application/zip"_s,
        .gallery = {picture(cover, u"Cover"_s), picture(blades, u"Blades"_s), picture(grid, u"Tiles"_s)},
        .components = {
            component(u"Blades"_s, u"stingers/blades.webm"_s, 600, 0, blades),
            component(u"Tiles"_s, u"stingers/tiles.webm"_s, 600, 1, grid),
            component(u"Tiles, point far too late"_s, u"stingers/tiles.webm"_s, 500'000, 2, grid),
            component(u"Blades, point before the start"_s, u"stingers/blades.webm"_s, -40, 3, blades)}}));
}

void makeLoops(Workshop &workshop)
{
    const QString key = u"living-light"_s;
    workshop.addClip(key, u"loops/aurora.mp4"_s,
                     {.size = kHd, .framesPerSecond = 25, .frames = 75, .drawFrame = drawLoop});
    workshop.addClip(
        key, u"loops/sparks.webm"_s,
        {.size = kHd, .framesPerSecond = 25, .frames = 50, .transparent = true, .drawFrame = [](qreal time) {
             return drawSparks(kHd, time);
         }});
    workshop.addClip(key, u"frames/pulse.webm"_s,
                     {.size = kCamera,
                      .framesPerSecond = 25,
                      .frames = 50,
                      .transparent = true,
                      .drawFrame = drawPulsingFrame});
    workshop.addClip(key, u"scenes/countdown.mp4"_s,
                     {.size = kHd, .framesPerSecond = 25, .frames = 75, .drawFrame = drawCountdown});
    workshop.pack(key, u"living-light.zip"_s, Archiver::SevenZip);
    const QImage loop = showScene(drawLoop(0.4));
    const QImage sparks = showOverlay(drawSparks(kHd, 0.4));
    const QImage frame = showFrame(drawPulsingFrame(0.5));
    const QImage countdown = showScene(drawCountdown(0.6));
    const QString cover = workshop.addPreview(u"living-light-cover.jpg"_s,
                                              showPack(frame, countdown, sparks, u"Living Light"_s));
    const QString loopAddress = workshop.addPreview(u"living-light-loop.jpg"_s, loop);
    const QString sparksAddress = workshop.addPreview(u"living-light-sparks.webp"_s, sparks);
    const QString frameAddress = workshop.addPreview(u"living-light-frame.png"_s, frame);
    const QString countdownAddress = workshop.addPreview(u"living-light-countdown.jpg"_s, countdown);
    const auto media = [](const QString &name, const QString &path, const QString &mode, bool loops,
                          int order, const QString &shown) {
        return toJson(ComponentText{.key = path.section(u'/', -1).section(u'.', 0, 0),
                                    .name = name,
                                    .assetPath = path,
                                    .mime = path.endsWith(".mp4"_L1) ? u"video/mp4"_s : u"video/webm"_s,
                                    .insertMode = mode,
                                    .sourceType = u"media"_s,
                                    .position = mode == "webcam_frame"_L1 ? u"bottom_left"_s : QString(),
                                    .loop = loops,
                                    .width = mode == "webcam_frame"_L1 ? 480 : 0,
                                    .height = mode == "webcam_frame"_L1 ? 270 : 0,
                                    .sortOrder = order,
                                    .gallery = {picture(shown, name)}});
    };
    workshop.addProduct(toJson(ProductText{
        .key = key,
        .version = u"0.9.4"_s,
        .name = u"Living Light – Motion Set"_s,
        .description =
            u"Moving light for every layer: an endless backdrop, rising sparks, a breathing camera frame and "
            u"a countdown scene."_s,
        .category = u"Motion"_s,
        .fileName = u"living-light.zip"_s,
        .mime = u"application/zip"_s,
        .gallery = {picture(cover, u"Cover"_s), picture(loopAddress, u"Backdrop"_s),
                    picture(sparksAddress, u"Sparks"_s), picture(frameAddress, u"Camera frame"_s),
                    picture(countdownAddress, u"Countdown"_s)},
        .components = {
            media(u"Aurora backdrop"_s, u"loops/aurora.mp4"_s, u"overlay"_s, true, 3, loopAddress),
            media(u"Rising sparks"_s, u"loops/sparks.webm"_s, u"overlay"_s, true, 1, sparksAddress),
            media(u"Breathing frame"_s, u"frames/pulse.webm"_s, u"webcam_frame"_s, true, 2, frameAddress),
            media(u"Countdown"_s, u"scenes/countdown.mp4"_s, u"fullscreen_scene"_s, false, 0,
                  countdownAddress)}}));
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
