#pragma once

#include <QAccessible>
#include <QLabel>

namespace quillmar
{

/// Has a screen reader say what `label` shows, which its user would not notice: the focus is elsewhere. For
/// what has just happened, not for a text that is shown again in another language.
inline void announce(QLabel *label)
{
    QAccessibleAnnouncementEvent event(label, label->text());
    QAccessible::updateAccessibility(&event);
}

} // namespace quillmar
