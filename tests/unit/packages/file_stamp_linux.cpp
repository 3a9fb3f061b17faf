#include "tests/unit/packages/file_tree.h"

#include <QFile>

#include <sys/stat.h>

namespace quillmar::test
{

QByteArray fileStamp(const QString &path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return QByteArray::number(qulonglong(status.st_ino)) + ' ' +
           QByteArray::number(qlonglong(status.st_mtim.tv_sec)) + ' ' +
           QByteArray::number(qlonglong(status.st_mtim.tv_nsec));
}

} // namespace quillmar::test
