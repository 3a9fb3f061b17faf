#include "obs/libobs.h"

#include "tests/host/driver/stage_actions.h"

#include "tests/host/driver/widget_report.h"

#include <util/config-file.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFrame>
#include <QLabel>
#include <QMainWindow>
#include <QTimer>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr char ColourId[] = "color_source_v3";

OBSSceneAutoRelease sceneOf(const QString &name)
{
    return obs_get_scene_by_name(name.toUtf8().constData());
}

obs_sceneitem_t *addColourItem(obs_scene_t *scene, const QString &name)
{
    const OBSSourceAutoRelease colour =
        obs_source_create(ColourId, name.toUtf8().constData(), nullptr, nullptr);
    return obs_scene_add(scene, colour);
}

OBSSourceAutoRelease frontendTransition(const QString &name)
{
    OBSSourceAutoRelease found;
    obs_frontend_source_list list{};
    obs_frontend_get_transitions(&list);
    for (size_t index = 0; index < list.sources.num; ++index) {
        if (QString::fromUtf8(obs_source_get_name(list.sources.array[index])) == name)
            found = obs_source_get_ref(list.sources.array[index]);
    }
    obs_frontend_source_list_free(&list);
    return found;
}

bool lockItem(obs_scene_t *, obs_sceneitem_t *item, void *)
{
    obs_sceneitem_set_locked(item, true);
    return true;
}

const QFrame *cardOf(const QString &component)
{
    const QWidget *panel = dockPanel();
    const QList<QFrame *> cards =
        panel ? panel->findChildren<QFrame *>(u"quillmarComponentCard"_s) : QList<QFrame *>();
    for (const QFrame *card : cards) {
        const QLabel *title = card->findChild<QLabel *>();
        if (title && title->text() == component)
            return card;
    }
    return nullptr;
}

} // namespace

QJsonValue setStudioMode(bool on)
{
    obs_frontend_set_preview_program_mode(on);
    return obs_frontend_preview_program_mode_active() == on;
}

QJsonValue setPreviewScene(const QString &name)
{
    const OBSSceneAutoRelease scene = sceneOf(name);
    if (scene)
        obs_frontend_set_current_preview_scene(obs_scene_get_source(scene));
    return static_cast<bool>(scene);
}

QJsonValue setCanvas(QSize size)
{
    config_t *profile = obs_frontend_get_profile_config();
    for (const char *name : {"BaseCX", "OutputCX"})
        config_set_uint(profile, "Video", name, static_cast<uint64_t>(size.width()));
    for (const char *name : {"BaseCY", "OutputCY"})
        config_set_uint(profile, "Video", name, static_cast<uint64_t>(size.height()));
    obs_frontend_reset_video();
    obs_video_info video{};
    return obs_get_video_info(&video) && video.base_width == static_cast<uint32_t>(size.width()) &&
           video.base_height == static_cast<uint32_t>(size.height());
}

QJsonValue addColour(const QString &scene, const QString &name)
{
    const OBSSceneAutoRelease target = sceneOf(scene);
    return target && addColourItem(target, name);
}

QJsonValue addGroup(const QString &scene, const QString &name)
{
    const OBSSceneAutoRelease target = sceneOf(scene);
    obs_sceneitem_t *inner = target ? addColourItem(target, name + u" member"_s) : nullptr;
    return inner && obs_scene_insert_group2(target, name.toUtf8().constData(), &inner, 1, true);
}

QJsonValue addNestedScene(const QString &scene, const QString &nested)
{
    const OBSSceneAutoRelease target = sceneOf(scene);
    const OBSSceneAutoRelease inner = sceneOf(nested);
    return target && inner && obs_scene_add(target, obs_scene_get_source(inner));
}

QJsonValue lockItems(const QString &scene)
{
    const OBSSceneAutoRelease target = sceneOf(scene);
    if (target)
        obs_scene_enum_items(target, lockItem, nullptr);
    return static_cast<bool>(target);
}

QJsonValue setTransition(const QString &name, int milliseconds)
{
    const OBSSourceAutoRelease transition = frontendTransition(name);
    if (!transition)
        return false;
    obs_frontend_set_current_transition(transition);
    obs_frontend_set_transition_duration(milliseconds);
    return true;
}

QJsonValue transitionTime()
{
    const OBSSourceAutoRelease transition = obs_frontend_get_current_transition();
    return transition ? static_cast<double>(obs_transition_get_time(transition)) : -1.0;
}

QJsonValue openProperties(const QString &source)
{
    const OBSSourceAutoRelease found = obs_get_source_by_name(source.toUtf8().constData());
    if (!found)
        return false;
    QTimer::singleShot(0, mainWindow(),
                       [held = OBSSource(found)] { obs_frontend_open_source_properties(held); });
    return true;
}

QJsonValue closeDialogs()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (auto *dialog = qobject_cast<QDialog *>(window); dialog && dialog->isVisible())
            dialog->close();
    }
    return true;
}

QJsonValue pressOnCard(const QString &component, const QString &caption)
{
    const QFrame *card = cardOf(component);
    const QList<QAbstractButton *> buttons =
        card ? card->findChildren<QAbstractButton *>() : QList<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (button->text() == caption && button->isEnabled()) {
            button->click();
            return true;
        }
    }
    return false;
}

QJsonValue statusOnCard(const QString &component)
{
    const QFrame *card = cardOf(component);
    const QList<QLabel *> labels = card ? card->findChildren<QLabel *>() : QList<QLabel *>();
    for (const QLabel *label : labels) {
        if (const QVariant key = label->property("textKey"); key.isValid())
            return key.toString();
    }
    return QString();
}

} // namespace quillmar::test
