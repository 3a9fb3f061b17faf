#pragma once

#include <QByteArrayView>
#include <QString>

#include <memory>

namespace quillmar
{

/// Bytes that nobody may find in memory afterwards: overwritten when they are given up.
///
/// Can be moved but not copied, so that no second copy is left behind. Any one thread at a time.
class SecretBytes
{
public:
    SecretBytes() = default;

    /// `size` bytes, all zero.
    explicit SecretBytes(qsizetype size);

    /// A copy of `bytes`.
    explicit SecretBytes(QByteArrayView bytes);

    /// `text` in UTF-8.
    static SecretBytes fromText(const QString &text);

    ~SecretBytes();
    SecretBytes(SecretBytes &&other) noexcept;
    SecretBytes &operator=(SecretBytes &&other) noexcept;

    char *data() { return bytes_.get(); }
    const char *data() const { return bytes_.get(); }
    qsizetype size() const { return size_; }
    bool isEmpty() const { return size_ == 0; }

    /// Valid as long as the bytes are.
    QByteArrayView view() const { return {bytes_.get(), size_}; }

    /// The bytes read as UTF-8.
    QString toText() const;

    /// Drops the end; `size` is at most size().
    void shrink(qsizetype size);

private:
    void swap(SecretBytes &other) noexcept;

    std::unique_ptr<char[]> bytes_;
    qsizetype size_ = 0;
    qsizetype capacity_ = 0;
};

/// Overwrites `size` bytes in a way that no compiler leaves out.
void overwriteMemory(void *bytes, std::size_t size);

} // namespace quillmar
