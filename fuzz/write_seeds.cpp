// Writes the archives of the unit tests, one file each, as a first corpus.
//
//   write_seeds FOLDER

#include "tests/support/zip_builder/archive_samples.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace
{

using namespace quillmar::test;

constexpr qsizetype kLargestSeed = 64 * 1024;

/// Large ones only slow the search down.
bool write(const QString &folder, const QByteArray &bytes, int number)
{
    if (bytes.size() > kLargestSeed)
        return true;
    QFile file(folder + u'/' + QString::number(number));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    const QString folder = QString::fromLocal8Bit(argv[1]);
    bool written = QDir().mkpath(folder);
    int number = 0;
    const QList<SampleArchive> samples = archivesWithBadFraming() + archivesWithBadDirectory() +
                                         archivesWithBadLocals() + archivesWithUnsafeEntries() +
                                         archivesWithDamagedData();
    for (const SampleArchive &sample : samples)
        written = written && write(folder, sample.bytes, number++);
    for (const GoodArchive &sample : goodArchives())
        written = written && write(folder, sample.bytes, number++);
    std::printf("%d archives\n", number);
    return written ? 0 : 1;
}
