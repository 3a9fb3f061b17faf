#pragma once

#include "service/token_protection.h"

namespace quillmar::test
{

/// The protection of the platform, on Linux with a key that never changes in place of a keyring.
std::unique_ptr<TokenProtection> makeKeptProtection();

/// The protected form of a token grows in steps of so many bytes.
qsizetype keptProtectionStep();

/// The same, which can be told to fail.
class SwitchedProtection : public TokenProtection
{
public:
    QByteArray protect(const SecretBytes &plain) override;
    Unprotected unprotect(QByteArrayView sealed) override;

    bool works = true;
    int protections = 0;
    int openings = 0;

private:
    std::unique_ptr<TokenProtection> kept_ = makeKeptProtection();
};

} // namespace quillmar::test
