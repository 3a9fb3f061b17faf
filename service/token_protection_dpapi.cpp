#include "service/token_protection.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <dpapi.h>

#include <limits>

namespace quillmar
{

namespace
{

constexpr wchar_t Description[] = L"Quillmar session";

struct FreeLocal {
    void operator()(BYTE *memory) const { LocalFree(memory); }
};
using LocalMemory = std::unique_ptr<BYTE, FreeLocal>;

/// The interface takes pointers to writable memory, but only reads it.
DATA_BLOB inputBlob(QByteArrayView bytes)
{
    return {static_cast<DWORD>(bytes.size()), reinterpret_cast<BYTE *>(const_cast<char *>(bytes.data()))};
}

bool fits(QByteArrayView bytes)
{
    return static_cast<quint64>(bytes.size()) <= std::numeric_limits<DWORD>::max();
}

QByteArrayView outputBytes(const DATA_BLOB &blob)
{
    return {reinterpret_cast<const char *>(blob.pbData), static_cast<qsizetype>(blob.cbData)};
}

class DpapiProtection final : public TokenProtection
{
public:
    QByteArray protect(const SecretBytes &plain) override;
    Unprotected unprotect(QByteArrayView sealed) override;
};

QByteArray DpapiProtection::protect(const SecretBytes &plain)
{
    DATA_BLOB input = inputBlob(plain.view());
    DATA_BLOB output = {};
    if (!fits(plain.view()) || !CryptProtectData(&input, Description, nullptr, nullptr, nullptr,
                                                 CRYPTPROTECT_UI_FORBIDDEN, &output)) {
        return {};
    }
    const LocalMemory owner(output.pbData);
    return outputBytes(output).toByteArray();
}

Unprotected DpapiProtection::unprotect(QByteArrayView sealed)
{
    DATA_BLOB input = inputBlob(sealed);
    DATA_BLOB output = {};
    if (!fits(sealed) ||
        !CryptUnprotectData(&input, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, &output)) {
        return {Unprotected::Outcome::CanNever, {}};
    }
    const LocalMemory owner(output.pbData);
    Unprotected opened{Unprotected::Outcome::Opened, SecretBytes(outputBytes(output))};
    overwriteMemory(output.pbData, output.cbData);
    return opened;
}

} // namespace

void overwriteMemory(void *bytes, std::size_t size)
{
    SecureZeroMemory(bytes, size);
}

std::unique_ptr<TokenProtection> makeTokenProtection()
{
    return std::make_unique<DpapiProtection>();
}

} // namespace quillmar
