#pragma once

#include "service/session_store.h"
#include "service/token_protection.h"

#include <memory>

namespace quillmar
{

/// Keeps the session token in a file that only the user of this system can open.
///
/// The file holds what the protection of the platform made of the token's UTF-8, and nothing else. It is
/// replaced in one step: after a crash it is the old one or the new one. Anything in its place that is not an
/// ordinary file, a link included, is never read and never written through.
class SessionFile final : public SessionStore
{
public:
    /// With an empty path nothing can be kept.
    SessionFile(QString path, std::unique_ptr<TokenProtection> protection);

    /// False, with nothing written, for an empty token, and whenever the token cannot be protected or the
    /// file not be written. Makes missing folders, for this user alone.
    bool save(const QString &token) override;

    /// Deletes a file that is empty, larger than 1 MiB, damaged or somebody else's. One that cannot be opened
    /// now, or whose protection cannot be lifted now, stays and yields nothing.
    QString load() override;

    bool remove() override;

private:
    QByteArray protectedToken(const QString &token);
    QString openToken(QByteArrayView sealed);

    QString path_;
    std::unique_ptr<TokenProtection> protection_;
};

} // namespace quillmar
