#include "obs/libobs.h"

#include "tests/host/driver/obs_report.h"

#include <QJsonDocument>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QJsonObject settingsOf(obs_source_t *source)
{
    const OBSDataAutoRelease settings = obs_source_get_settings(source);
    return QJsonDocument::fromJson(obs_data_get_json(settings)).object();
}

QString kindOf(const obs_source_t *source)
{
    switch (obs_source_get_type(source)) {
    case OBS_SOURCE_TYPE_INPUT:
        return u"input"_s;
    case OBS_SOURCE_TYPE_FILTER:
        return u"filter"_s;
    case OBS_SOURCE_TYPE_TRANSITION:
        return u"transition"_s;
    case OBS_SOURCE_TYPE_SCENE:
        return u"scene"_s;
    }
    return {};
}

bool appendSource(void *list, obs_source_t *source)
{
    const QString kind = kindOf(source);
    if (kind == "filter"_L1)
        return true;
    static_cast<QJsonArray *>(list)->append(
        QJsonObject{{u"name"_s, text(obs_source_get_name(source))},
                    {u"id"_s, text(obs_source_get_id(source))},
                    {u"kind"_s, kind},
                    {u"settings"_s, kind == "scene"_L1 ? QJsonObject() : settingsOf(source)},
                    {u"width"_s, static_cast<qint64>(obs_source_get_width(source))},
                    {u"height"_s, static_cast<qint64>(obs_source_get_height(source))},
                    {u"removed"_s, obs_source_removed(source)}});
    return true;
}

QJsonArray pair(const vec2 &value)
{
    return {static_cast<double>(value.x), static_cast<double>(value.y)};
}

QJsonArray cropOf(const obs_sceneitem_t *item)
{
    obs_sceneitem_crop crop{};
    obs_sceneitem_get_crop(item, &crop);
    return {crop.left, crop.top, crop.right, crop.bottom};
}

bool appendItem(obs_scene_t *, obs_sceneitem_t *item, void *list)
{
    obs_transform_info transform{};
    obs_sceneitem_get_info2(item, &transform);
    static_cast<QJsonArray *>(list)->append(
        QJsonObject{{u"source"_s, text(obs_source_get_name(obs_sceneitem_get_source(item)))},
                    {u"pos"_s, pair(transform.pos)},
                    {u"rot"_s, static_cast<double>(transform.rot)},
                    {u"scale"_s, pair(transform.scale)},
                    {u"alignment"_s, static_cast<int>(transform.alignment)},
                    {u"bounds_type"_s, static_cast<int>(transform.bounds_type)},
                    {u"bounds_alignment"_s, static_cast<int>(transform.bounds_alignment)},
                    {u"bounds"_s, pair(transform.bounds)},
                    {u"crop_to_bounds"_s, transform.crop_to_bounds},
                    {u"crop"_s, cropOf(item)},
                    {u"visible"_s, obs_sceneitem_visible(item)},
                    {u"locked"_s, obs_sceneitem_locked(item)}});
    return true;
}

} // namespace

QJsonArray reportSources()
{
    QJsonArray list;
    obs_enum_all_sources(appendSource, &list);
    return list;
}

QJsonArray reportScenes()
{
    QJsonArray list;
    obs_frontend_source_list scenes{};
    obs_frontend_get_scenes(&scenes);
    for (size_t index = 0; index < scenes.sources.num; ++index)
        list.append(text(obs_source_get_name(scenes.sources.array[index])));
    obs_frontend_source_list_free(&scenes);
    return list;
}

QJsonArray reportItems(const QString &scene)
{
    QJsonArray list;
    const OBSSourceAutoRelease source = obs_get_source_by_name(scene.toUtf8().constData());
    if (obs_scene_t *found = obs_group_or_scene_from_source(source))
        obs_scene_enum_items(found, appendItem, &list);
    return list;
}

QJsonObject reportTransitions()
{
    QJsonArray all;
    obs_frontend_source_list transitions{};
    obs_frontend_get_transitions(&transitions);
    for (size_t index = 0; index < transitions.sources.num; ++index) {
        obs_source_t *transition = transitions.sources.array[index];
        all.append(QJsonObject{{u"name"_s, text(obs_source_get_name(transition))},
                               {u"id"_s, text(obs_source_get_id(transition))},
                               {u"settings"_s, settingsOf(transition)}});
    }
    obs_frontend_source_list_free(&transitions);
    const OBSSourceAutoRelease current = obs_frontend_get_current_transition();
    return {{u"current"_s, text(obs_source_get_name(current))}, {u"all"_s, all}};
}

QJsonValue reportCurrentScene()
{
    const OBSSourceAutoRelease scene = obs_frontend_get_current_scene();
    return scene ? text(obs_source_get_name(scene)) : QString();
}

QJsonObject reportVideo()
{
    obs_video_info video{};
    if (!obs_get_video_info(&video))
        return {};
    return {{u"width"_s, static_cast<qint64>(video.base_width)},
            {u"height"_s, static_cast<qint64>(video.base_height)},
            {u"frames"_s, static_cast<qint64>(obs_get_total_frames())},
            {u"frames_per_second"_s, obs_get_active_fps()}};
}

QJsonValue setCurrentScene(const QString &name)
{
    const OBSSourceAutoRelease scene = obs_get_source_by_name(name.toUtf8().constData());
    if (!scene || !obs_scene_from_source(scene))
        return false;
    obs_frontend_set_current_scene(scene);
    return true;
}

QJsonValue createScene(const QString &name)
{
    const QByteArray utf8 = name.toUtf8();
    const OBSSourceAutoRelease taken = obs_get_source_by_name(utf8.constData());
    if (taken)
        return false;
    const OBSSceneAutoRelease scene = obs_scene_create(utf8.constData());
    return static_cast<bool>(scene);
}

QJsonValue keepOnlyCurrentScene()
{
    const OBSSourceAutoRelease current = obs_frontend_get_current_scene();
    obs_frontend_source_list scenes{};
    obs_frontend_get_scenes(&scenes);
    for (size_t index = 0; index < scenes.sources.num; ++index) {
        if (scenes.sources.array[index] != current)
            obs_source_remove(scenes.sources.array[index]);
    }
    obs_frontend_source_list_free(&scenes);
    return true;
}

QJsonValue saveSceneCollection()
{
    obs_frontend_save();
    return true;
}

} // namespace quillmar::test
