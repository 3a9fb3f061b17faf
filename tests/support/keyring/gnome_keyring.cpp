#include "tests/support/keyring/gnome_keyring.h"

#include "tests/support/keyring/bus_client.h"
#include "tests/support/processes/child_process.h"
#include "tests/support/processes/waiting.h"

#include <QDir>
#include <QFile>

#include <csignal>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr char Service[] = "org.freedesktop.secrets";
const auto Attributes = {u"application"_s, u"quillmar-obs-plugin"_s};

} // namespace

GnomeKeyring::~GnomeKeyring()
{
    stop();
}

QProcessEnvironment GnomeKeyring::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s, u"XDG_CACHE_HOME"_s, u"DISPLAY"_s,
                                u"WAYLAND_DISPLAY"_s, u"G_DEBUG"_s}) {
        environment.remove(name);
    }
    environment.insert(u"HOME"_s, home_.path());
    environment.insert(u"XDG_RUNTIME_DIR"_s, home_.filePath(u"run"_s));
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, busAddress_);
    return environment;
}

bool GnomeKeyring::startDaemon(const QStringList &options)
{
    QFile password(home_.filePath(u"password"_s));
    if (!QDir(home_.path()).mkpath(u"run"_s) || !password.open(QIODevice::WriteOnly) ||
        password.write("open sesame") < 0) {
        return false;
    }
    password.close();
    const QStringList arguments = QStringList{u"--foreground"_s, u"--components=secrets"_s} + options;
    return startChild(process_, u"gnome-keyring-daemon"_s, arguments, environment(), home_.filePath(u"log"_s),
                      password.fileName());
}

bool GnomeKeyring::start()
{
    return startDaemon({u"--unlock"_s}) && waitUntil([this] { return isOpen(); });
}

bool GnomeKeyring::startLocked()
{
    return startDaemon({}) && waitUntil([this] { return isNameOwned(); });
}

void GnomeKeyring::stop()
{
    if (process_.state() == QProcess::NotRunning) {
        return;
    }
    process_.kill();
    process_.waitForFinished();
    waitUntil([this] { return !isNameOwned(); });
}

void GnomeKeyring::freeze()
{
    ::kill(static_cast<pid_t>(process_.processId()), SIGSTOP);
}

void GnomeKeyring::thaw()
{
    ::kill(static_cast<pid_t>(process_.processId()), SIGCONT);
}

bool GnomeKeyring::isNameOwned() const
{
    const BusConnection bus = connectToBus(busAddress_);
    if (!bus) {
        return false;
    }
    const Variant owned = callOnBus(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                    "org.freedesktop.DBus", "NameHasOwner", g_variant_new("(s)", Service));
    gboolean isOwned = FALSE;
    if (owned) {
        g_variant_get(owned.get(), "(b)", &isOwned);
    }
    return isOwned != FALSE;
}

bool GnomeKeyring::isOpen() const
{
    const BusConnection bus = connectToBus(busAddress_);
    if (!bus || !isNameOwned()) {
        return false;
    }
    const Variant answer =
        callOnBus(bus, Service, "/org/freedesktop/secrets/aliases/default", "org.freedesktop.DBus.Properties",
                  "Get", g_variant_new("(ss)", "org.freedesktop.Secret.Collection", "Locked"));
    if (!answer) {
        return false;
    }
    GVariant *value = nullptr;
    g_variant_get(answer.get(), "(v)", &value);
    const Variant owner(value);
    return !g_variant_get_boolean(value);
}

bool GnomeKeyring::runTool(const QStringList &arguments, QByteArray *output, const QString &input) const
{
    QProcess tool;
    tool.setProcessEnvironment(environment());
    tool.setStandardInputFile(input);
    tool.start(u"secret-tool"_s, arguments);
    const bool done = tool.waitForFinished(int(StepDeadline.count()));
    if (output != nullptr) {
        *output = tool.readAllStandardOutput();
    }
    return done && tool.exitCode() == 0;
}

bool GnomeKeyring::lock()
{
    return runTool({u"lock"_s}) && !isOpen();
}

bool GnomeKeyring::deleteKeys()
{
    // It reports a failure when there is nothing to delete.
    runTool(QStringList{u"clear"_s} + Attributes);
    return keyCount() == 0;
}

int GnomeKeyring::keyCount() const
{
    QByteArray output;
    runTool(QStringList{u"search"_s, u"--all"_s} + Attributes, &output);
    return static_cast<int>(output.count("secret = "));
}

bool GnomeKeyring::storeKey(const QString &secret)
{
    QFile file(home_.filePath(u"secret"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(secret.toUtf8()) < 0) {
        return false;
    }
    file.close();
    // One attribute more, because an item with the same ones would be replaced.
    return runTool(QStringList{u"store"_s, u"--label=by hand"_s} + Attributes +
                       QStringList{u"xdg:schema"_s, u"com.quillmar.SessionKey"_s, u"by"_s, u"hand"_s},
                   nullptr, file.fileName());
}

} // namespace quillmar::test
