#pragma once

#include "packages/component_product.h"

#include <QString>

namespace quillmar
{

/// True when the running OBS can be asked for a new stinger transition: a major version whose front end is
/// known (31 or 32), a main window with the needed slot, and the stinger source type.
bool canAddStinger();

/// Adds a stinger transition that plays the video at `path` and leaves the current transition current.
///
/// Synchronous, on the user-interface thread. OBS's own modal name dialog runs inside this call and is
/// answered by it, so anything can happen to other objects before it returns. Returns an empty text or one of
/// "Component.StingerUnavailable", "Component.NoScene", "Component.CloseDialogs", "Component.TransitionBusy"
/// and "Component.InsertFailed".
QString insertStinger(const ProductComponent &component, const QString &path);

} // namespace quillmar
