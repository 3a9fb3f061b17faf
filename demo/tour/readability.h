#pragma once

#include "tests/host/support/widget_tree.h"

#include <QStringList>

namespace quillmar::demo
{

/// One sentence per visible text of the panel that does not fit into its widget, so that it is cut off; empty
/// when all of it can be read.
QStringList cutTexts(const test::WidgetTree &panel);

} // namespace quillmar::demo
