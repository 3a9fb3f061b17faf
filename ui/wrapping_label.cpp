#include "ui/wrapping_label.h"

#include "ui/localisation.h"
#include "ui/plain_tool_tip.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>

namespace quillmar
{

namespace
{

/// UTF-16 units of a text that are laid out at most. A megabyte in one label takes seconds.
constexpr qsizetype LongestShownText = 5000;

/// Widths whose heights are remembered: with and without the scroll bar, narrowest, and one while resizing.
constexpr qsizetype MeasuredWidths = 4;

} // namespace

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

bool WrappingLabel::isTooLong() const
{
    return text().size() > LongestShownText;
}

QString WrappingLabel::shownPart() const
{
    return leftWithoutSplitting(text(), LongestShownText) + u'…';
}

int WrappingLabel::heightForWidth(int width) const
{
    ensurePolished();
    if (measuredText_ != text()) {
        heights_.clear();
        measuredText_ = text();
    }
    for (const MeasuredHeight &measured : std::as_const(heights_)) {
        if (measured.width == width)
            return measured.height;
    }
    const int height = measureHeight(width);
    if (heights_.size() == MeasuredWidths)
        heights_.erase(heights_.cbegin());
    heights_.append({width, height});
    return height;
}

int WrappingLabel::measureHeight(int width) const
{
    if (!isTooLong())
        return QLabel::heightForWidth(width);
    const QRect place(0, 0, width, QWIDGETSIZE_MAX);
    return fontMetrics().boundingRect(place, Qt::TextWordWrap, shownPart()).height();
}

void WrappingLabel::paintEvent(QPaintEvent *event)
{
    if (!isTooLong()) {
        QLabel::paintEvent(event);
        return;
    }
    QFrame::paintEvent(event);
    QPainter painter(this);
    const int direction = text().isRightToLeft() ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight;
    const int flags = static_cast<int>(alignment().toInt()) | direction | Qt::TextWordWrap;
    style()->drawItemText(&painter, contentsRect(), flags, palette(), isEnabled(), shownPart(),
                          foregroundRole());
}

bool WrappingLabel::event(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange ||
        event->type() == QEvent::ContentsRectChange)
        heights_.clear();
    if (event->type() != QEvent::ToolTip || toolTip().isEmpty())
        return QLabel::event(event);
    showPlainToolTip(this, static_cast<QHelpEvent *>(event)->globalPos());
    return true;
}

} // namespace quillmar
