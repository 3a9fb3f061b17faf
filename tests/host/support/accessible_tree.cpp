#include "tests/host/support/accessible_tree.h"

#include "tests/support/keyring/bus_client.h"

#include <atspi/atspi.h>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr char BusName[] = "org.a11y.Bus";
constexpr char BusPath[] = "/org/a11y/bus";
constexpr int DeepestObject = 60;

struct UnrefObject {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Accessible = std::unique_ptr<AtspiAccessible, UnrefObject>;
using States = std::unique_ptr<AtspiStateSet, UnrefObject>;

QString taken(gchar *text)
{
    const QString copy = QString::fromUtf8(text);
    g_free(text);
    return copy;
}

AccessibleObject described(AtspiAccessible *accessible, int parent)
{
    AccessibleObject object;
    object.parent = parent;
    object.role = taken(atspi_accessible_get_role_name(accessible, nullptr));
    object.name = taken(atspi_accessible_get_name(accessible, nullptr));
    object.description = taken(atspi_accessible_get_description(accessible, nullptr));
    const States states(atspi_accessible_get_state_set(accessible));
    object.visible = states && atspi_state_set_contains(states.get(), ATSPI_STATE_VISIBLE);
    object.focusable = states && atspi_state_set_contains(states.get(), ATSPI_STATE_FOCUSABLE);
    return object;
}

void append(QList<AccessibleObject> &list, AtspiAccessible *accessible, int parent, int depth)
{
    const int self = static_cast<int>(list.size());
    list.append(described(accessible, parent));
    if (depth > DeepestObject || list.last().role == "combo box"_L1)
        return;
    const int children = atspi_accessible_get_child_count(accessible, nullptr);
    for (int index = 0; index < children; ++index) {
        const Accessible child(atspi_accessible_get_child_at_index(accessible, index, nullptr));
        if (child)
            append(list, child.get(), self, depth + 1);
    }
}

} // namespace

std::unique_ptr<ScreenReader> ScreenReader::start(const QString &sessionBus, QString *problem)
{
    const BusConnection bus = connectToBus(sessionBus);
    const Variant address =
        bus ? callOnBus(bus, BusName, BusPath, BusName, "GetAddress", nullptr) : Variant();
    if (!address) {
        *problem = u"no accessibility bus"_s;
        return nullptr;
    }
    const char *text = nullptr;
    g_variant_get(address.get(), "(&s)", &text);
    qputenv("AT_SPI_BUS_ADDRESS", text);
    GVariant *enabled = g_variant_new("(ssv)", "org.a11y.Status", "IsEnabled", g_variant_new_boolean(TRUE));
    if (!callOnBus(bus, BusName, BusPath, "org.freedesktop.DBus.Properties", "Set", enabled)) {
        *problem = u"accessibility cannot be switched on"_s;
        return nullptr;
    }
    if (atspi_init() != 0) {
        *problem = u"libatspi does not start"_s;
        return nullptr;
    }
    const Accessible desktop(atspi_get_desktop(0));
    atspi_accessible_set_cache_mask(desktop.get(), ATSPI_CACHE_NONE);
    return std::unique_ptr<ScreenReader>(new ScreenReader);
}

ScreenReader::~ScreenReader()
{
    atspi_exit();
}

QList<AccessibleObject> ScreenReader::read() const
{
    QList<AccessibleObject> list;
    const Accessible desktop(atspi_get_desktop(0));
    if (desktop)
        append(list, desktop.get(), -1, 0);
    return list;
}

} // namespace quillmar::test
