#pragma once

#include <QHash>
#include <QString>

namespace quillmar::test
{

/// The texts of the module in one language, read from the very locale file that is installed with it.
class ModuleTexts
{
public:
    /// `language` is "en-US" or "fa-IR".
    explicit ModuleTexts(const QString &language);

    /// The text of `key`, or the key itself when the file has none.
    QString text(const QString &key) const { return texts_.value(key, key); }

private:
    QHash<QString, QString> texts_;
};

/// `text` without the invisible characters that steer its direction.
QString withoutIsolates(QString text);

} // namespace quillmar::test
