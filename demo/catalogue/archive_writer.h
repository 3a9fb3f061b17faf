#pragma once

#include <QString>

namespace quillmar::demo
{

/// The tools that product authors make their archives with; each lays a ZIP out in a way of its own.
enum class Archiver { InfoZip, SevenZip, BsdTar, Python };

/// Packs everything below `folder` into `archive`. Empty on success, else what went wrong. Times and modes of
/// the files are set to fixed values first, so that the same files give the same bytes. Blocks.
QString writeArchive(Archiver archiver, const QString &folder, const QString &archive);

} // namespace quillmar::demo
