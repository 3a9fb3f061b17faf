#include "ui/wrapping_label.h"

#include "ui/plain_tool_tip.h"

#include <QHelpEvent>

namespace quillmar
{

WrappingLabel::WrappingLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

QSize WrappingLabel::sizeHint() const
{
    return minimumSizeHint();
}

QSize WrappingLabel::minimumSizeHint() const
{
    ensurePolished();
    return {0, fontMetrics().height()};
}

bool WrappingLabel::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip || toolTip().isEmpty())
        return QLabel::event(event);
    showPlainToolTip(this, static_cast<QHelpEvent *>(event)->globalPos());
    return true;
}

} // namespace quillmar
