#include "tests/host/support/dock_robot.h"

#include "tests/support/processes/waiting.h"

#include <QJsonDocument>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr int WheelStepsAtOnce = 1;
constexpr QPoint StepAside{0, 60};
constexpr std::chrono::milliseconds ClickEffect = 4s;
constexpr std::chrono::milliseconds QuietTime = 400ms;

bool isUsable(const Widget &widget)
{
    return widget.visible && widget.enabled;
}

// Steps of the wheel that bring the middle of the widget into the viewport; 0 when it is there.
int stepsToView(const Widget &widget)
{
    if (widget.viewport.isNull())
        return 0;
    if (widget.rect.height() <= widget.viewport.height()) {
        if (widget.rect.bottom() > widget.viewport.bottom())
            return WheelStepsAtOnce;
        return widget.rect.top() < widget.viewport.top() ? -WheelStepsAtOnce : 0;
    }
    if (widget.rect.top() > widget.viewport.top() + widget.viewport.height() / 3)
        return WheelStepsAtOnce;
    return widget.rect.bottom() < widget.viewport.center().y() ? -WheelStepsAtOnce : 0;
}

} // namespace

bool DockRobot::showDock(int width)
{
    driver_.ask(u"maximise"_s);
    const QJsonObject place{{u"id"_s, u"quillmar-dock"_s}, {u"width"_s, width}};
    if (!driver_.ask(u"show-dock"_s, place).toBool())
        return fail(u"there is no dock of the module"_s);
    return waitUntil([this] { return isSettled(); }) || fail(u"the dock does not come to rest"_s);
}

// The window manager and OBS's own layout go on moving things for a while after the window was made large.
bool DockRobot::isSettled()
{
    const WidgetTree before = tree();
    const bool visible = !before.isEmpty() && before.all().first().visible;
    return visible && !waitUntil(
                          [&] {
                              const WidgetTree now = tree();
                              return now.isEmpty() || now.all().first().rect != before.all().first().rect;
                          },
                          QuietTime);
}

WidgetTree DockRobot::tree() const
{
    return WidgetTree(driver_.ask(u"widgets"_s, {{u"of"_s, u"dock"_s}}).toArray());
}

bool DockRobot::click(const Choice &choice, const QString &what)
{
    const std::optional<QPoint> point = reach(choice, what);
    if (!point)
        return false;
    const int before = driver_.ask(u"releases"_s).toInt();
    const auto arrived = [&] {
        const QJsonValue now = driver_.ask(u"releases"_s);
        // A click may have ended OBS.
        return now.isUndefined() || now.toInt() > before;
    };
    return hand_.click(*point) && (waitUntil(arrived) || fail(u"never released: "_s + what));
}

bool DockRobot::clickBoth(const Choice &first, const Choice &second, const QString &what)
{
    if (!reach(first, what))
        return false;
    const std::optional<QPoint> secondPoint = reach(second, what);
    const std::optional<QPoint> firstPoint = reach(first, what);
    if (!firstPoint || !secondPoint || reach(second, what) != secondPoint)
        return fail(what + u": both do not fit on the screen at once"_s);
    return hand_.clickBoth(*firstPoint, *secondPoint);
}

bool DockRobot::scrollTo(const Choice &choice, const QString &what)
{
    QRect last;
    const auto place = [&] {
        const WidgetTree now = tree();
        const Widget *widget = choice(now);
        return widget && widget->visible ? widget->rect : QRect();
    };
    const auto inView = [&] {
        const WidgetTree now = tree();
        const Widget *widget = choice(now);
        if (!widget || !widget->visible)
            return false;
        const int steps = stepsToView(*widget);
        const bool settled = steps == 0 && widget->rect == last;
        last = widget->rect;
        if (steps != 0) {
            hand_.wheel(widget->viewport.center(), steps);
            // A turn that is still on its way would move the widget from under a later click.
            waitUntil([&] { return place() != last; }, ClickEffect);
        }
        return settled;
    };
    return waitUntil(inView) || fail(u"cannot be brought into view: "_s + what);
}

std::optional<QPoint> DockRobot::reach(const Choice &choice, const QString &what)
{
    std::optional<QPoint> point;
    const auto pointed = [&] {
        if (!scrollTo(choice, what))
            return true;
        const WidgetTree now = tree();
        const Widget *widget = locate(now, choice);
        point = widget ? pointAt(choice, widget->seen.center()) : std::nullopt;
        return point.has_value();
    };
    if (waitFor([&](const WidgetTree &now) { return locate(now, choice) != nullptr; }, what) &&
        !waitUntil(pointed))
        failToPoint(choice, what);
    return point;
}

/// Tells what the widget and the windows were like, because nobody was there to see it.
void DockRobot::failToPoint(const Choice &choice, const QString &what)
{
    fail(u"cannot be pointed at: "_s + what);
    const WidgetTree now = tree();
    if (const Widget *widget = choice(now))
        explain(u"at %1,%2 seen %3x%4, visible %5, enabled %6, noticed %7"_s.arg(widget->rect.x())
                    .arg(widget->rect.y())
                    .arg(widget->seen.width())
                    .arg(widget->seen.height())
                    .arg(widget->visible)
                    .arg(widget->enabled)
                    .arg(widget->hovered));
    const QJsonArray windows = driver_.ask(u"windows"_s).toArray();
    explain(QString::fromUtf8(QJsonDocument(windows).toJson(QJsonDocument::Compact)));
}

// Events arrive in order: a widget that has noticed the pointer has seen every turn of the wheel before, too.
std::optional<QPoint> DockRobot::pointAt(const Choice &choice, QPoint point)
{
    const auto noticed = [&] {
        const WidgetTree now = tree();
        const Widget *widget = locate(now, choice);
        return widget && widget->hovered && widget->seen.center() == point;
    };
    // Qt forgets the pointer over a widget that moved or was covered, and learns of it by a move only.
    if (hand_.pointer() == point)
        hand_.moveTo(point - StepAside);
    hand_.moveTo(point);
    return waitUntil(noticed, ClickEffect) ? std::optional(point) : std::nullopt;
}

bool DockRobot::waitFor(const std::function<bool(const WidgetTree &)> &condition, const QString &what)
{
    return waitUntil([&] { return condition(tree()); }) || fail(u"never seen: "_s + what);
}

bool DockRobot::choose(const Choice &combo, const QString &text)
{
    const QString what = u"the list with "_s + text;
    const auto chosen = [&] {
        const WidgetTree now = tree();
        const Widget *box = combo(now);
        return box && box->text == text;
    };
    const auto popup = [this] {
        return WidgetTree(driver_.ask(u"widgets"_s, {{u"of"_s, u"popup"_s}}).toArray());
    };
    const auto clickRow = [&] {
        const WidgetTree list = popup();
        if (list.isEmpty()) {
            if (chosen())
                return true;
            if (const std::optional<QPoint> point = reach(combo, what); point && hand_.click(*point))
                waitUntil([&popup] { return !popup().isEmpty(); }, ClickEffect);
            return false;
        }
        for (const Widget &view : list.all()) {
            for (const Widget::Row &row : view.rows) {
                if (row.text == text)
                    hand_.click(row.rect.center());
            }
        }
        // A second click while the first is on its way would open the list again.
        waitUntil([&popup] { return popup().isEmpty(); }, ClickEffect);
        return false;
    };
    return waitUntil(clickRow) || fail(u"cannot choose "_s + text);
}

bool DockRobot::fill(const Choice &field, const QString &text, const QString &what)
{
    const auto filled = [&](const WidgetTree &now) {
        const Widget *edit = field(now);
        return edit && edit->text == text;
    };
    const auto focused = [&](const WidgetTree &now) {
        const Widget *edit = field(now);
        return edit && edit->focus;
    };
    if (!click(field, what) || !waitFor(focused, what + u" with the keyboard focus"_s))
        return false;
    return hand_.press(u"ctrl+a"_s) && hand_.press(u"Delete"_s) && (text.isEmpty() || hand_.type(text)) &&
           waitFor(filled, what + u" with the typed text"_s);
}

const Widget *DockRobot::locate(const WidgetTree &tree, const Choice &choice) const
{
    const Widget *widget = choice(tree);
    return widget && isUsable(*widget) ? widget : nullptr;
}

bool DockRobot::fail(const QString &problem)
{
    problem_ = problem;
    return false;
}

} // namespace quillmar::test
