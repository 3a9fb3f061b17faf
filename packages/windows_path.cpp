#include "packages/windows_path.h"

#include <QDir>

namespace quillmar
{

using namespace Qt::StringLiterals;

QString extendedLengthPath(const QString &path)
{
    const QString native = QDir::toNativeSeparators(path);
    if (native.startsWith("\\\\?\\"_L1))
        return native;
    return native.startsWith("\\\\"_L1) ? QString(u"\\\\?\\UNC"_s + native.sliced(1))
                                        : QString(u"\\\\?\\"_s + native);
}

} // namespace quillmar
