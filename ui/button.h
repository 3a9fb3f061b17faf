#pragma once

#include <QPushButton>

namespace quillmar
{

/// A push button that Enter presses as Space does. Outside a dialog Qt leaves Enter alone.
inline QPushButton *newButton(QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setAutoDefault(true);
    return button;
}

} // namespace quillmar
