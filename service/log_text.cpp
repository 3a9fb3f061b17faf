#include "service/log_text.h"

#include <QList>

namespace quillmar
{

namespace
{

constexpr qsizetype MaximumLength = 120;

bool isHarmless(char32_t character)
{
    const QChar::Category category = QChar::category(character);
    return QChar::isPrint(character) && category != QChar::Separator_Line &&
           category != QChar::Separator_Paragraph;
}

} // namespace

QString logText(const QString &text)
{
    const QList<uint> characters = text.first(qMin(text.size(), 2 * MaximumLength + 2)).toUcs4();
    QString line;
    for (const uint character : characters.first(qMin(characters.size(), MaximumLength))) {
        line += isHarmless(character) ? QStringView(QChar::fromUcs4(character)) : QStringView(u"?");
    }
    return characters.size() > MaximumLength ? line + u'…' : line;
}

} // namespace quillmar
