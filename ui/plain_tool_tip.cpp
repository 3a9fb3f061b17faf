#include "ui/plain_tool_tip.h"

#include <QTextDocument>
#include <QWidget>

namespace quillmar
{

void setPlainToolTip(QWidget *widget, const QString &text)
{
    widget->setToolTip(Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text);
}

} // namespace quillmar
