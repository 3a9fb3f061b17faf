#pragma once

#include "ui/localisation.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QStringList>

#include <memory>

namespace quillmar::test
{

/// Reads the module's own locale files the way OBS does: `key="text"` lines, with \n and \" in the text, and
/// the default language beneath the chosen one.
class LocaleFiles
{
public:
    /// `folder` holds one file per language; a file that is not there has no texts.
    explicit LocaleFiles(QString folder = QString::fromUtf8(QUILLMAR_LOCALE_DIR)) : folder_(std::move(folder))
    {
    }

    /// Keys of one file in their order, and its texts by key.
    QStringList keys(const QString &language) const { return read(language).first; }
    QHash<QByteArray, QByteArray> texts(const QString &language) const { return read(language).second; }

    /// A localisation over these files in `language`; it may outlive this object.
    Localisation localisation(const QString &language) const
    {
        auto table = std::make_shared<QHash<QByteArray, QByteArray>>();
        Localisation result(
            [table](const char *key, const char **text) {
                const auto found = table->constFind(QByteArray(key));
                if (found == table->constEnd())
                    return false;
                *text = found->constData();
                return true;
            },
            [table, files = *this](const QString &code) {
                *table = files.texts(PersianCode);
                table->insert(files.texts(code));
            });
        result.setLanguage(language);
        return result;
    }

private:
    std::pair<QStringList, QHash<QByteArray, QByteArray>> read(const QString &language) const
    {
        static const QRegularExpression line(QStringLiteral("^([A-Za-z.]+)=\"(.*)\"$"),
                                             QRegularExpression::MultilineOption);
        QFile file(folder_ + u'/' + language + QStringLiteral(".ini"));
        std::pair<QStringList, QHash<QByteArray, QByteArray>> result;
        if (!file.open(QIODevice::ReadOnly))
            return result;
        const QString content = QString::fromUtf8(file.readAll());
        for (const auto &match : line.globalMatch(content)) {
            QString text = match.captured(2);
            text.replace(QStringLiteral("\\n"), QStringLiteral("\n"));
            text.replace(QStringLiteral("\\\""), QStringLiteral("\""));
            result.first.append(match.captured(1));
            result.second.insert(match.captured(1).toUtf8(), text.toUtf8());
        }
        return result;
    }

    QString folder_;
};

} // namespace quillmar::test
