#include "ui/plain_tool_tip.h"

#include "ui/localisation.h"

#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

namespace quillmar
{

namespace
{

/// UTF-16 units of a tool tip that are shown at most.
constexpr qsizetype ShownToolTip = 2000;

QString bounded(const QString &text)
{
    return text.size() <= ShownToolTip ? text : QString(leftWithoutSplitting(text, ShownToolTip) + u'…');
}

/// `text` as rich text that shows it as it is. Only rich text is wrapped in a tool tip.
QString wrapped(const QString &text)
{
    return Qt::convertFromPlainText(bounded(text), Qt::WhiteSpaceNormal);
}

} // namespace

void setPlainToolTip(QWidget *widget, const QString &text)
{
    widget->setToolTip(Qt::mightBeRichText(text) ? wrapped(text) : text);
}

bool LongToolTipLabel::event(QEvent *event)
{
    // What looks like rich text was escaped when it was set, and is wrapped as it is.
    if (event->type() != QEvent::ToolTip || toolTip().isEmpty() || Qt::mightBeRichText(toolTip()))
        return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), wrapped(toolTip()), this);
    return true;
}

} // namespace quillmar
