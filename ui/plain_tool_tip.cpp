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

QString shownText(const QString &toolTip)
{
    if (Qt::mightBeRichText(toolTip))
        return toolTip;
    const bool whole = toolTip.size() <= ShownToolTip;
    // Only rich text is wrapped in a tool tip.
    return Qt::convertFromPlainText(whole ? toolTip : leftWithoutSplitting(toolTip, ShownToolTip) + u'…',
                                    Qt::WhiteSpaceNormal);
}

} // namespace

void setPlainToolTip(QWidget *widget, const QString &text)
{
    widget->setToolTip(Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text);
}

bool LongToolTipLabel::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip || toolTip().isEmpty())
        return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), shownText(toolTip()), this);
    return true;
}

} // namespace quillmar
