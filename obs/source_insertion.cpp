#include "obs/source_insertion.h"

#include "obs/obs_handles.h"
#include "obs/stinger_insertion.h"
#include "obs/unique_name.h"
#include "obs/webcam_placement.h"

#include <QFileInfo>

#include <optional>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

const QLatin1StringView Stinger{"stinger_transition"};
const QLatin1StringView FullscreenScene{"fullscreen_scene"};
const QLatin1StringView WebcamFrame{"webcam_frame"};
const QLatin1StringView Image{"image"};
const QLatin1StringView Media{"media"};

bool isImage(const ProductComponent &component)
{
    return component.source_type == Image;
}

const char *sourceId(const ProductComponent &component)
{
    return isImage(component) ? "image_source" : "ffmpeg_source";
}

bool isSuffixAllowed(const ProductComponent &component, const QString &suffix)
{
    if (isImage(component)) {
        return isImageSuffix(suffix);
    }
    return component.source_type != Media || isMediaSuffix(suffix);
}

/// Empty when OBS shows no picture or one without area.
std::optional<QSizeF> canvasSize()
{
    obs_video_info video{};
    if (!obs_get_video_info(&video) || video.base_width == 0 || video.base_height == 0) {
        return std::nullopt;
    }
    return QSizeF(video.base_width, video.base_height);
}

OBSDataAutoRelease makeSettings(const ProductComponent &component, const QString &path)
{
    OBSDataAutoRelease settings = obs_data_create();
    const QByteArray file = path.toUtf8();
    if (isImage(component)) {
        obs_data_set_string(settings, "file", file.constData());
        return settings;
    }
    obs_data_set_bool(settings, "is_local_file", true);
    obs_data_set_string(settings, "local_file", file.constData());
    obs_data_set_bool(settings, "looping", component.media_loop);
    obs_data_set_bool(settings, "restart_on_activate", true);
    return settings;
}

OBSSourceAutoRelease createSource(const ProductComponent &component, const QString &path,
                                  const QString &wantedName)
{
    const OBSDataAutoRelease settings = makeSettings(component, path);
    const QByteArray name = uniqueName(wantedName).toUtf8();
    return obs_source_create(sourceId(component), name.constData(), settings, nullptr);
}

void setVec2(vec2 &vector, qreal x, qreal y)
{
    vector.x = static_cast<float>(x);
    vector.y = static_cast<float>(y);
}

void placeItem(obs_sceneitem_t *item, const ProductComponent &component, QSizeF canvas)
{
    QRectF area{QPointF{0, 0}, canvas};
    if (component.insert_mode == WebcamFrame) {
        area = placeWebcamFrame({component.width, component.height}, component.position, canvas);
    }
    obs_transform_info info{};
    setVec2(info.pos, area.x(), area.y());
    setVec2(info.scale, 1.0, 1.0);
    info.alignment = OBS_ALIGN_LEFT | OBS_ALIGN_TOP;
    info.bounds_type = OBS_BOUNDS_SCALE_INNER;
    info.bounds_alignment = OBS_ALIGN_CENTER;
    setVec2(info.bounds, area.width(), area.height());
    obs_sceneitem_set_info2(item, &info);
    obs_sceneitem_set_order(item, OBS_ORDER_MOVE_TOP);
}

/// Puts `source` on top of `scene`. False, with `source` removed from OBS, when there is no scene or it takes
/// no item.
bool addToScene(obs_scene_t *scene, obs_source_t *source, const ProductComponent &component, QSizeF canvas)
{
    obs_sceneitem_t *item = scene != nullptr ? obs_scene_add(scene, source) : nullptr;
    if (item == nullptr) {
        obs_source_remove(source);
        return false;
    }
    placeItem(item, component, canvas);
    obs_frontend_save();
    return true;
}

QString insertIntoCurrentScene(const ProductComponent &component, const QString &path, QSizeF canvas)
{
    const OBSSourceAutoRelease current = obs_frontend_get_current_scene();
    obs_scene_t *scene = obs_scene_from_source(current);
    if (scene == nullptr) {
        return u"Component.NoScene"_s;
    }
    const OBSSourceAutoRelease source = createSource(component, path, component.component_name);
    if (source == nullptr || !addToScene(scene, source, component, canvas)) {
        return u"Component.InsertFailed"_s;
    }
    return {};
}

QString insertAsNewScene(const ProductComponent &component, const QString &path, QSizeF canvas)
{
    const OBSSourceAutoRelease source =
        createSource(component, path, component.component_name + u" - Asset"_s);
    if (source == nullptr) {
        return u"Component.InsertFailed"_s;
    }
    const OBSSceneAutoRelease scene =
        obs_scene_create(uniqueName(component.component_name).toUtf8().constData());
    if (!addToScene(scene, source, component, canvas)) {
        if (scene != nullptr) {
            obs_source_remove(obs_scene_get_source(scene));
        }
        return u"Component.InsertFailed"_s;
    }
    return {};
}

} // namespace

bool canAdd(const ProductComponent &component)
{
    if (!component.auto_insert_enabled || !isInsertable(component)) {
        return false;
    }
    if (component.insert_mode == Stinger) {
        return canAddStinger();
    }
    return obs_is_source_configurable(sourceId(component));
}

QString insertComponent(const ProductComponent &component, const QString &path)
{
    if (!canAdd(component)) {
        return u"Component.Unsupported"_s;
    }
    const QFileInfo file{path};
    if (!file.isFile()) {
        return u"Component.FileMissing"_s;
    }
    if (!isSuffixAllowed(component, file.suffix().toLower())) {
        return u"Component.Unsupported"_s;
    }
    if (component.insert_mode == Stinger) {
        return insertStinger(component, path);
    }
    const std::optional<QSizeF> canvas = canvasSize();
    if (!canvas) {
        return u"Component.InsertFailed"_s;
    }
    if (component.insert_mode == FullscreenScene) {
        return insertAsNewScene(component, path, *canvas);
    }
    return insertIntoCurrentScene(component, path, *canvas);
}

} // namespace quillmar
