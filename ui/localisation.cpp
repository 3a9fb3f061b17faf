#include "ui/localisation.h"

#include <QVariant>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr const char *TextKeyProperty = "quillmarTextKey";
constexpr const char *TextSuffixProperty = "quillmarTextSuffix";
constexpr char16_t LeftToRightIsolate = u'\u2066';
constexpr char16_t PopDirectionalIsolate = u'\u2069';

} // namespace

Localisation::Localisation(Lookup lookup, Reload reload)
    : lookup_(std::move(lookup)), reload_(std::move(reload)), language_(PersianCode)
{
}

void Localisation::setLanguage(const QString &language)
{
    language_ = language == EnglishCode ? EnglishCode : PersianCode;
    if (reload_)
        reload_(language_);
}

QString Localisation::translate(const char *key) const
{
    const char *text = key;
    if (lookup_)
        lookup_(key, &text);
    return QString::fromUtf8(text);
}

QString Localisation::translate(const QString &key) const
{
    return translate(key.toUtf8().constData());
}

void Localisation::setTranslatedText(QLabel *label, const QString &key, const QString &suffix) const
{
    label->setProperty(TextKeyProperty, key);
    label->setProperty(TextSuffixProperty, suffix);
    label->setText(translate(key) + suffix);
}

void Localisation::renderTranslatedText(QLabel *label) const
{
    const QString key = label->property(TextKeyProperty).toString();
    if (!key.isEmpty())
        label->setText(translate(key) + label->property(TextSuffixProperty).toString());
}

void clearTranslatedText(QLabel *label)
{
    label->setProperty(TextKeyProperty, QString());
    label->setProperty(TextSuffixProperty, QString());
    label->clear();
}

QString isolateBrandName(const QString &text)
{
    const QString brand = u"Quillmar"_s;
    return QString(text).replace(brand, QChar(LeftToRightIsolate) + brand + QChar(PopDirectionalIsolate));
}

} // namespace quillmar
