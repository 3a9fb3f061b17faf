#include "switched_protection.h"

namespace quillmar::test
{

QByteArray SwitchedProtection::protect(const SecretBytes &plain)
{
    ++protections;
    return works ? kept_->protect(plain) : QByteArray();
}

Unprotected SwitchedProtection::unprotect(QByteArrayView sealed)
{
    ++openings;
    if (!works) {
        return {Unprotected::Outcome::CannotNow, {}};
    }
    return kept_->unprotect(sealed);
}

} // namespace quillmar::test
