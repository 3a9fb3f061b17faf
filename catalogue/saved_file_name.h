#pragma once

#include <QString>

class QNetworkReply;

namespace quillmar
{

/// What the file that `reply` delivers is called: the last path component of what follows "filename=" in its
/// Content-Disposition, or of a name made of `productKey` when nothing follows. One pair of quotation marks
/// around all of it is taken off, nothing else is parsed. May be empty, and may be a name that must not be
/// written; isSafeFileName() tells.
QString fileNameFromReply(const QNetworkReply &reply, const QString &productKey);

} // namespace quillmar
