#include "tests/host/support/obs_stage.h"

#include "tests/support/processes/waiting.h"

#include <QJsonArray>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

bool ObsStage::setStudioMode(bool on) const
{
    return driver_.ask(u"studio-mode"_s, {{u"on"_s, on}}).toBool();
}

bool ObsStage::setPreviewScene(const QString &scene) const
{
    return driver_.ask(u"set-preview-scene"_s, {{u"scene"_s, scene}}).toBool();
}

bool ObsStage::setCanvas(QSize size) const
{
    return driver_.ask(u"set-canvas"_s, {{u"width"_s, size.width()}, {u"height"_s, size.height()}}).toBool();
}

bool ObsStage::addColour(const QString &scene, const QString &name) const
{
    return driver_.ask(u"add-colour"_s, {{u"scene"_s, scene}, {u"name"_s, name}}).toBool();
}

bool ObsStage::addGroup(const QString &scene, const QString &name) const
{
    return driver_.ask(u"add-group"_s, {{u"scene"_s, scene}, {u"name"_s, name}}).toBool();
}

bool ObsStage::nestScene(const QString &scene, const QString &nested) const
{
    return driver_.ask(u"nest-scene"_s, {{u"scene"_s, scene}, {u"nested"_s, nested}}).toBool();
}

bool ObsStage::lockItems(const QString &scene) const
{
    return driver_.ask(u"lock-items"_s, {{u"scene"_s, scene}}).toBool();
}

bool ObsStage::addTransition(const QString &id, const QString &name) const
{
    return driver_.ask(u"add-transition"_s, {{u"id"_s, id}, {u"name"_s, name}}).toBool() &&
           waitUntil([this] { return showsDialog(u"OBSBasicProperties"_s); }) && closeDialogs();
}

// OBS does not listen while it ends another transition.
bool ObsStage::setTransition(const QString &name, int milliseconds) const
{
    return waitUntil([&] {
        driver_.ask(u"set-transition"_s, {{u"name"_s, name}, {u"milliseconds"_s, milliseconds}});
        return driver_.ask(u"transitions"_s)["current"_L1].toString() == name;
    });
}

double ObsStage::transitionTime() const
{
    return driver_.ask(u"transition-time"_s).toDouble();
}

bool ObsStage::isInTransition() const
{
    const double time = transitionTime();
    return time > 0.0 && time < 1.0;
}

bool ObsStage::openProperties(const QString &source) const
{
    return driver_.ask(u"open-properties"_s, {{u"source"_s, source}}).toBool() &&
           waitUntil([this] { return showsDialog(u"OBSBasicProperties"_s); });
}

bool ObsStage::showsDialog(const QString &className) const
{
    const QJsonArray windows = driver_.ask(u"windows"_s).toArray();
    for (const QJsonValue &window : windows) {
        if (window["class"_L1].toString() == className)
            return true;
    }
    return false;
}

bool ObsStage::showsAnyDialog() const
{
    return !driver_.ask(u"widgets"_s, {{u"of"_s, u"dialog"_s}}).toArray().isEmpty();
}

bool ObsStage::closeDialogs() const
{
    return driver_.ask(u"close-dialogs"_s).toBool() && waitUntil([this] { return !showsAnyDialog(); });
}

bool ObsStage::atStatus(const QString &key, QJsonObject then) const
{
    then[u"key"_s] = key;
    return driver_.ask(u"ambush-status"_s, then).toBool();
}

bool ObsStage::atDialog(const QString &className, QJsonObject then) const
{
    then[u"class"_s] = className;
    return driver_.ask(u"ambush-dialog"_s, then).toBool();
}

bool ObsStage::isSprung() const
{
    return driver_.ask(u"ambush-sprung"_s).toBool();
}

} // namespace quillmar::test
