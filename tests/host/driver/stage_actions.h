#pragma once

#include <QJsonValue>
#include <QSize>
#include <QString>

namespace quillmar::test
{

/// What a user has done in OBS before the module is asked for something. Each returns false when there is
/// nothing of that name, or when OBS refuses.

QJsonValue setStudioMode(bool on);

/// Shows a scene beside the one on air, in studio mode.
QJsonValue setPreviewScene(const QString &name);

/// Sets the canvas and the output of the profile, and has OBS start its video anew.
QJsonValue setCanvas(QSize size);

/// Makes a plain colour, opaque, as the top item of a scene.
QJsonValue addColour(const QString &scene, const QString &name);

/// Makes a group with one plain colour in it as the top item of a scene.
QJsonValue addGroup(const QString &scene, const QString &name);

/// Puts one scene into another as its top item.
QJsonValue addNestedScene(const QString &scene, const QString &nested);

/// Locks every item of a scene.
QJsonValue lockItems(const QString &scene);

/// Makes a transition of the front end current, with its duration.
QJsonValue setTransition(const QString &name, int milliseconds);

/// How far the current transition is: above 0 and below 1 while it runs.
QJsonValue transitionTime();

/// Opens OBS's properties dialog of a source, after the answer to this request has been sent.
QJsonValue openProperties(const QString &source);

/// Closes every dialog.
QJsonValue closeDialogs();

/// Presses the button `caption` on the card of the component `component`, without a pointer.
QJsonValue pressOnCard(const QString &component, const QString &caption);

/// Text key of the first status that the card of a component shows; empty while it shows none.
QJsonValue statusOnCard(const QString &component);

} // namespace quillmar::test
