#include "fixed_key_protection.h"

#include "service/session_cipher.h"

namespace quillmar::test
{

namespace
{

SecretBytes fixedKey()
{
    return SecretBytes(QByteArray(session_cipher::KeySize, 'k'));
}

} // namespace

QByteArray FixedKeyProtection::protect(const SecretBytes &plain)
{
    ++protections;
    return works ? session_cipher::seal(plain, fixedKey()) : QByteArray();
}

Unprotected FixedKeyProtection::unprotect(QByteArrayView sealed)
{
    ++openings;
    if (!works) {
        return {Unprotected::Outcome::CannotNow, {}};
    }
    std::optional<SecretBytes> plain = session_cipher::open(sealed, fixedKey());
    if (!plain) {
        return {Unprotected::Outcome::CanNever, {}};
    }
    return {Unprotected::Outcome::Opened, std::move(*plain)};
}

} // namespace quillmar::test
