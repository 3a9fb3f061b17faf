#include "ui/language_preference.h"

#include "ui/localisation.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr QLatin1StringView LanguageKey{"language"};

} // namespace

QString loadLanguage(const QString &path)
{
    if (path.isEmpty())
        return PersianCode;
    const QSettings settings(path, QSettings::IniFormat);
    return settings.value(LanguageKey).toString() == EnglishCode ? EnglishCode : PersianCode;
}

bool saveLanguage(const QString &path, const QString &code)
{
    QSettings settings(path, QSettings::IniFormat);
    settings.setValue(LanguageKey, code);
    settings.sync();
    return settings.status() == QSettings::NoError;
}

} // namespace quillmar
