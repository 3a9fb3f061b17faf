#pragma once

#include "service/secret_bytes.h"

#include <optional>
#include <vector>

/// The user's keyring, through the Secret Service of the desktop session.
///
/// Never asks the user anything: nothing is unlocked, no collection is made, and a service that wants to
/// prompt gets no answer. Each function blocks for at most the two seconds that a service may take to answer;
/// when it does not, the keyring counts as closed. Every call uses a connection of its own, so that a bus
/// that ends takes nobody along. Any thread.
namespace quillmar::keyring
{

struct Keys {
    /// In an order that is always the same.
    std::vector<SecretBytes> keys;
    /// There are certainly no others: the keyring is there and open.
    bool isComplete = false;
};

/// The keys of sessions that the keyring holds; there may be several when two processes made one each.
Keys findKeys();

/// The first of them, or a new one that the keyring has taken; nothing when it is locked or absent, or has no
/// default collection.
std::optional<SecretBytes> findOrCreateKey();

} // namespace quillmar::keyring
