#include "ui/plain_tool_tip.h"

#include "ui/localisation.h"

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

void showPlainToolTip(QWidget *widget, const QPoint &position)
{
    // What looks like rich text was escaped when it was set.
    const QString text = widget->toolTip();
    QToolTip::showText(position, Qt::mightBeRichText(text) ? text : wrapped(text), widget);
}

} // namespace quillmar
