#pragma once

#include "tests/support/tls_service/tls_service.h"

#include <optional>

namespace quillmar::test
{

/// Cuts the bytes of one connection into requests.
class RequestReader
{
public:
    void append(const QByteArray &bytes) { buffer_ += bytes; }

    /// The next complete request, if there is one. `host` of the result is left empty.
    std::optional<WireRequest> next();

private:
    QByteArray buffer_;
};

} // namespace quillmar::test
