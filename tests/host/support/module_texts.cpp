#include "tests/host/support/module_texts.h"

#include <QFile>
#include <QRegularExpression>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

ModuleTexts::ModuleTexts(const QString &language)
{
    static const QRegularExpression entry(u"^([A-Za-z.]+)=\"(.*)\"$"_s);
    QFile file(QStringLiteral(QUILLMAR_MODULE_DATA "/locale/") + language + u".ini"_s);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = entry.match(line.trimmed());
        if (match.hasMatch())
            texts_[match.captured(1)] =
                match.captured(2).replace("\\n"_L1, "\n"_L1).replace("\\\""_L1, "\""_L1);
    }
}

QString withoutIsolates(QString text)
{
    static const QRegularExpression isolates(u"[\u2066\u2067\u2068\u2069\u200e\u200f]"_s);
    return text.remove(isolates);
}

} // namespace quillmar::test
