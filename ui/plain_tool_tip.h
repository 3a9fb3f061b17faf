#pragma once

#include <QString>

class QPoint;
class QWidget;

namespace quillmar
{

/// Gives `widget` a tool tip that shows `text` as it is. Qt would render a tool tip that looks like rich
/// text, so such a text is set escaped, and cut where it would cover the screen; any other one is set
/// unchanged.
void setPlainToolTip(QWidget *widget, const QString &text);

/// Shows the tool tip that setPlainToolTip() gave to `widget` at `position` on the screen: wrapped, and cut
/// where it would cover the screen. Left to itself, Qt shows a plain tool tip as one line.
void showPlainToolTip(QWidget *widget, const QPoint &position);

} // namespace quillmar
