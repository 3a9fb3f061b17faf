#include "tests/support/keyring/bus_client.h"

namespace quillmar::test
{

BusConnection connectToBus(const QString &address)
{
    const auto flags = GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                            G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return BusConnection(g_dbus_connection_new_for_address_sync(address.toUtf8().constData(), flags, nullptr,
                                                                nullptr, nullptr));
}

Variant callOnBus(const BusConnection &bus, const char *name, const char *path, const char *interface,
                  const char *method, GVariant *arguments)
{
    return Variant(g_dbus_connection_call_sync(bus.get(), name, path, interface, method, arguments, nullptr,
                                               G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
}

} // namespace quillmar::test
