#include "tests/support/libobs_fake/libobs_fake.h"

using namespace Qt::StringLiterals;
using quillmar::test::LibobsFake;

namespace
{

LibobsFake &fake()
{
    return LibobsFake::instance();
}

} // namespace

uint32_t obs_get_version()
{
    return fake().version();
}

bool obs_get_video_info(obs_video_info *info)
{
    if (!fake().canvas()) {
        return false;
    }
    *info = {};
    info->base_width = static_cast<uint32_t>(fake().canvas()->width());
    info->base_height = static_cast<uint32_t>(fake().canvas()->height());
    return true;
}

bool obs_is_source_configurable(const char *id)
{
    return fake().isConfigurable(QString::fromUtf8(id));
}

obs_source_t *obs_source_create(const char *id, const char *name, obs_data_t *settings, obs_data_t *hotkeys)
{
    fake().record(u"obs_source_create "_s + QString::fromUtf8(id) + u' ' + QString::fromUtf8(name));
    if (hotkeys != nullptr) {
        fake().record(u"private settings"_s);
    }
    if (fake().takeFailure(LibobsFake::Creation::Source)) {
        return nullptr;
    }
    obs_source_t *source = fake().newSource(QString::fromUtf8(id), QString::fromUtf8(name));
    source->settings = settings->values;
    fake().handOut(source);
    return source;
}

void obs_source_release(obs_source_t *source)
{
    if (source != nullptr) {
        fake().giveBack(source);
    }
}

obs_source_t *obs_source_get_ref(obs_source_t *source)
{
    ++source->references;
    fake().handOut(source);
    return source;
}

void obs_source_remove(obs_source_t *source)
{
    fake().remove(source);
}

obs_source_t *obs_get_source_by_name(const char *name)
{
    obs_source_t *source = fake().findByName(name);
    return source == nullptr ? nullptr : obs_source_get_ref(source);
}

const char *obs_source_get_name(const obs_source_t *source)
{
    // Not the caller's to free, and good for the moment only: whoever needs it longer must copy it.
    static thread_local QByteArray name;
    name = source->name.toUtf8();
    return name.constData();
}

const char *obs_source_get_id(const obs_source_t *source)
{
    static thread_local QByteArray id;
    id = source->id.toUtf8();
    return id.constData();
}

void obs_source_update(obs_source_t *source, obs_data_t *settings)
{
    fake().record(u"obs_source_update "_s + source->name);
    source->settings.insert(settings->values);
}

float obs_transition_get_time(obs_source_t *transition)
{
    return transition->transitionTime;
}

obs_scene_t *obs_scene_create(const char *name)
{
    fake().record(u"obs_scene_create "_s + QString::fromUtf8(name));
    if (fake().takeFailure(LibobsFake::Creation::Scene)) {
        return nullptr;
    }
    // The front end holds every scene in its list, from its creation to its removal.
    obs_source_t *source = fake().addSource(u"scene"_s, QString::fromUtf8(name));
    return obs_source_get_ref(source)->scene.get();
}

void obs_scene_release(obs_scene_t *scene)
{
    if (scene != nullptr) {
        fake().giveBack(scene->source);
    }
}

obs_source_t *obs_scene_get_source(const obs_scene_t *scene)
{
    return scene->source;
}

obs_scene_t *obs_scene_from_source(const obs_source_t *source)
{
    return source == nullptr ? nullptr : source->scene.get();
}

obs_sceneitem_t *obs_scene_add(obs_scene_t *scene, obs_source_t *source)
{
    fake().record(u"obs_scene_add "_s + scene->source->name + u" <- "_s + source->name);
    if (fake().takeFailure(LibobsFake::Creation::SceneItem)) {
        return nullptr;
    }
    return fake().addItem(scene, source);
}

void obs_sceneitem_set_info2(obs_sceneitem_t *item, const obs_transform_info *info)
{
    fake().record(u"obs_sceneitem_set_info2 "_s + item->source->name);
    item->info = *info;
}

void obs_sceneitem_set_order(obs_sceneitem_t *item, obs_order_movement movement)
{
    fake().record(u"obs_sceneitem_set_order "_s + item->source->name);
    item->orders.append(movement);
}

obs_data_t *obs_data_create()
{
    return fake().newData();
}

void obs_data_release(obs_data_t *data)
{
    if (data != nullptr) {
        fake().releaseData(data);
    }
}

void obs_data_set_string(obs_data_t *data, const char *name, const char *value)
{
    data->values.insert(QString::fromUtf8(name), QString::fromUtf8(value));
}

void obs_data_set_int(obs_data_t *data, const char *name, long long value)
{
    data->values.insert(QString::fromUtf8(name), value);
}

void obs_data_set_bool(obs_data_t *data, const char *name, bool value)
{
    data->values.insert(QString::fromUtf8(name), value);
}
