#pragma once

#include "tests/support/tls_service/tls_service.h"

namespace quillmar::test
{

/// What the account of serveCatalogue() signs in with.
inline constexpr char AccountName[] = "sara@example.com";
inline constexpr char AccountPassword[] = "correct horse 1";
inline constexpr char AccountToken[] = "t0ken-of-the-account";

/// Makes `service` answer for one account, which may use two products: one with components and a WebP
/// preview, one without components and with a PNG preview. Any other password or token is refused.
void serveCatalogue(TlsService &service);

} // namespace quillmar::test
