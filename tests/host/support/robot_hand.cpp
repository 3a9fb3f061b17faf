#include "tests/host/support/robot_hand.h"

#include "tests/support/processes/child_process.h"
#include "tests/support/processes/waiting.h"

#include <cstdlib>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QStringList moveArguments(QPoint point)
{
    return {u"mousemove"_s, QString::number(point.x()), QString::number(point.y())};
}

QStringList clickArguments(QPoint point)
{
    return moveArguments(point) + QStringList{u"click"_s, u"1"_s};
}

} // namespace

bool RobotHand::click(QPoint point)
{
    pointer_ = point;
    return run(clickArguments(point));
}

bool RobotHand::clickBoth(QPoint first, QPoint second)
{
    pointer_ = second;
    return run(clickArguments(first) + clickArguments(second));
}

bool RobotHand::moveTo(QPoint point)
{
    pointer_ = point;
    return run(moveArguments(point));
}

bool RobotHand::wheel(QPoint point, int steps)
{
    pointer_ = point;
    const QString button = steps > 0 ? u"5"_s : u"4"_s;
    return run(moveArguments(point) + QStringList{u"click"_s, u"--repeat"_s, QString::number(std::abs(steps)),
                                                  u"--delay"_s, u"1"_s, button});
}

bool RobotHand::type(const QString &text)
{
    return run({u"type"_s, u"--delay"_s, u"4"_s, text});
}

bool RobotHand::press(const QString &keys)
{
    return run({u"key"_s, keys});
}

bool RobotHand::run(const QStringList &arguments)
{
    QProcess xdotool;
    if (!startChild(xdotool, u"xdotool"_s, arguments, desktop_, {}))
        return false;
    const bool ended = waitUntil([&xdotool] { return xdotool.state() == QProcess::NotRunning; });
    return ended && xdotool.exitCode() == 0;
}

} // namespace quillmar::test
