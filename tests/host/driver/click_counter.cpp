#include "tests/host/driver/click_counter.h"

#include <QCoreApplication>
#include <QEvent>

namespace quillmar::test
{

ClickCounter::ClickCounter()
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool ClickCounter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease && watched->isWidgetType())
        ++releases_;
    return QObject::eventFilter(watched, event);
}

} // namespace quillmar::test
