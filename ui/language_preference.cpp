#include "ui/language_preference.h"

#include "ui/localisation.h"
#include "ui/settings_file.h"

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
    QString language;
    useSettings(
        path, [&language](const QSettings &settings) { language = settings.value(LanguageKey).toString(); });
    return language == EnglishCode ? EnglishCode : PersianCode;
}

bool saveLanguage(const QString &path, const QString &code)
{
    return useSettings(path, [&code](QSettings &settings) { settings.setValue(LanguageKey, code); });
}

} // namespace quillmar
