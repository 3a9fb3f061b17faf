#include "packages/sha256.h"

#include <openssl/evp.h>

#include <array>

namespace quillmar
{

struct Sha256::Platform {
    struct Free {
        void operator()(EVP_MD_CTX *digest) const { EVP_MD_CTX_free(digest); }
    };

    std::unique_ptr<EVP_MD_CTX, Free> context{EVP_MD_CTX_new()};
    bool works = context && EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) == 1;
};

Sha256::Sha256() : platform_(std::make_unique<Platform>()) {}

Sha256::~Sha256() = default;

void Sha256::add(QByteArrayView bytes)
{
    const auto size = static_cast<std::size_t>(bytes.size());
    platform_->works =
        platform_->works && EVP_DigestUpdate(platform_->context.get(), bytes.data(), size) == 1;
}

QByteArray Sha256::hexDigest()
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    const bool done =
        platform_->works && EVP_DigestFinal_ex(platform_->context.get(), digest.data(), &length) == 1;
    platform_->works = false;
    return done ? QByteArrayView(digest.data(), length).toByteArray().toHex() : QByteArray();
}

} // namespace quillmar
