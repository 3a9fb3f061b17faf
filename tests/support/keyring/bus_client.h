#pragma once

#include <QString>

#include <gio/gio.h>

#include <memory>

namespace quillmar::test
{

struct UnrefVariant {
    void operator()(GVariant *variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, UnrefVariant>;

struct UnrefConnection {
    void operator()(GDBusConnection *connection) const { g_object_unref(connection); }
};
using BusConnection = std::unique_ptr<GDBusConnection, UnrefConnection>;

/// A connection to the bus at `address`; null when there is none.
BusConnection connectToBus(const QString &address);

/// Calls a method and waits for its answer; null on any error.
Variant callOnBus(const BusConnection &bus, const char *name, const char *path, const char *interface,
                  const char *method, GVariant *arguments);

} // namespace quillmar::test
