#include "tests/support/keyring/stub_keyring.h"

#include <QMutexLocker>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr char Item[] = "/org/freedesktop/secrets/collection/login/1";
constexpr char LockedItem[] = "/org/freedesktop/secrets/collection/other/1";
constexpr char Session[] = "/org/freedesktop/secrets/session/s1";
constexpr char Prompt[] = "/org/freedesktop/secrets/prompt/p1";

bool asksForEncryption(GDBusMessage *message)
{
    if (!g_str_equal(g_dbus_message_get_member(message), "OpenSession")) {
        return false;
    }
    const gchar *algorithm = nullptr;
    g_variant_get_child(g_dbus_message_get_body(message), 0, "&s", &algorithm);
    return !g_str_equal(algorithm, "plain");
}

} // namespace

StubKeyring::StubKeyring(const QString &busAddress, const Behaviour &behaviour)
    : behaviour_(behaviour), connection_(connectToBus(busAddress))
{
    if (!connection_) {
        return;
    }
    filter_ = g_dbus_connection_add_filter(connection_.get(), &StubKeyring::filter, this, nullptr);
    const Variant owned =
        callOnBus(connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                  "RequestName", g_variant_new("(su)", "org.freedesktop.secrets", 0U));
    isReady_ = owned != nullptr;
}

StubKeyring::~StubKeyring()
{
    if (connection_) {
        g_dbus_connection_remove_filter(connection_.get(), filter_);
        g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
    }
}

QStringList StubKeyring::calls() const
{
    const QMutexLocker locker(&mutex_);
    return calls_;
}

GDBusMessage *StubKeyring::filter(GDBusConnection *connection, GDBusMessage *message, gboolean isIncoming,
                                  gpointer self)
{
    if (!isIncoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
        return message;
    }
    static_cast<StubKeyring *>(self)->answer(connection, message);
    g_object_unref(message);
    return nullptr;
}

void StubKeyring::answer(GDBusConnection *connection, GDBusMessage *message)
{
    const QString method = QString::fromUtf8(g_dbus_message_get_member(message));
    {
        const QMutexLocker locker(&mutex_);
        calls_.append(method);
    }
    if (behaviour_.silentAt == "*"_L1 || behaviour_.silentAt == method) {
        return;
    }
    GDBusMessage *reply =
        asksForEncryption(message)
            ? g_dbus_message_new_method_error_literal(message, "org.freedesktop.DBus.Error.NotSupported", "")
            : g_dbus_message_new_method_reply(message);
    if (GVariant *body = asksForEncryption(message) ? nullptr : replyTo(method)) {
        g_dbus_message_set_body(reply, body);
    }
    g_dbus_connection_send_message(connection, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(reply);
}

GVariant *StubKeyring::replyTo(const QString &method) const
{
    if (method == "OpenSession"_L1) {
        return g_variant_new("(vo)", g_variant_new_string(""), Session);
    }
    if (method == "SearchItems"_L1) {
        const bool hasItem = behaviour_.silentAt == "GetSecrets"_L1;
        GVariantBuilder open;
        g_variant_builder_init(&open, G_VARIANT_TYPE("ao"));
        if (hasItem) {
            g_variant_builder_add(&open, "o", Item);
        }
        GVariantBuilder locked;
        g_variant_builder_init(&locked, G_VARIANT_TYPE("ao"));
        if (behaviour_.hasLockedItem) {
            g_variant_builder_add(&locked, "o", LockedItem);
        }
        return g_variant_new("(aoao)", &open, &locked);
    }
    if (method == "ReadAlias"_L1) {
        return g_variant_new("(o)", behaviour_.collection.toUtf8().constData());
    }
    if (method == "Get"_L1) {
        return g_variant_new("(v)", g_variant_new_boolean(behaviour_.isLocked));
    }
    if (method == "CreateItem"_L1) {
        return behaviour_.promptsToCreate ? g_variant_new("(oo)", "/", Prompt)
                                          : g_variant_new("(oo)", Item, "/");
    }
    return nullptr;
}

} // namespace quillmar::test
