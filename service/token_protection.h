#pragma once

#include "service/secret_bytes.h"

#include <QByteArray>

#include <memory>

namespace quillmar
{

/// What became of an attempt to open protected bytes.
struct Unprotected {
    enum class Outcome {
        Opened,
        CannotNow, ///< what holds the key does not answer or is locked; another time it may work
        CanNever,  ///< damaged, of another user, or the key is gone
    };

    Outcome outcome = Outcome::CannotNow;
    SecretBytes bytes; ///< empty unless opened
};

/// Makes bytes unreadable to everybody but the present user of the system, with the means of the platform.
///
/// Never asks the user anything. Threads: any one thread at a time; may block, for two seconds at the most.
class TokenProtection
{
public:
    virtual ~TokenProtection() = default;

    /// The protected form of `plain`; empty when it cannot be protected now.
    virtual QByteArray protect(const SecretBytes &plain) = 0;

    /// The reverse of protect().
    virtual Unprotected unprotect(QByteArrayView sealed) = 0;
};

/// The protection of this platform: on Windows its own data protection for the current user, elsewhere a
/// cipher whose key lies in the user's keyring.
std::unique_ptr<TokenProtection> makeTokenProtection();

} // namespace quillmar
