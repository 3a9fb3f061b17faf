#pragma once

#include "service/secret_bytes.h"

#include <QByteArray>

#include <optional>

/// The sealed form of a session where the platform has no data protection of its own.
///
/// Eight bytes "QMsess" 00 01, a nonce of 12 bytes, AES-256-GCM over the content with those eight bytes as
/// authenticated data, a tag of 16 bytes. Any thread.
namespace quillmar::session_cipher
{

inline constexpr qsizetype KeySize = 32;
inline constexpr qsizetype HeaderSize = 8;
inline constexpr qsizetype NonceSize = 12;
inline constexpr qsizetype TagSize = 16;

/// A random key; empty when the system has no randomness to give.
SecretBytes newKey();

/// `plain` sealed with `key` under a nonce of its own; empty when the cipher does not work.
QByteArray seal(const SecretBytes &plain, const SecretBytes &key);

/// Whether `sealed` begins and measures like something that seal() made. Needs no key.
bool isSealed(QByteArrayView sealed);

/// The content; nothing when `sealed` is not exactly what seal() made with `key`.
std::optional<SecretBytes> open(QByteArrayView sealed, const SecretBytes &key);

} // namespace quillmar::session_cipher
