#include "catalogue/saved_file_name.h"

#include <QFileInfo>
#include <QNetworkReply>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

QString nameInHeader(const QString &header)
{
    const QLatin1StringView parameter = "filename="_L1;
    const qsizetype start = header.indexOf(parameter);
    if (start < 0)
        return {};
    const QString name = header.sliced(start + parameter.size()).trimmed();
    const bool isQuoted = name.size() >= 2 && name.startsWith(u'"') && name.endsWith(u'"');
    return isQuoted ? name.sliced(1, name.size() - 2) : name;
}

QString nameOfProduct(const QString &productKey)
{
    return productKey.isEmpty() ? u"quillmar-download.bin"_s : QString(productKey + u".bin"_s);
}

} // namespace

QString fileNameFromReply(const QNetworkReply &reply, const QString &productKey)
{
    const QString name = nameInHeader(QString::fromUtf8(reply.rawHeader("Content-Disposition")));
    return QFileInfo(name.isEmpty() ? nameOfProduct(productKey) : name).fileName();
}

} // namespace quillmar
