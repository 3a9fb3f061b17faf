#pragma once

#include <QString>

namespace quillmar
{

/// Outcome of a package operation: a path, or the text key of what went wrong.
struct ProductFileResult {
    QString path;  ///< absolute path of the file or folder; empty on failure
    QString error; ///< text key; empty on success

    bool isOk() const { return error.isEmpty(); }

    static ProductFileResult success(const QString &path) { return {path, {}}; }
    static ProductFileResult failure(const QString &textKey) { return {{}, textKey}; }
};

} // namespace quillmar
