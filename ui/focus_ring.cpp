#include "ui/focus_ring.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QEvent>
#include <QLineEdit>
#include <QPainter>
#include <QScrollArea>

#include <utility>

namespace quillmar
{

namespace
{

/// A light line around a dark one, so that the ring stands out on every button and every background.
constexpr QColor LightLine{255, 255, 255};
constexpr QColor DarkLine{11, 16, 13};
constexpr int LightWidth = 2;
constexpr int DarkWidth = 1;
constexpr int RingWidth = LightWidth + DarkWidth;
constexpr qreal CornerRadius = 8;

bool movesOrHides(QEvent::Type type)
{
    return type == QEvent::Move || type == QEvent::Resize || type == QEvent::Show || type == QEvent::Hide;
}

/// The nearest scroll area that scrolls `widget`, or null.
QScrollArea *scrollAreaOf(const QWidget *widget)
{
    for (QWidget *parent = widget->parentWidget(); parent && !parent->isWindow();
         parent = parent->parentWidget()) {
        auto *area = qobject_cast<QScrollArea *>(parent);
        if (area && area->viewport()->isAncestorOf(widget))
            return area;
    }
    return nullptr;
}

bool isPopup(const QWidget *window)
{
    return window->windowType() == Qt::Popup;
}

bool isViewport(const QWidget *widget)
{
    const auto *area = qobject_cast<const QAbstractScrollArea *>(widget->parentWidget());
    return area && area->viewport() == widget;
}

void drawFrame(QPainter &painter, const QRectF &outer, int width, const QColor &colour)
{
    const qreal half = width / 2.0;
    painter.setPen(QPen(colour, width));
    painter.drawRoundedRect(outer.adjusted(half, half, -half, -half), CornerRadius, CornerRadius);
}

} // namespace

FocusRing::FocusRing(QWidget *host) : QFocusFrame(host)
{
    hide();
    connect(qApp, &QApplication::focusChanged, this, &FocusRing::followFocus);
}

void FocusRing::followFocus(QWidget *before, QWidget *now)
{
    leave();
    if (!now || !isBelowHost(now))
        return;
    const bool isBack = !before || isPopup(before->window());
    if (QGuiApplication::mouseButtons() != Qt::NoButton)
        clicked_ = now;
    else if (!isBack)
        clicked_.clear();
    if (now == clicked_)
        return;
    // Whoever comes back to the window has left it scrolled as they want it.
    QScrollArea *area = isBack ? nullptr : scrollAreaOf(now);
    if (area)
        area->ensureWidgetVisible(now);
    if (!qobject_cast<QLineEdit *>(now))
        follow(now);
}

void FocusRing::follow(QWidget *widget)
{
    focused_ = widget;
    for (QWidget *part = widget; part != parentWidget(); part = part->parentWidget()) {
        part->installEventFilter(this);
        watched_.append(part);
    }
    connect(widget, &QObject::destroyed, this, &FocusRing::leave);
    place();
}

void FocusRing::leave()
{
    if (focused_)
        disconnect(focused_, &QObject::destroyed, this, &FocusRing::leave);
    focused_.clear();
    for (const QPointer<QWidget> &part : std::exchange(watched_, {})) {
        if (part)
            part->removeEventFilter(this);
    }
    hide();
}

void FocusRing::place()
{
    const QRect shown =
        focused_ && isBelowHost(focused_) && focused_->isVisible() ? ringRect() & roomForRing() : QRect();
    if (shown.isEmpty()) {
        hide();
        return;
    }
    setGeometry(shown);
    raise();
    update();
    // Last: it does layouts that are due, which may bring everything here again.
    show();
}

bool FocusRing::isBelowHost(const QWidget *widget) const
{
    return widget != parentWidget() && parentWidget()->isAncestorOf(widget);
}

/// Around the focused widget, in the coordinates of the host.
QRect FocusRing::ringRect() const
{
    const QRect inside(focused_->mapTo(parentWidget(), QPoint()), focused_->size());
    return inside.adjusted(-RingWidth, -RingWidth, RingWidth, RingWidth);
}

/// What the scroll areas around the focused widget leave of the host.
QRect FocusRing::roomForRing() const
{
    QRect room = parentWidget()->rect();
    for (const QPointer<QWidget> &part : watched_) {
        if (part && isViewport(part))
            room &= QRect(part->mapTo(parentWidget(), QPoint()), part->size());
    }
    return room;
}

bool FocusRing::eventFilter(QObject *watched, QEvent *event)
{
    if (movesOrHides(event->type()))
        place();
    return QWidget::eventFilter(watched, event);
}

void FocusRing::paintEvent(QPaintEvent * /*event*/)
{
    if (!focused_)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF outer = ringRect().translated(-pos());
    drawFrame(painter, outer, LightWidth, LightLine);
    drawFrame(painter, outer.adjusted(LightWidth, LightWidth, -LightWidth, -LightWidth), DarkWidth, DarkLine);
}

} // namespace quillmar
