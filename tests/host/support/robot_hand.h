#pragma once

#include <QPoint>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace quillmar::test
{

/// Moves the real pointer and presses the real keys of a desktop. Every call returns when the events are on
/// their way.
class RobotHand
{
public:
    explicit RobotHand(QProcessEnvironment desktop) : desktop_(std::move(desktop)) {}

    /// Where it has moved the pointer last.
    QPoint pointer() const { return pointer_; }

    bool click(QPoint point);
    /// Both clicks in one breath, with nothing between them.
    bool clickBoth(QPoint first, QPoint second);
    bool moveTo(QPoint point);
    /// Turns the wheel over `point`: positive steps scroll down.
    bool wheel(QPoint point, int steps);
    bool type(const QString &text);
    /// A key or a combination in X11's names: "Return", "ctrl+a".
    bool press(const QString &keys);

private:
    bool run(const QStringList &arguments);

    QProcessEnvironment desktop_;
    QPoint pointer_{-1, -1};
};

} // namespace quillmar::test
