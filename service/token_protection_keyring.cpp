#include "service/token_protection.h"

#include "service/keyring.h"
#include "service/session_cipher.h"

namespace quillmar
{

namespace
{

/// Seals under a key that only the user's keyring holds.
class KeyringProtection final : public TokenProtection
{
public:
    QByteArray protect(const SecretBytes &plain) override;
    Unprotected unprotect(QByteArrayView sealed) override;
};

QByteArray KeyringProtection::protect(const SecretBytes &plain)
{
    const std::optional<SecretBytes> key = keyring::findOrCreateKey();
    return key ? session_cipher::seal(plain, *key) : QByteArray();
}

Unprotected KeyringProtection::unprotect(QByteArrayView sealed)
{
    using Outcome = Unprotected::Outcome;
    if (!session_cipher::isSealed(sealed)) {
        return {Outcome::CanNever, {}};
    }
    const keyring::Keys found = keyring::findKeys();
    for (const SecretBytes &key : found.keys) {
        if (std::optional<SecretBytes> plain = session_cipher::open(sealed, key)) {
            return {Outcome::Opened, std::move(*plain)};
        }
    }
    return {found.isComplete ? Outcome::CanNever : Outcome::CannotNow, {}};
}

} // namespace

std::unique_ptr<TokenProtection> makeTokenProtection()
{
    return std::make_unique<KeyringProtection>();
}

} // namespace quillmar
