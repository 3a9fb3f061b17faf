#include "tests/support/libobs_fake/libobs_fake.h"

#include <cstdlib>

using namespace Qt::StringLiterals;
using quillmar::test::LibobsFake;

void *obs_frontend_get_main_window()
{
    return LibobsFake::instance().mainWindow();
}

obs_source_t *obs_frontend_get_current_scene()
{
    obs_source_t *scene = LibobsFake::instance().currentScene();
    return scene == nullptr ? nullptr : obs_source_get_ref(scene);
}

obs_source_t *obs_frontend_get_current_transition()
{
    obs_source_t *transition = LibobsFake::instance().currentTransition();
    return transition == nullptr ? nullptr : obs_source_get_ref(transition);
}

void obs_frontend_set_current_transition(obs_source_t *transition)
{
    LibobsFake &fake = LibobsFake::instance();
    fake.record(u"obs_frontend_set_current_transition "_s + transition->name);
    fake.setCurrentTransition(transition);
}

void obs_frontend_get_transitions(obs_frontend_source_list *list)
{
    LibobsFake &fake = LibobsFake::instance();
    const QList<obs_source_t *> &transitions = fake.transitions();
    const auto count = static_cast<std::size_t>(transitions.size());
    // The list is one allocation that its owner frees with bfree, an empty list included.
    const QByteArray room(static_cast<qsizetype>((count + 1) * sizeof(obs_source_t *)), '\0');
    list->sources.array = reinterpret_cast<obs_source_t **>(fake.newString(room));
    list->sources.num = count;
    list->sources.capacity = count;
    for (std::size_t index = 0; index < count; ++index) {
        list->sources.array[index] = obs_source_get_ref(transitions.at(static_cast<qsizetype>(index)));
    }
}

void obs_frontend_save()
{
    LibobsFake::instance().record(u"obs_frontend_save"_s);
}

bool obs_frontend_add_dock_by_id(const char *id, const char *title, void *widget)
{
    Q_UNUSED(title)
    return LibobsFake::instance().addDock(QString::fromUtf8(id), static_cast<QWidget *>(widget));
}

void obs_frontend_remove_dock(const char *id)
{
    LibobsFake::instance().removeDock(QString::fromUtf8(id));
}
