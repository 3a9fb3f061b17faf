#include "service/secret_bytes.h"

#include <QStringConverter>

#include <algorithm>
#include <utility>

namespace quillmar
{

SecretBytes::SecretBytes(qsizetype size)
    : bytes_(std::make_unique<char[]>(static_cast<std::size_t>(size))), size_(size), capacity_(size)
{
}

SecretBytes::SecretBytes(QByteArrayView bytes) : SecretBytes(bytes.size())
{
    std::copy(bytes.begin(), bytes.end(), bytes_.get());
}

SecretBytes SecretBytes::fromText(const QString &text)
{
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    SecretBytes bytes(encoder.requiredSpace(text.size()));
    const char *end = encoder.appendToBuffer(bytes.data(), text);
    bytes.shrink(end - bytes.data());
    return bytes;
}

SecretBytes::~SecretBytes()
{
    if (bytes_) {
        overwriteMemory(bytes_.get(), static_cast<std::size_t>(capacity_));
    }
}

SecretBytes::SecretBytes(SecretBytes &&other) noexcept
{
    swap(other);
}

SecretBytes &SecretBytes::operator=(SecretBytes &&other) noexcept
{
    SecretBytes taken(std::move(other));
    swap(taken);
    return *this;
}

QString SecretBytes::toText() const
{
    using Flag = QStringDecoder::Flag;
    // A leading U+FEFF would otherwise be taken for a byte order mark and dropped.
    QStringDecoder decoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    return decoder.decode(view());
}

void SecretBytes::shrink(qsizetype size)
{
    size_ = std::min(size, size_);
}

void SecretBytes::swap(SecretBytes &other) noexcept
{
    std::swap(bytes_, other.bytes_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
}

} // namespace quillmar
