#pragma once

#include "tests/support/zip_builder/zip_builder.h"

#include <QMap>

namespace quillmar::test
{

/// An archive and the name of the case that it stands for.
struct SampleArchive {
    QByteArray name;
    QByteArray bytes;
};

/// A good archive and what taking out the folder "pack" must give: paths with their bytes.
struct GoodArchive {
    QByteArray name;
    QByteArray bytes;
    QMap<QString, QByteArray> files;
};

/// The small good archive that most others are spoiled from: "pack/", "pack/wanted.txt" (deflated) and
/// "pack/other.bin" (stored), in this order.
ZipBuilder baseArchive();

/// Archives with a flaw in their structure.
QList<SampleArchive> archivesWithBadFraming();   ///< the file as a whole, and the end record
QList<SampleArchive> archivesWithBadDirectory(); ///< records of the directory
QList<SampleArchive> archivesWithBadLocals();    ///< local headers and the place of the data

/// Sound archives with an unsafe or repeated name, a link, or an entry of no known kind.
QList<SampleArchive> archivesWithUnsafeEntries();

/// Sound archives whose "pack/wanted.txt" does not hold what it declares.
QList<SampleArchive> archivesWithDamagedData();

QList<GoodArchive> goodArchives();

} // namespace quillmar::test
