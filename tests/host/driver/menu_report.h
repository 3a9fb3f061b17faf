#pragma once

#include <QJsonArray>

namespace quillmar::test
{

/// The entries of the menu bar and of the menu that is open, as {"text", "name", "checked", "enabled",
/// "open", "rect"}; "rect" is in screen pixels, "open" tells an entry of the open menu from one of the bar.
QJsonArray reportMenus();

} // namespace quillmar::test
