#include "packages/sha256.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <array>
#include <limits>

namespace quillmar
{

namespace
{

constexpr ULONG kDigestBytes = 32;

bool succeeded(NTSTATUS status)
{
    return status >= 0;
}

} // namespace

struct Sha256::Platform {
    Platform();
    ~Platform();
    Q_DISABLE_COPY_MOVE(Platform)

    BCRYPT_ALG_HANDLE algorithm = nullptr;
    BCRYPT_HASH_HANDLE hash = nullptr;
    bool works = false;
};

Sha256::Platform::Platform()
{
    works = succeeded(BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0)) &&
            succeeded(BCryptCreateHash(algorithm, &hash, nullptr, 0, nullptr, 0, 0));
}

Sha256::Platform::~Platform()
{
    if (hash) {
        BCryptDestroyHash(hash);
    }
    if (algorithm) {
        BCryptCloseAlgorithmProvider(algorithm, 0);
    }
}

Sha256::Sha256() : platform_(std::make_unique<Platform>()) {}

Sha256::~Sha256() = default;

/// The interface counts with 32 bits and takes pointers to writable memory, but only reads it.
void Sha256::add(QByteArrayView bytes)
{
    constexpr qsizetype longest = std::numeric_limits<ULONG>::max() / 2;
    while (platform_->works && !bytes.isEmpty()) {
        const qsizetype size = std::min(bytes.size(), longest);
        auto *data = reinterpret_cast<PUCHAR>(const_cast<char *>(bytes.data()));
        platform_->works = succeeded(BCryptHashData(platform_->hash, data, static_cast<ULONG>(size), 0));
        bytes = bytes.sliced(size);
    }
}

QByteArray Sha256::hexDigest()
{
    std::array<UCHAR, kDigestBytes> digest{};
    const bool done =
        platform_->works && succeeded(BCryptFinishHash(platform_->hash, digest.data(), kDigestBytes, 0));
    platform_->works = false;
    return done ? QByteArrayView(digest.data(), digest.size()).toByteArray().toHex() : QByteArray();
}

} // namespace quillmar
