#include "tests/host/support/obs_log.h"

#include <QFile>
#include <QRegularExpression>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QStringList linesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n') : QStringList();
}

} // namespace

ObsLog ObsLog::read(const QString &log, const QString &output)
{
    static const QRegularExpression timeStamp(u"^\\d\\d:\\d\\d:\\d\\d\\.\\d+: "_s);
    static const QRegularExpression leakLine(u"Number of memory leaks: (-?\\d+)"_s);
    ObsLog result;
    const QStringList logged = linesOf(log);
    for (QString line : logged) {
        line.remove(timeStamp);
        if (line.startsWith("[quillmar-obs-plugin] "_L1))
            result.ownLines.append(line);
        const QRegularExpressionMatch match = leakLine.match(line);
        if (match.hasMatch())
            result.leaks = match.captured(1).toInt();
    }
    const QStringList printed = linesOf(output);
    for (const QString &line : printed) {
        if (line.startsWith("error: "_L1))
            result.errors.append(line.sliced(7));
    }
    return result;
}

} // namespace quillmar::test
