#pragma once

#include "tests/host/support/driver_client.h"
#include "tests/host/support/module_texts.h"
#include "tests/host/support/robot_hand.h"
#include "tests/host/support/widget_tree.h"

#include <functional>

namespace quillmar::test
{

/// Uses the module's dock as a person does: looks at it, scrolls, clicks and types.
///
/// Every action returns whether it worked; if not, problem() says what was missing. Actions wait for what
/// they need and give up after StepDeadline.
class DockRobot
{
public:
    DockRobot(DriverClient &driver, RobotHand &hand) : driver_(driver), hand_(hand) {}

    const QString &problem() const { return problem_; }
    /// Adds what was there instead to the description of the failure.
    void explain(const QString &detail) { problem_ += u"; instead: " + detail; }

    /// Docks the panel at the right of a maximised main window.
    bool showDock(int width);
    WidgetTree tree() const;

    /// Picks a widget of a tree; null while it is not there.
    using Choice = std::function<const Widget *(const WidgetTree &tree)>;

    /// Waits until the widget is visible, enabled and its place settled, scrolls it into view and clicks its
    /// middle.
    bool click(const Choice &choice, const QString &what);
    /// Scrolls both into view and clicks both in one breath.
    bool clickBoth(const Choice &first, const Choice &second, const QString &what);
    /// Scrolls until the whole widget can be seen, or as much of it as fits.
    bool scrollTo(const Choice &choice, const QString &what);
    bool waitFor(const std::function<bool(const WidgetTree &tree)> &condition, const QString &what);

    /// Opens a drop-down list and clicks the row with `text`.
    bool choose(const Choice &combo, const QString &text);
    /// Replaces the text of a field by typing.
    bool fill(const Choice &field, const QString &text, const QString &what);

private:
    const Widget *locate(const WidgetTree &tree, const Choice &choice) const;
    /// Brings the pointer over the widget; the point where it then is.
    std::optional<QPoint> reach(const Choice &choice, const QString &what);
    std::optional<QPoint> pointAt(const Choice &choice, QPoint point);
    bool isSettled();
    void failToPoint(const Choice &choice, const QString &what);
    bool fail(const QString &problem);

    DriverClient &driver_;
    RobotHand &hand_;
    QString problem_;
};

} // namespace quillmar::test
