#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

namespace quillmar::test
{

/// Every public source that is not a filter: {"name", "id", "kind", "settings", "width", "height",
/// "removed"}.
QJsonArray reportSources();

/// Names of the scenes in the order of OBS's own list.
QJsonArray reportScenes();

/// The items of a scene or group from bottom to top, with everything that a transform holds; empty when there
/// is no such scene.
QJsonArray reportItems(const QString &scene);

/// {"current": name, "all": [{"name", "id", "settings"}]}
QJsonObject reportTransitions();

/// Name of the current scene, empty when there is none.
QJsonValue reportCurrentScene();

/// {"width", "height", "frames_per_second"} of the canvas.
QJsonObject reportVideo();

/// False when there is no scene of that name.
QJsonValue setCurrentScene(const QString &name);

/// False when the name is taken.
QJsonValue createScene(const QString &name);

/// Removes every scene but the current one.
QJsonValue keepOnlyCurrentScene();

/// Asks the front end to write the scene collection.
QJsonValue saveSceneCollection();

} // namespace quillmar::test
