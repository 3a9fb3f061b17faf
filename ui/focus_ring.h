#pragma once

#include <QFocusFrame>
#include <QList>
#include <QPointer>

namespace quillmar
{

/// Shows where the keyboard focus is: a ring around the focused widget below `host`, and the widget scrolled
/// into view. The style sheets draw most widgets alike with and without the focus.
///
/// Line edits get no ring, their border shows the focus; nor does what was just clicked. A child of the host
/// that takes neither focus nor mouse and is not in the accessibility tree; hidden, and watching nothing,
/// while the focus is elsewhere. The focused widget, and everything between it and the host, may die at any
/// time. User-interface thread only.
class FocusRing : public QFocusFrame
{
    Q_OBJECT

public:
    /// `host` is a panel or a window; the focus in other windows is not its affair.
    explicit FocusRing(QWidget *host);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void followFocus(QWidget *before, QWidget *now);
    void follow(QWidget *widget);
    void leave();
    void place();
    bool isBelowHost(const QWidget *widget) const;
    QRect ringRect() const;
    QRect roomForRing() const;

    QPointer<QWidget> focused_;        ///< null while there is nothing to ring
    QPointer<QWidget> clicked_;        ///< had its focus by the mouse last
    QList<QPointer<QWidget>> watched_; ///< the focused widget and its ancestors below the host
};

} // namespace quillmar
