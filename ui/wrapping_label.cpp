#include "ui/wrapping_label.h"

#include "ui/localisation.h"
#include "ui/plain_tool_tip.h"

#include <QHelpEvent>
#include <QImage>
#include <QPainter>
#include <QStyle>
#include <QtMath>

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

/// QLabel breaks lines between words only, and a word that is wider than the label is cut at its edge.
bool WrappingLabel::hasWordTooWideFor(int width) const
{
    if (isTooLong())
        return false;
    const int room = width - contentsMargins().left() - contentsMargins().right() - 2 * margin();
    const QFontMetrics metrics = fontMetrics();
    const auto words = QStringView(text()).tokenize(u' ');
    for (const QStringView word : words) {
        // Hardly a character is wider than high, so most words need no measuring.
        if (word.size() * metrics.height() > room && metrics.horizontalAdvance(word.toString()) > room)
            return true;
    }
    return false;
}

QTextOption WrappingLabel::brokenAnywhere() const
{
    QTextOption option(alignment());
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(text().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    return option;
}

int WrappingLabel::measureBroken(int width) const
{
    QImage canvas(1, 1, QImage::Format_RGB32);
    QPainter painter(&canvas);
    painter.setFont(font());
    const QMargins margins = contentsMargins() + margin();
    const QRectF place(0, 0, width - margins.left() - margins.right(), QWIDGETSIZE_MAX);
    QTextOption option = brokenAnywhere();
    option.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return qCeil(painter.boundingRect(place, text(), option).height()) + margins.top() + margins.bottom();
}

int WrappingLabel::measureHeight(int width) const
{
    if (hasWordTooWideFor(width))
        return measureBroken(width);
    if (!isTooLong())
        return QLabel::heightForWidth(width);
    const QRect place(0, 0, width, QWIDGETSIZE_MAX);
    return fontMetrics().boundingRect(place, Qt::TextWordWrap, shownPart()).height();
}

void WrappingLabel::paintEvent(QPaintEvent *event)
{
    const bool isBroken = pixmap().isNull() && hasWordTooWideFor(width());
    if (!isTooLong() && !isBroken) {
        QLabel::paintEvent(event);
        return;
    }
    QFrame::paintEvent(event);
    QPainter painter(this);
    if (isBroken) {
        painter.setPen(palette().color(foregroundRole()));
        painter.drawText(QRectF(rect() - (contentsMargins() + margin())), text(), brokenAnywhere());
        return;
    }
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
