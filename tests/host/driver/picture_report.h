#pragma once

#include <QJsonValue>
#include <QSize>
#include <QString>

namespace quillmar::test
{

/// Renders what OBS sends out at this moment, scaled to `size`, and writes it as a PNG. False when OBS has no
/// picture or the file cannot be written.
QJsonValue writeProgramPicture(const QString &file, QSize size);

} // namespace quillmar::test
