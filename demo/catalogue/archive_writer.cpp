#include "demo/catalogue/archive_writer.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

constexpr auto kTime = "2026-01-02 12:00:00 UTC"_L1;
constexpr QByteArrayView kUnixTime = "1767355200";

constexpr auto kPythonScript = R"(
import sys, zipfile
archive, names = sys.argv[1], sys.argv[2:]
with zipfile.ZipFile(archive, 'w') as package:
    for name in names:
        entry = zipfile.ZipInfo(name, (2026, 1, 2, 12, 0, 0))
        entry.external_attr = 0o100644 << 16
        entry.compress_type = zipfile.ZIP_STORED if name.endswith(('.webm', '.mp4')) else zipfile.ZIP_DEFLATED
        with open(name, 'rb') as file:
            package.writestr(entry, file.read())
)"_L1;

/// Everything below `folder`, parents before children, in one order everywhere.
QStringList namesBelow(const QString &folder, QDir::Filters kinds)
{
    QStringList names;
    QDirIterator walk(folder, kinds | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (walk.hasNext())
        names.append(QDir(folder).relativeFilePath(walk.next()));
    std::sort(names.begin(), names.end());
    return names;
}

QString run(const QString &program, const QStringList &arguments, const QString &folder)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"TZ"_s, u"UTC"_s);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    process.waitForFinished();
    if (process.error() != QProcess::FailedToStart && process.exitCode() == 0)
        return {};
    return u"%1: %2 %3"_s.arg(program, process.errorString(),
                              QString::fromLocal8Bit(process.readAllStandardError()));
}

QString fixAttributes(const QString &folder, const QStringList &names)
{
    using enum QFileDevice::Permission;
    constexpr QFileDevice::Permissions file = ReadOwner | WriteOwner | ReadGroup | ReadOther;
    for (const QString &name : names) {
        const QString path = folder + u'/' + name;
        QFile::setPermissions(path, QFileInfo(path).isDir() ? file | ExeOwner | ExeGroup | ExeOther : file);
    }
    return run(u"touch"_s, QStringList{u"-d"_s, kTime} + names, folder);
}

/// Access and change times would go into the archive; a list of files keeps them out.
QString packWithBsdTar(const QString &folder, const QString &archive, const QStringList &files)
{
    QByteArray list = "#mtree\n";
    for (const QString &name : files) {
        const QByteArray bytes = name.toUtf8();
        list += bytes + " type=file mode=0644 uid=0 gid=0 time=" + kUnixTime + ".0 contents=" + bytes + '\n';
    }
    const QString listPath = folder + u".mtree"_s;
    QFile file(listPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(list) != list.size())
        return u"%1 cannot be written"_s.arg(listPath);
    file.close();
    return run(u"bsdtar"_s, {u"--format"_s, u"zip"_s, u"-cf"_s, archive, u"@"_s + listPath}, folder);
}

} // namespace

QString writeArchive(Archiver archiver, const QString &folder, const QString &archive)
{
    const QStringList all = namesBelow(folder, QDir::Files | QDir::Dirs);
    const QStringList files = namesBelow(folder, QDir::Files);
    if (const QString error = fixAttributes(folder, all); !error.isEmpty())
        return error;
    switch (archiver) {
    case Archiver::InfoZip:
        return run(u"zip"_s, QStringList{u"-q"_s, u"-X"_s, archive} + all, folder);
    case Archiver::SevenZip:
        return run(u"7z"_s,
                   QStringList{u"a"_s, u"-tzip"_s, u"-mx=5"_s, u"-mmt=1"_s, u"-mtc=off"_s, u"-mta=off"_s,
                               u"-bso0"_s, archive} +
                       QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name),
                   folder);
    case Archiver::BsdTar:
        return packWithBsdTar(folder, archive, files);
    case Archiver::Python:
        return run(u"python3"_s, QStringList{u"-c"_s, kPythonScript, archive} + files, folder);
    }
    return u"no such archiver"_s;
}

} // namespace quillmar::demo
