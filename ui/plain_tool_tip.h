#pragma once

#include <QString>

class QWidget;

namespace quillmar
{

/// Gives `widget` a tool tip that shows `text` as it is. Qt would render a tool tip that looks like rich
/// text, so such a text is set escaped; any other one is set unchanged.
void setPlainToolTip(QWidget *widget, const QString &text);

} // namespace quillmar
