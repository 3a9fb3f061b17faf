#include "service/session_file.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace quillmar
{

namespace
{

constexpr qint64 MaximumSize = 0x100000;
constexpr QFile::Permissions OwnerOnly = QFile::ReadOwner | QFile::WriteOwner;

/// Makes `folder` and what is missing above it, closed to others from the start.
bool makeFolder(const QString &folder)
{
    if (QFileInfo(folder).isDir()) {
        return true;
    }
    const QString parent = QFileInfo(folder).absolutePath();
    if (parent == folder || !makeFolder(parent)) {
        return false;
    }
    // Another process may be quicker.
    return QDir().mkdir(folder, OwnerOnly | QFile::ExeOwner) || QFileInfo(folder).isDir();
}

bool removeFile(const QFileInfo &info)
{
    QFile file(info.filePath());
    if (file.remove()) {
        return true;
    }
    // Windows removes nothing that is read-only.
    return info.isFile() && !info.isSymLink() && file.setPermissions(OwnerOnly) && file.remove();
}

bool replaceFile(const QString &path, const QByteArray &content)
{
    if (QFileInfo(path).isSymLink()) {
        return false;
    }
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    // Unbuffered, because a full disk shows in the count alone: commit() has been seen to report success.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || !file.setPermissions(OwnerOnly) ||
        file.write(content) != content.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

} // namespace

SessionFile::SessionFile(QString path, std::unique_ptr<TokenProtection> protection)
    : path_(std::move(path)), protection_(std::move(protection))
{
}

bool SessionFile::save(const QString &token)
{
    if (path_.isEmpty() || token.isEmpty()) {
        return false;
    }
    const QByteArray sealed = protectedToken(token);
    return !sealed.isEmpty() && makeFolder(QFileInfo(path_).absolutePath()) && replaceFile(path_, sealed);
}

QByteArray SessionFile::protectedToken(const QString &token)
{
    const SecretBytes plain = SecretBytes::fromText(token);
    return protection_->protect(plain);
}

QString SessionFile::load()
{
    const QFileInfo info(path_);
    // Opening a FIFO would wait for somebody to write into it.
    if (path_.isEmpty() || info.isSymLink() || !info.isFile()) {
        return {};
    }
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const qint64 size = file.size();
    if (size == 0 || size > MaximumSize) {
        file.close();
        remove();
        return {};
    }
    const QByteArray sealed = file.read(size);
    file.close();
    return sealed.size() == size ? openToken(sealed) : QString();
}

QString SessionFile::openToken(QByteArrayView sealed)
{
    const Unprotected content = protection_->unprotect(sealed);
    switch (content.outcome) {
    case Unprotected::Outcome::Opened:
        if (content.bytes.isEmpty()) {
            remove();
        }
        return content.bytes.toText();
    case Unprotected::Outcome::CanNever:
        remove();
        return {};
    case Unprotected::Outcome::CannotNow:
        return {};
    }
    return {};
}

bool SessionFile::remove()
{
    if (path_.isEmpty()) {
        return false;
    }
    const QFileInfo info(path_);
    // A link that leads nowhere "does not exist" either, but it is there.
    if (!info.exists() && !info.isSymLink()) {
        return true;
    }
    return removeFile(info);
}

} // namespace quillmar
