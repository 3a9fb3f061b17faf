#include "service/secret_service_client.h"

#include "service/session_cipher.h"

#include <openssl/crypto.h>

#include <algorithm>

namespace quillmar
{

namespace
{

constexpr char Service[] = "org.freedesktop.secrets";
constexpr char ServicePath[] = "/org/freedesktop/secrets";
constexpr char ServiceInterface[] = "org.freedesktop.Secret.Service";
constexpr char CollectionInterface[] = "org.freedesktop.Secret.Collection";
constexpr char ItemLabel[] = "Quillmar session";
/// The service's way to say "none" where it names an object.
constexpr char NoObject[] = "/";
constexpr qsizetype HexSize = 2 * session_cipher::KeySize;

struct FreeText {
    void operator()(gchar *text) const { g_free(text); }
};
using Text = std::unique_ptr<gchar, FreeText>;

struct UnrefTable {
    void operator()(GHashTable *table) const { g_hash_table_unref(table); }
};

/// The address of the session bus; empty when there is none. GLib itself would start one.
std::string sessionBusAddress()
{
    if (const gchar *address = g_getenv("DBUS_SESSION_BUS_ADDRESS"); address != nullptr && *address != '\0') {
        return address;
    }
    const Text socket(g_build_filename(g_get_user_runtime_dir(), "bus", nullptr));
    if (!g_file_test(socket.get(), G_FILE_TEST_EXISTS)) {
        return {};
    }
    return std::string("unix:path=") + Text(g_dbus_address_escape_value(socket.get())).get();
}

/// By these the items are found again; they are not secret.
GVariant *itemAttributes()
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
    g_variant_builder_add(&builder, "{ss}", "application", "quillmar-obs-plugin");
    g_variant_builder_add(&builder, "{ss}", "xdg:schema", "com.quillmar.SessionKey");
    return g_variant_builder_end(&builder);
}

GVariant *itemProperties()
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&builder, "{sv}", "org.freedesktop.Secret.Item.Label",
                          g_variant_new_string(ItemLabel));
    g_variant_builder_add(&builder, "{sv}", "org.freedesktop.Secret.Item.Attributes", itemAttributes());
    return g_variant_builder_end(&builder);
}

std::vector<std::string> objectPaths(GVariant *array)
{
    std::vector<std::string> paths;
    GVariantIter iterator;
    const gchar *path = nullptr;
    g_variant_iter_init(&iterator, array);
    while (g_variant_iter_next(&iterator, "&o", &path)) {
        paths.emplace_back(path);
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

/// Keys are kept as text, which every Secret Service hands back unchanged.
SecretBytes hexOf(const SecretBytes &key)
{
    SecretBytes text(HexSize + 1);
    std::size_t length = 0;
    OPENSSL_buf2hexstr_ex(text.data(), static_cast<std::size_t>(text.size()), &length,
                          reinterpret_cast<const unsigned char *>(key.data()),
                          static_cast<std::size_t>(key.size()), '\0');
    return text;
}

/// The key in `secret`; empty when it holds something else.
SecretBytes keyOf(SecretValue *secret)
{
    gsize size = 0;
    const gchar *text = secret_value_get(secret, &size);
    if (static_cast<qsizetype>(size) != HexSize) {
        return {};
    }
    SecretBytes terminated(HexSize + 1);
    std::copy_n(text, HexSize, terminated.data());
    SecretBytes key(session_cipher::KeySize);
    std::size_t length = 0;
    const bool isKey =
        OPENSSL_hexstr2buf_ex(reinterpret_cast<unsigned char *>(key.data()),
                              static_cast<std::size_t>(key.size()), &length, terminated.data(), '\0') == 1 &&
        static_cast<qsizetype>(length) == key.size();
    return isKey ? std::move(key) : SecretBytes();
}

GObjectClass *baseClass()
{
    return G_OBJECT_CLASS(g_type_class_peek(SECRET_TYPE_SERVICE));
}

/// libsecret chooses the process's own connection here, whatever it was given.
GObject *constructUnconnected(GType type, guint count, GObjectConstructParam *properties)
{
    GObject *object = baseClass()->constructor(type, count, properties);
    g_object_set(object, "g-bus-type", G_BUS_TYPE_NONE, nullptr);
    return object;
}

void initialiseClass(gpointer serviceClass, gpointer)
{
    G_OBJECT_CLASS(serviceClass)->constructor = constructUnconnected;
}

/// libsecret's proxy of the Secret Service, on the connection that it is given.
GType privateServiceType()
{
    static const GType type = g_type_register_static_simple(SECRET_TYPE_SERVICE, "QuillmarSecretService",
                                                            sizeof(SecretServiceClass), initialiseClass,
                                                            sizeof(SecretService), nullptr, GTypeFlags(0));
    return type;
}

} // namespace

SecretServiceClient::SecretServiceClient(GlibCalls &calls) : calls_(calls)
{
    const std::string address = sessionBusAddress();
    if (!address.empty()) {
        connect(address);
    }
    if (connection_) {
        openSession();
    }
}

SecretServiceClient::~SecretServiceClient()
{
    service_.reset();
    if (connection_) {
        g_dbus_connection_close(connection_.get(), nullptr, nullptr, nullptr);
    }
}

void SecretServiceClient::connect(const std::string &address)
{
    constexpr auto flags = GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    const auto result = calls_.wait([&](GCancellable *limit, GAsyncReadyCallback done, gpointer data) {
        g_dbus_connection_new_for_address(address.c_str(), flags, nullptr, limit, done, data);
    });
    connection_.reset(g_dbus_connection_new_for_address_finish(result.get(), nullptr));
}

void SecretServiceClient::openSession()
{
    const auto result = calls_.wait([&](GCancellable *limit, GAsyncReadyCallback done, gpointer data) {
        g_async_initable_new_async(privateServiceType(), G_PRIORITY_DEFAULT, limit, done, data,
                                   "g-connection", connection_.get(), "flags", SECRET_SERVICE_OPEN_SESSION,
                                   nullptr);
    });
    service_.reset(secret_service_open_finish(result.get(), nullptr));
}

SecretServiceClient::Variant SecretServiceClient::call(const char *path, const char *interface,
                                                       const char *method, GVariant *arguments,
                                                       const char *reply)
{
    const Variant owned(g_variant_ref_sink(arguments));
    if (!service_) {
        return {};
    }
    const auto result = calls_.wait([&](GCancellable *limit, GAsyncReadyCallback done, gpointer data) {
        g_dbus_connection_call(connection_.get(), Service, path, interface, method, owned.get(),
                               G_VARIANT_TYPE(reply), G_DBUS_CALL_FLAGS_NONE, -1, limit, done, data);
    });
    return Variant(g_dbus_connection_call_finish(connection_.get(), result.get(), nullptr));
}

std::optional<SecretServiceClient::Items> SecretServiceClient::search()
{
    const Variant reply = call(ServicePath, ServiceInterface, "SearchItems",
                               g_variant_new("(@a{ss})", itemAttributes()), "(aoao)");
    if (!reply) {
        return std::nullopt;
    }
    const Variant open(g_variant_get_child_value(reply.get(), 0));
    const Variant locked(g_variant_get_child_value(reply.get(), 1));
    return Items{objectPaths(open.get()), g_variant_n_children(locked.get()) > 0};
}

bool SecretServiceClient::readKeys(const std::vector<std::string> &items, std::vector<SecretBytes> &keys)
{
    std::vector<const gchar *> paths;
    for (const std::string &item : items) {
        paths.push_back(item.c_str());
    }
    if (paths.empty()) {
        return true;
    }
    paths.push_back(nullptr);
    const auto result = calls_.wait([&](GCancellable *limit, GAsyncReadyCallback done, gpointer data) {
        secret_service_get_secrets_for_dbus_paths(service_.get(), paths.data(), limit, done, data);
    });
    const std::unique_ptr<GHashTable, UnrefTable> secrets(
        secret_service_get_secrets_for_dbus_paths_finish(service_.get(), result.get(), nullptr));
    if (!secrets) {
        return false;
    }
    for (const std::string &item : items) {
        auto *secret = static_cast<SecretValue *>(g_hash_table_lookup(secrets.get(), item.c_str()));
        if (secret == nullptr) {
            return false;
        }
        if (SecretBytes key = keyOf(secret); !key.isEmpty()) {
            keys.push_back(std::move(key));
        }
    }
    return true;
}

std::string SecretServiceClient::openDefaultCollection()
{
    const Variant alias =
        call(ServicePath, ServiceInterface, "ReadAlias", g_variant_new("(s)", "default"), "(o)");
    if (!alias) {
        return {};
    }
    const gchar *path = nullptr;
    g_variant_get(alias.get(), "(&o)", &path);
    if (g_str_equal(path, NoObject)) {
        return {};
    }
    const Variant answer = call(path, "org.freedesktop.DBus.Properties", "Get",
                                g_variant_new("(ss)", CollectionInterface, "Locked"), "(v)");
    if (!answer) {
        return {};
    }
    const Variant boxed(g_variant_get_child_value(answer.get(), 0));
    const Variant isLocked(g_variant_get_variant(boxed.get()));
    const bool isOpen = g_variant_is_of_type(isLocked.get(), G_VARIANT_TYPE_BOOLEAN) &&
                        !g_variant_get_boolean(isLocked.get());
    return isOpen ? path : std::string();
}

bool SecretServiceClient::createItem(const std::string &collection, const SecretBytes &key)
{
    const SecretBytes hex = hexOf(key);
    SecretValue *value = secret_value_new(hex.data(), HexSize, "text/plain");
    GVariant *encoded = secret_service_encode_dbus_secret(service_.get(), value);
    secret_value_unref(value);
    if (encoded == nullptr) {
        return false;
    }
    const Variant secret(g_variant_take_ref(encoded));
    const Variant reply = call(collection.c_str(), CollectionInterface, "CreateItem",
                               g_variant_new("(@a{sv}@*b)", itemProperties(), secret.get(), FALSE), "(oo)");
    if (!reply) {
        return false;
    }
    const gchar *item = nullptr;
    g_variant_get_child(reply.get(), 0, "&o", &item);
    return !g_str_equal(item, NoObject);
}

} // namespace quillmar
