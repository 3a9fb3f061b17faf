#pragma once

#include "service/glib_calls.h"
#include "service/secret_bytes.h"

#include <libsecret/secret.h>

#include <optional>
#include <string>
#include <vector>

namespace quillmar
{

/// The few calls of the Secret Service that session keys need, none of which makes it prompt.
///
/// Prompting takes a call of the client's own, which is never made here. The connection to the session bus
/// is a private one: that of the process ends it together with the bus, and belongs to the host. Lives as
/// long as one use of the keyring; same thread as `calls`.
class SecretServiceClient
{
public:
    /// Connects and opens an encrypted session. Without either every function below fails.
    explicit SecretServiceClient(GlibCalls &calls);
    ~SecretServiceClient();
    SecretServiceClient(const SecretServiceClient &) = delete;
    SecretServiceClient &operator=(const SecretServiceClient &) = delete;

    struct Items {
        std::vector<std::string> open; ///< object paths, sorted
        bool areSomeLocked = false;
    };

    /// The items that hold session keys, in all collections; nothing when the service does not answer.
    std::optional<Items> search();

    /// Appends the keys of `items` in their order, leaving out what is no key. False when not all could be
    /// read.
    bool readKeys(const std::vector<std::string> &items, std::vector<SecretBytes> &keys);

    /// Object path of the default collection; empty when there is none, or it is locked, or nobody answers.
    std::string openDefaultCollection();

    /// Keeps `key` in `collection`. False unless the service did so at once.
    bool createItem(const std::string &collection, const SecretBytes &key);

private:
    struct UnrefVariant {
        void operator()(GVariant *variant) const { g_variant_unref(variant); }
    };
    using Variant = std::unique_ptr<GVariant, UnrefVariant>;

    void connect(const std::string &address);
    void openSession();
    Variant call(const char *path, const char *interface, const char *method, GVariant *arguments,
                 const char *reply);

    GlibCalls &calls_;
    ObjectHandle<GDBusConnection> connection_;
    ObjectHandle<SecretService> service_;
};

} // namespace quillmar
