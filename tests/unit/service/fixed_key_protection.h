#pragma once

#include "service/token_protection.h"

namespace quillmar::test
{

/// The real cipher with a key that never changes, in place of a keyring; can be told to fail.
class FixedKeyProtection : public TokenProtection
{
public:
    QByteArray protect(const SecretBytes &plain) override;
    Unprotected unprotect(QByteArrayView sealed) override;

    bool works = true;
    int protections = 0;
    int openings = 0;
};

} // namespace quillmar::test
