#include "tests/support/processes/waiting.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace quillmar::test
{

bool waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds deadline)
{
    const QDeadlineTimer end(deadline);
    QTimer wake;
    wake.start(15ms);
    while (!condition()) {
        if (end.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

} // namespace quillmar::test
