#pragma once

#include "service/session_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <qt_windows.h>

#include <dpapi.h>

namespace quillmar::test
{

inline QString token()
{
    return QStringLiteral("kept.Token-0123456789_رمز");
}

/// A session file in an empty folder.
struct Kept {
    /// What a new run of the program would have.
    SessionFile store() const { return {path, makeTokenProtection()}; }
    bool hasFile() const { return QFile::exists(path); }

    bool write(const QByteArray &bytes) const
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

    QByteArray content() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Writes what any other program would have made of `plain`.
    bool writeProtected(const QByteArray &plain, const wchar_t *description,
                        const QByteArray &entropy = {}) const;

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("session.dpapi"));
};

inline DATA_BLOB blobOf(QByteArray &bytes)
{
    return {static_cast<DWORD>(bytes.size()), reinterpret_cast<BYTE *>(bytes.data())};
}

inline bool Kept::writeProtected(const QByteArray &plain, const wchar_t *description,
                                 const QByteArray &entropy) const
{
    QByteArray plainCopy = plain;
    QByteArray entropyCopy = entropy;
    DATA_BLOB input = blobOf(plainCopy);
    DATA_BLOB secret = blobOf(entropyCopy);
    DATA_BLOB output = {};
    if (!CryptProtectData(&input, description, entropy.isEmpty() ? nullptr : &secret, nullptr, nullptr,
                          CRYPTPROTECT_UI_FORBIDDEN, &output)) {
        return false;
    }
    const QByteArray bytes(reinterpret_cast<const char *>(output.pbData), qsizetype(output.cbData));
    LocalFree(output.pbData);
    return write(bytes);
}

} // namespace quillmar::test
