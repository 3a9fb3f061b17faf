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

constexpr QSize kFullHd{1920, 1080};
constexpr QSize kPlate{1280, 320};

void addIcons(Workshop &workshop, const QString &key)
{
    for (int sign = 0; sign < 6; ++sign)
        workshop.addPicture(key, u"icons/sign-%1.png"_s.arg(sign + 1), drawIcon(sign, 160));
}

struct Graphic {
    QString path;
    QString name;
    QString preview;
    int order = 0;
    QImage image;
    QImage shown;
};

QList<Graphic> overlayGraphics()
{
    const QImage match = drawMatchOverlay();
    const QImage plate = drawLowerThird(kPlate, u"Mina Rostami"_s, u"CASTER"_s);
    const QImage chat = drawChatBox();
    const QImage goal = drawGoalCard(u"Follower goal"_s, u"8,420 / 10,000"_s, 0.842);
    return {{u"overlays/lower-third.webp"_s, u"Lower third"_s, u"neon-garden-plate.webp"_s, 2, plate,
             showOnStage(plate)},
            {u"overlays/match.png"_s, u"Match overlay"_s, u"neon-garden-match.jpg"_s, 1, match,
             showOverlay(match)},
            {u"overlays/goal.jpg"_s, u"Goal card"_s, u"neon-garden-goal.jpg"_s, 2, goal, showOnStage(goal)},
            {u"overlays/chat.png"_s, u"Chat box"_s, u"neon-garden-chat.png"_s, 2, chat, showOnStage(chat)}};
}

QJsonObject overlayComponent(const Graphic &graphic, const QString &address)
{
    return toJson(ComponentText{.key = graphic.path.section(u'/', -1).section(u'.', 0, 0),
                                .name = graphic.name,
                                .assetPath = graphic.path,
                                .mime = mimeOf(graphic.path),
                                .insertMode = u"overlay"_s,
                                .sourceType = u"image"_s,
                                .sortOrder = graphic.order,
                                .gallery = {picture(address, graphic.name)}});
}

QJsonObject iconFolder()
{
    return toJson(ComponentText{.key = u"icons"_s,
                                .name = u"Icons (folder)"_s,
                                .assetPath = u"icons"_s,
                                .insertMode = u"overlay"_s,
                                .sourceType = u"image"_s,
                                .assetKind = u"folder"_s,
                                .sortOrder = 9});
}

void makeOverlayPack(Workshop &workshop)
{
    const QString key = u"neon-garden-overlays"_s;
    const QString file = u"neon-garden-overlays.zip"_s;
    const QList<Graphic> graphics = overlayGraphics();
    QJsonArray gallery;
    QJsonArray components{iconFolder()};
    for (const Graphic &graphic : graphics) {
        workshop.addPicture(key, graphic.path, graphic.image);
        const QString address = workshop.addPreview(graphic.preview, graphic.shown);
        gallery.append(picture(address, graphic.name));
        components.append(overlayComponent(graphic, address));
    }
    addIcons(workshop, key);
    workshop.pack(key, file, Archiver::InfoZip);
    const QImage cover =
        showPack(graphics.at(0).shown, graphics.at(1).shown, graphics.at(2).shown, u"Neon Garden"_s);
    gallery.prepend(picture(workshop.addPreview(u"neon-garden-cover.png"_s, cover), u"Cover"_s));
    workshop.addProduct(toJson(ProductText{
        .key = key,
        .version = u"2.1.0"_s,
        .name = u"Neon Garden – Overlay Pack"_s,
        .description =
            u"A calm, dark set for competitive streams: match bar with ticker, lower third, chat box, "
            u"goal card and six round icons."_s,
        .category = u"Overlays"_s,
        .fileName = file,
        .mime = u"application/zip"_s,
        .gallery = gallery,
        .components = components}));
}

struct FrameText {
    QString path;
    QString name;
    QString position;
    QSize size;
    int variant = 0;
};

QList<FrameText> frameTexts()
{
    return {{u"frames/round.png"_s, u"Round, bottom right"_s, u"bottom_right"_s, {480, 270}, 0},
            {u"frames/square.png"_s, u"Square, bottom left"_s, u"bottom_left"_s, {480, 270}, 1},
            {u"frames/brackets.webp"_s, u"Brackets, top right"_s, u"top_right"_s, {640, 360}, 2},
            {u"frames/stage.png"_s, u"Stage, centre"_s, u"center"_s, {1280, 720}, 3},
            {u"frames/default.png"_s, u"Default size and place"_s, QString(), {0, 0}, 0},
            {u"frames/corner.png"_s, u"Place of its own"_s, u"top_left"_s, {400, 225}, 2},
            {u"frames/huge.png"_s, u"Larger than any canvas"_s, u"center"_s, {9000, 5000}, 1}};
}

QImage drawFrame(const FrameText &frame, bool named)
{
    const bool isDrawable = frame.size.width() > 0 && frame.size.width() <= 1920;
    const QSize size = isDrawable ? frame.size * 2 : QSize(960, 540);
    return drawWebcamFrame(size, named ? u"MINA"_s : QString(), frame.variant);
}

QJsonObject frameComponent(const FrameText &frame, int order, const QString &address)
{
    return toJson(ComponentText{.key = frame.path.section(u'/', -1),
                                .name = frame.name,
                                .assetPath = frame.path,
                                .mime = mimeOf(frame.path),
                                .insertMode = u"webcam_frame"_s,
                                .sourceType = u"image"_s,
                                .position = frame.position,
                                .width = frame.size.width(),
                                .height = frame.size.height(),
                                .sortOrder = order,
                                .variant = u"Variant %1"_s.arg(frame.variant + 1),
                                .gallery = {picture(address, frame.name)}});
}

void makeFramePack(Workshop &workshop)
{
    const QString key = u"aurora-webcam-frames"_s;
    const QString file = u"aurora-webcam-frames.zip"_s;
    QJsonArray components;
    QJsonArray gallery;
    QList<QImage> shown;
    for (const FrameText &frame : frameTexts()) {
        const QImage image = drawFrame(frame, shown.size() % 2 == 0);
        workshop.addPicture(key, frame.path, image);
        shown.append(showFrame(image));
        const QString name = frame.path.section(u'/', -1).section(u'.', 0, 0);
        const QString address = workshop.addPreview(u"aurora-%1.jpg"_s.arg(name), shown.last());
        gallery.append(picture(address, frame.name));
        components.append(frameComponent(frame, int(components.size()), address));
    }
    workshop.pack(key, file, Archiver::SevenZip);
    const QImage cover = showPack(shown.at(1), shown.at(0), shown.at(2), u"Aurora Frames"_s);
    gallery.prepend(picture(workshop.addPreview(u"aurora-cover.webp"_s, cover), u"Cover"_s));
    workshop.addProduct(toJson(ProductText{
        .key = key,
        .version = u"1.4.2"_s,
        .name = u"Aurora – Webcam Frames"_s,
        .description =
            u"Glowing borders for the camera, one for each corner and one for the middle of the stage."_s,
        .category = u"Webcam frames"_s,
        .fileName = file,
        .mime = u"application/zip"_s,
        .gallery = gallery,
        .components = components}));
}

struct SceneFile {
    QString path;
    QString name;
    QString mime;
    SceneText text;
    qreal progress = -1;
};

/// Draws the scenes of a pack and returns their components; fills `shown` and `gallery` alongside.
QJsonArray addScenes(Workshop &workshop, const QString &key, const QList<SceneFile> &scenes,
                     QList<QImage> &shown, QJsonArray &gallery)
{
    QJsonArray components;
    for (const SceneFile &scene : scenes) {
        const qsizetype number = shown.size();
        const QImage image = drawScene(kFullHd, scene.text, 0.21 * qreal(number), scene.progress);
        workshop.addPicture(key, scene.path, image);
        shown.append(showScene(image));
        const QString address = workshop.addPreview(u"%1-%2.jpg"_s.arg(key).arg(number + 1), shown.last());
        gallery.append(picture(address, scene.name));
        components.append(toJson(ComponentText{.key = u"scene-%1"_s.arg(number + 1),
                                               .name = scene.name,
                                               .assetPath = scene.path,
                                               .mime = scene.mime,
                                               .insertMode = u"fullscreen_scene"_s,
                                               .sourceType = u"image"_s,
                                               .width = kFullHd.width(),
                                               .height = kFullHd.height(),
                                               .sortOrder = int(number),
                                               .gallery = {picture(address, scene.name)}}));
    }
    return components;
}

void makeScenePack(Workshop &workshop)
{
    const QString key = u"emerald-scenes"_s;
    const QString footer = u"QUILLMAR  ·  EMERALD SCENES"_s;
    const QList<SceneFile> scenes{
        {u"scenes/starting-soon.png"_s,
         u"Starting soon"_s,
         u"image/png"_s,
         {u"Starting soon"_s, u"Get a cup of tea, we begin in a moment"_s, footer},
         0.35},
        {u"scenes/be-right-back.jpg"_s,
         u"Be right back"_s,
         u"image/jpeg"_s,
         {u"Be right back"_s, u"Stretch, drink some water, stay a while"_s, footer}},
        {u"scenes/stream-ending.webp"_s,
         u"Stream ending"_s,
         u"image/webp"_s,
         {u"See you soon"_s, u"Thank you for watching tonight"_s, footer}},
    };
    QList<QImage> shown;
    QJsonArray gallery;
    const QJsonArray components = addScenes(workshop, key, scenes, shown, gallery);
    workshop.pack(key, u"emerald-scenes.zip"_s, Archiver::BsdTar);
    const QImage cover = showPack(shown.at(1), shown.at(0), shown.at(2), u"Emerald Scenes"_s);
    gallery.prepend(picture(workshop.addPreview(u"emerald-cover.jpg"_s, cover), u"Cover"_s));
    workshop.addProduct(toJson(ProductText{
        .key = key,
        .version = u"3.0.1"_s,
        .name = u"Emerald – Full-screen Scenes"_s,
        .description = u"Three full-screen scenes in 1920 × 1080 that open, pause and close a stream."_s,
        .category = u"Scenes"_s,
        .fileName = u"emerald-scenes.zip"_s,
        .mime = u"application/zip"_s,
        .gallery = gallery,
        .components = components}));
}

void makePersianPack(Workshop &workshop)
{
    const QString key = u"shab-e-neon"_s;
    const QString footer = u"کوییلمار  ·  بستهٔ شب نئونی"_s;
    const QList<SceneFile> scenes{
        {u"صحنه‌ها/شروع.png"_s,
         u"به‌زودی شروع می‌کنیم"_s,
         u"image/png"_s,
         {u"به‌زودی شروع می‌کنیم"_s,
          u"یک فنجان چای بریزید، چند لحظهٔ دیگر کنار هم هستیم"_s, footer},
         0.4},
        {u"صحنه‌ها/استراحت.jpg"_s,
         u"زود برمی‌گردیم"_s,
         u"image/jpeg"_s,
         {u"زود برمی‌گردیم"_s,
          u"کمی استراحت؛ گفت‌وگو را ادامه دهید"_s, footer}},
    };
    QList<QImage> shown;
    QJsonArray gallery;
    QJsonArray components = addScenes(workshop, key, scenes, shown, gallery);
    const QImage plate = drawLowerThird(kPlate, u"پریسا کاظمی"_s, u"گزارشگر بازی"_s);
    workshop.addPicture(key, u"زیرنویس/نام.png"_s, plate);
    workshop.pack(key, u"shab-e-neon.zip"_s, Archiver::Python);
    const QImage plateShown = showOnStage(plate);
    const QString plateAddress = workshop.addPreview(u"shab-e-neon-plate.png"_s, plateShown);
    components.append(toJson(ComponentText{.key = u"plate"_s,
                                           .name = u"زیرنویس نام"_s,
                                           .assetPath = u"زیرنویس/نام.png"_s,
                                           .mime = u"image/png"_s,
                                           .insertMode = u"overlay"_s,
                                           .sourceType = u"image"_s,
                                           .sortOrder = 5,
                                           .variant = u"راست‌به‌چپ"_s,
                                           .gallery = {picture(plateAddress, u"زیرنویس"_s)}}));
    const QImage cover = showPack(shown.at(1), shown.at(0), plateShown, u"شب نئونی"_s);
    gallery.prepend(picture(workshop.addPreview(u"shab-e-neon-cover.png"_s, cover), u"جلد"_s));
    workshop.addProduct(toJson(ProductText{
        .key = key,
        .version = u"1.0.0"_s,
        .name = u"بستهٔ شب نئونی"_s,
        .description =
            u"صحنه‌های تمام‌صفحه و زیرنویس فارسی برای پخش زنده؛ با حروف درشت و خوانا و نور سبز نئونی."_s,
        .category = u"صحنه‌ها"_s,
        .fileName = u"shab-e-neon.zip"_s,
        .mime = u"application/zip"_s,
        .gallery = gallery,
        .components = components}));
}

} // namespace

void makePacks(Workshop &workshop)
{
    makeOverlayPack(workshop);
    makeFramePack(workshop);
    makeScenePack(workshop);
    makePersianPack(workshop);
}

} // namespace quillmar::demo
