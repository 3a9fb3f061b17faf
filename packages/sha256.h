#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <memory>

class QIODevice;

namespace quillmar
{

/// A running SHA-256 over bytes that arrive in pieces, computed by the platform's own library.
///
/// A library that refuses to work gives an empty digest, which equals no digest. Any one thread at a time.
class Sha256
{
public:
    Sha256();
    ~Sha256();
    Q_DISABLE_COPY_MOVE(Sha256)

    void add(QByteArrayView bytes);

    /// 64 lower-case hexadecimal digits over everything added so far, or empty. Ends the computation.
    QByteArray hexDigest();

private:
    struct Platform;
    std::unique_ptr<Platform> platform_;
};

/// Digest of `bytes` as 64 lower-case hexadecimal digits.
QByteArray sha256Hex(QByteArrayView bytes);

/// The same over what is left to read in `device`, in pieces; empty when reading fails. Blocks.
QByteArray sha256Hex(QIODevice &device);

} // namespace quillmar
