#pragma once

#include <QJsonArray>
#include <QRect>
#include <QString>

class QMainWindow;
class QWidget;

namespace quillmar::test
{

/// OBS's main window; it lives as long as the driver answers.
QMainWindow *mainWindow();

/// The widget inside the dock of the module, or null.
QWidget *dockPanel();

/// [x, y, width, height]
QJsonArray rectangle(const QRect &rect);

/// One object per widget of a tree, parents before children: "parent" is the index of the parent in the list,
/// -1 for the root. `of` names the tree: "dock" (the panel of the module), "main", "popup" (an open list or
/// menu) or "dialog" (the newest visible dialog). An absent tree gives an empty list. A widget
/// that a user would call so carries a "role": "label", "button", "field" or "list".
QJsonArray reportWidgets(const QString &of);

/// The visible top-level windows as {"class", "name", "title", "rect", "modal"}.
QJsonArray reportWindows();

} // namespace quillmar::test
