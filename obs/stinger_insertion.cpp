#include "obs/stinger_insertion.h"

#include "obs/obs_handles.h"
#include "obs/unique_name.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QMetaObject>
#include <QPointer>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr char StingerId[] = "obs_stinger_transition";
constexpr char AddTransitionSlot[] = "AddTransition(const char*)";
constexpr char NameDialogClass[] = "NameDialog";
constexpr char PropertiesClass[] = "OBSBasicProperties";

/// Value of "tp_type" for a transition point that is given as a time.
constexpr int PointIsTime = 0;

QMainWindow *mainWindow()
{
    return static_cast<QMainWindow *>(obs_frontend_get_main_window());
}

bool isOfClass(const QObject *object, const char *className)
{
    return qstrcmp(object->metaObject()->className(), className) == 0;
}

QList<QPointer<QDialog>> openPropertiesDialogs(const QMainWindow *window)
{
    QList<QPointer<QDialog>> open;
    const QList<QDialog *> dialogs = window->findChildren<QDialog *>();
    for (QDialog *dialog : dialogs) {
        if (dialog->isVisible() && isOfClass(dialog, PropertiesClass)) {
            open.append(dialog);
        }
    }
    return open;
}

void closePropertiesDialogs(const QMainWindow *window)
{
    const QList<QPointer<QDialog>> open = openPropertiesDialogs(window);
    for (const QPointer<QDialog> &dialog : open) {
        if (dialog) {
            dialog->close();
        }
    }
}

bool isRunning(obs_source_t *transition)
{
    const float time = transition != nullptr ? obs_transition_get_time(transition) : 0.0F;
    return time > 0.0F && time < 1.0F;
}

QStringList transitionNames()
{
    QStringList names;
    const FrontendTransitions transitions;
    for (const obs_source_t *transition : transitions.sources()) {
        names.append(QString::fromUtf8(obs_source_get_name(transition)));
    }
    return names;
}

/// The name dialog drops blanks and tabs at the end of what it is given, and the transition must be found
/// again by its name, so the name has none to begin with.
QString transitionName(const QString &componentName)
{
    QString base = nameBase(componentName);
    while (base.endsWith(u' ') || base.endsWith(u'\t')) {
        base.chop(1);
    }
    return uniqueName(base, transitionNames());
}

/// The last stinger of that name; an empty handle when there is none.
OBSSourceAutoRelease findStinger(const QString &name)
{
    OBSSourceAutoRelease found;
    const FrontendTransitions transitions;
    for (obs_source_t *transition : transitions.sources()) {
        if (QString::fromUtf8(obs_source_get_name(transition)) == name &&
            qstrcmp(obs_source_get_id(transition), StingerId) == 0) {
            found = obs_source_get_ref(transition);
        }
    }
    return found;
}

/// Answers the name dialog of `window` with `name`; false when that is not the dialog on top or not the one
/// we know.
bool fillNameDialog(const QMainWindow *window, const QString &name)
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (dialog == nullptr || dialog->parentWidget() != window || !isOfClass(dialog, NameDialogClass)) {
        return false;
    }
    const QList<QLineEdit *> edits = dialog->findChildren<QLineEdit *>();
    if (edits.size() != 1) {
        dialog->reject();
        return false;
    }
    edits.first()->setText(name);
    dialog->accept();
    return true;
}

/// Has OBS make a stinger called `name`. Returns when OBS's dialog is closed; false when it was not answered
/// here.
bool addTransition(QMainWindow *window, const QString &name)
{
    bool filled = false;
    QTimer filler;
    filler.setSingleShot(true);
    filler.setInterval(0);
    QObject::connect(&filler, &QTimer::timeout, &filler, [&] { filled = fillNameDialog(window, name); });
    filler.start();
    const bool invoked = QMetaObject::invokeMethod(window, "AddTransition", Qt::DirectConnection,
                                                   Q_ARG(const char *, StingerId));
    filler.stop();
    return invoked && filled;
}

void configure(obs_source_t *stinger, const ProductComponent &component, const QString &path)
{
    const OBSDataAutoRelease settings = obs_data_create();
    obs_data_set_string(settings, "path", path.toUtf8().constData());
    obs_data_set_int(settings, "tp_type", PointIsTime);
    obs_data_set_int(settings, "transition_point", component.transition_point_ms);
    obs_source_update(stinger, settings);
}

} // namespace

bool canAddStinger()
{
    const uint32_t major = obs_get_version() >> 24;
    if (major != 31 && major != 32) {
        return false;
    }
    const QMainWindow *window = mainWindow();
    return window != nullptr && window->metaObject()->indexOfMethod(AddTransitionSlot) >= 0 &&
           obs_is_source_configurable(StingerId);
}

QString insertStinger(const ProductComponent &component, const QString &path)
{
    if (!canAddStinger()) {
        return u"Component.StingerUnavailable"_s;
    }
    const OBSSourceAutoRelease scene = obs_frontend_get_current_scene();
    if (scene == nullptr) {
        return u"Component.NoScene"_s;
    }
    const QPointer<QMainWindow> window = mainWindow();
    if (QApplication::activeModalWidget() != nullptr || !openPropertiesDialogs(window).isEmpty()) {
        return u"Component.CloseDialogs"_s;
    }
    const OBSSourceAutoRelease previous = obs_frontend_get_current_transition();
    if (isRunning(previous)) {
        return u"Component.TransitionBusy"_s;
    }

    const QString name = transitionName(component.component_name);
    if (!addTransition(window, name) || window == nullptr) {
        return u"Component.StingerUnavailable"_s;
    }
    closePropertiesDialogs(window);

    const OBSSourceAutoRelease stinger = findStinger(name);
    if (previous != nullptr) {
        obs_frontend_set_current_transition(previous);
    }
    if (stinger == nullptr) {
        return u"Component.InsertFailed"_s;
    }
    configure(stinger, component, path);
    obs_frontend_save();
    return {};
}

} // namespace quillmar
