#include "service/keyring.h"

#include "service/secret_service_client.h"
#include "service/session_cipher.h"

namespace quillmar::keyring
{

namespace
{

/// How long a keyring may keep the user-interface thread waiting.
constexpr std::chrono::milliseconds Deadline{2000};

} // namespace

Keys findKeys()
{
    GlibCalls calls(Deadline);
    SecretServiceClient client(calls);
    const std::optional<SecretServiceClient::Items> items = client.search();
    if (!items) {
        return {};
    }
    Keys found;
    const bool isRead = client.readKeys(items->open, found.keys);
    found.isComplete = isRead && !items->areSomeLocked && !client.openDefaultCollection().empty();
    return found;
}

std::optional<SecretBytes> findOrCreateKey()
{
    GlibCalls calls(Deadline);
    SecretServiceClient client(calls);
    const std::optional<SecretServiceClient::Items> items = client.search();
    std::vector<SecretBytes> keys;
    if (!items || !client.readKeys(items->open, keys)) {
        return std::nullopt;
    }
    if (!keys.empty()) {
        return std::move(keys.front());
    }
    const std::string collection = client.openDefaultCollection();
    SecretBytes key = session_cipher::newKey();
    if (collection.empty() || key.isEmpty() || !client.createItem(collection, key)) {
        return std::nullopt;
    }
    return key;
}

} // namespace quillmar::keyring
