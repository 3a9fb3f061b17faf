#include "service/session_cipher.h"
#include "switched_protection.h"

namespace quillmar::test
{

namespace
{

SecretBytes fixedKey()
{
    return SecretBytes(QByteArray(session_cipher::KeySize, 'k'));
}

/// The real cipher with a key that never changes.
class FixedKeyProtection final : public TokenProtection
{
public:
    QByteArray protect(const SecretBytes &plain) override { return session_cipher::seal(plain, fixedKey()); }
    Unprotected unprotect(QByteArrayView sealed) override;
};

Unprotected FixedKeyProtection::unprotect(QByteArrayView sealed)
{
    std::optional<SecretBytes> plain = session_cipher::open(sealed, fixedKey());
    if (!plain) {
        return {Unprotected::Outcome::CanNever, {}};
    }
    return {Unprotected::Outcome::Opened, std::move(*plain)};
}

} // namespace

std::unique_ptr<TokenProtection> makeKeptProtection()
{
    return std::make_unique<FixedKeyProtection>();
}

qsizetype keptProtectionStep()
{
    return 1;
}

} // namespace quillmar::test
