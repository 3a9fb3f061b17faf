#include "tests/unit/packages/links.h"

#include <QFile>
#include <QFileInfo>

namespace quillmar::test
{

bool makeLink(const QString &target, const QString &path)
{
    return QFile::link(target, path);
}

bool isLink(const QString &path)
{
    return QFileInfo(path).isSymLink();
}

} // namespace quillmar::test
