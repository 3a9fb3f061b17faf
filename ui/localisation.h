#pragma once

#include "ui/text_cut.h"

#include <QLabel>
#include <QString>

#include <functional>

namespace quillmar
{

/// Language codes, which are also the names of the locale files.
inline constexpr QLatin1StringView PersianCode{"fa-IR"};
inline constexpr QLatin1StringView EnglishCode{"en-US"};

/// The current language and the texts of the loaded locale table.
///
/// Knows neither OBS nor the file format: both come in as small functions. Threads: the user-interface thread
/// only. Lives longer than every widget that is given a reference to it.
class Localisation
{
public:
    /// Looks `key` up in the loaded table. Returns false, and leaves `*text` alone, when the table has no
    /// entry or no table is loaded. The text is UTF-8 and stays valid until the table is loaded again.
    using Lookup = std::function<bool(const char *key, const char **text)>;

    /// Drops the loaded table and loads the one of `language`.
    using Reload = std::function<void(const QString &language)>;

    /// Starts in Persian without loading anything.
    Localisation(Lookup lookup, Reload reload);

    /// PersianCode or EnglishCode.
    const QString &language() const { return language_; }

    bool isRightToLeft() const { return language_ == PersianCode; }

    Qt::LayoutDirection direction() const { return isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight; }

    /// Qt::AlignRight for Persian, else Qt::AlignLeft.
    Qt::AlignmentFlag readingSide() const { return isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft; }

    /// Makes `language` current and loads its table. Renders nothing: whoever shows texts does that
    /// afterwards.
    void setLanguage(const QString &language);

    /// The text of `key`, or the key itself when there is none.
    QString translate(const char *key) const;
    QString translate(const QString &key) const;

    /// Remembers `key` and `suffix` on the label (properties `quillmarTextKey`, `quillmarTextSuffix`) and
    /// shows the text of the key followed by the suffix, so that a language switch can show it again.
    void setTranslatedText(QLabel *label, const QString &key, const QString &suffix = {}) const;

    /// Shows a remembered key again; leaves a label without a key as it is.
    void renderTranslatedText(QLabel *label) const;

private:
    Lookup lookup_;
    Reload reload_;
    QString language_;
};

/// Forgets the key of a label and empties its text, so that a language switch does not bring it back.
void clearTranslatedText(QLabel *label);

/// `text` with every "Quillmar" between a left-to-right isolate (U+2066) and its end (U+2069).
/// Case-sensitive.
QString isolateBrandName(const QString &text);

} // namespace quillmar
