#pragma once

#include "packages/component_product.h"

#include <QString>

namespace quillmar
{

/// True when `component` can be put into the running OBS by one click: it asks for that, is insertable, and
/// OBS has the source type (or, for a stinger, a front end that is known).
bool canAdd(const ProductComponent &component);

/// Puts the local file at `path` into OBS as `component` says: a source in the current scene, a webcam frame
/// in a corner, a new scene or a stinger transition. Synchronous, on the user-interface thread; may run OBS's
/// own dialogs.
///
/// Returns an empty text or the text key of the failure: "Component.Unsupported", "Component.FileMissing",
/// "Component.NoScene", "Component.InsertFailed" or one of a stinger's keys. Nothing partly made is left
/// behind.
QString insertComponent(const ProductComponent &component, const QString &path);

} // namespace quillmar
