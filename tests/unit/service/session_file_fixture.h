#pragma once

#include "service/session_file.h"
#include "switched_protection.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace quillmar::test
{

/// A session file in an empty folder.
struct Kept {
    explicit Kept(const QString &name = QStringLiteral("session.dpapi"))
        : path(name.isEmpty() ? QString() : folder.filePath(name)), store(make())
    {
    }

    SessionFile make()
    {
        auto owned = std::make_unique<SwitchedProtection>();
        protection = owned.get();
        return {path, std::move(owned)};
    }

    QByteArray content() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    bool write(const QByteArray &bytes) const
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

    /// Names in the folder, whatever they are.
    QStringList names() const
    {
        return QDir(folder.path())
            .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden | QDir::System);
    }

    bool exists() const { return !names().isEmpty(); }

    QTemporaryDir folder;
    QString path;
    SwitchedProtection *protection = nullptr;
    SessionFile store;
};

inline QString token()
{
    return QStringLiteral("t0ken");
}

/// Long enough that a disk can become full in the middle.
inline QString oldToken()
{
    return QString(3000, u'o');
}

inline QString newToken()
{
    return QString(3000, u'n');
}

} // namespace quillmar::test
