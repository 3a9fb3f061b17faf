#include "tests/host/support/obs_log.h"

#include <QFile>
#include <QRegularExpression>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

ObsLog ObsLog::read(const QString &path)
{
    static const QRegularExpression timeStamp(u"^\\d\\d:\\d\\d:\\d\\d\\.\\d+: "_s);
    static const QRegularExpression leakLine(u"Number of memory leaks: (-?\\d+)"_s);
    ObsLog log;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return log;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (QString line : lines) {
        line.remove(timeStamp);
        if (line.startsWith("[quillmar-obs-plugin] "_L1))
            log.ownLines.append(line);
        if (line.startsWith("error:"_L1))
            log.errors.append(line);
        const QRegularExpressionMatch match = leakLine.match(line);
        if (match.hasMatch())
            log.leaks = match.captured(1).toInt();
    }
    return log;
}

} // namespace quillmar::test
