#pragma once

#include <QJsonValue>
#include <QString>

namespace quillmar::test
{

/// How many docks carry the object name `id`.
QJsonValue countDocks(const QString &id);

/// Shows the dock, docked at the right side with `width` pixels; false when there is none.
QJsonValue showDock(const QString &id, int width);

QJsonValue maximiseMainWindow();

/// Writes a PNG of the whole screen.
QJsonValue takeScreenshot(const QString &file);

/// Closes the main window as a user would, after the answer to this request has been sent.
QJsonValue quitLater();

} // namespace quillmar::test
