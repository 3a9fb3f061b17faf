#pragma once

#include "packages/component_product.h"
#include "packages/product_file_result.h"

#include <optional>

namespace quillmar
{

/// Takes one component, or the whole package when `component` is empty, out of the cached package at
/// `packagePath`.
///
/// The path of the result is a file, or a folder for a folder component. Errors: "Component.UnsafePath",
/// "Component.FileMissing", "Component.InvalidArchive", "Download.Failed", "Download.SaveFailed". An archive
/// is checked whole before the first byte is written; files written before a failure stay, each complete.
/// Blocks; any thread.
ProductFileResult extractPackage(const QString &root, const ComponentProduct &product,
                                 const QString &packagePath,
                                 const std::optional<ProductComponent> &component);

} // namespace quillmar
