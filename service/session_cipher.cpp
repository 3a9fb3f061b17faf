#include "service/session_cipher.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace quillmar
{

void overwriteMemory(void *bytes, std::size_t size)
{
    OPENSSL_cleanse(bytes, size);
}

namespace session_cipher
{

namespace
{

constexpr QByteArrayView Header("QMsess\0\1", HeaderSize);

struct FreeContext {
    void operator()(EVP_CIPHER_CTX *context) const { EVP_CIPHER_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_CIPHER_CTX, FreeContext>;

const unsigned char *bytesOf(QByteArrayView view)
{
    return reinterpret_cast<const unsigned char *>(view.data());
}

unsigned char *bytesOf(char *data)
{
    return reinterpret_cast<unsigned char *>(data);
}

bool canBeCounted(qsizetype size)
{
    return size <= std::numeric_limits<int>::max() - HeaderSize - NonceSize - TagSize;
}

/// A cipher that has taken key, nonce and header.
Context begin(QByteArrayView nonce, const SecretBytes &key, bool encrypting)
{
    Context context(EVP_CIPHER_CTX_new());
    int length = 0;
    const bool ready =
        context && key.size() == KeySize &&
        EVP_CipherInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, bytesOf(key.view()), bytesOf(nonce),
                          encrypting ? 1 : 0) == 1 &&
        EVP_CipherUpdate(context.get(), nullptr, &length, bytesOf(Header), int(HeaderSize)) == 1;
    return ready ? std::move(context) : Context();
}

bool run(EVP_CIPHER_CTX *context, QByteArrayView input, unsigned char *output)
{
    int length = 0;
    return EVP_CipherUpdate(context, output, &length, bytesOf(input), int(input.size())) == 1 &&
           length == input.size();
}

/// On the way back this is where the tag is compared.
bool finish(EVP_CIPHER_CTX *context)
{
    unsigned char rest[EVP_MAX_BLOCK_LENGTH];
    int length = 0;
    return EVP_CipherFinal_ex(context, rest, &length) == 1;
}

} // namespace

SecretBytes newKey()
{
    SecretBytes key(KeySize);
    return RAND_bytes(bytesOf(key.data()), int(KeySize)) == 1 ? std::move(key) : SecretBytes();
}

QByteArray seal(const SecretBytes &plain, const SecretBytes &key)
{
    QByteArray sealed(HeaderSize + NonceSize + plain.size() + TagSize, '\0');
    char *nonce = std::copy(Header.begin(), Header.end(), sealed.data());
    char *content = nonce + NonceSize;
    char *tag = content + plain.size();
    if (!canBeCounted(plain.size()) || RAND_bytes(bytesOf(nonce), int(NonceSize)) != 1) {
        return {};
    }
    const Context context = begin({nonce, NonceSize}, key, true);
    const bool isDone = context && run(context.get(), plain.view(), bytesOf(content)) &&
                        finish(context.get()) &&
                        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, int(TagSize), tag) == 1;
    return isDone ? sealed : QByteArray();
}

bool isSealed(QByteArrayView sealed)
{
    return sealed.size() >= HeaderSize + NonceSize + TagSize && canBeCounted(sealed.size()) &&
           sealed.first(HeaderSize) == Header;
}

std::optional<SecretBytes> open(QByteArrayView sealed, const SecretBytes &key)
{
    if (!isSealed(sealed)) {
        return std::nullopt;
    }
    const QByteArrayView nonce = sealed.sliced(HeaderSize, NonceSize);
    const QByteArrayView content = sealed.sliced(HeaderSize + NonceSize).chopped(TagSize);
    SecretBytes tag(sealed.last(TagSize));
    SecretBytes plain(content.size());
    const Context context = begin(nonce, key, false);
    const bool isGenuine =
        context && run(context.get(), content, bytesOf(plain.data())) &&
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, int(TagSize), tag.data()) == 1 &&
        finish(context.get());
    return isGenuine ? std::optional(std::move(plain)) : std::nullopt;
}

} // namespace session_cipher

} // namespace quillmar
