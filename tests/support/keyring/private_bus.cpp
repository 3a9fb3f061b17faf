#include "tests/support/keyring/private_bus.h"

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

constexpr auto Configuration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <keep_umask/>
  <listen>unix:path=%1/bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>%1/services</servicedir>
  %2
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)"_L1;

constexpr auto NoKeyring = "[D-BUS Service]\nName=org.freedesktop.secrets\nExec=/bin/false\n"_L1;

bool writeFile(const QString &path, const QString &text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0 && file.flush();
}

} // namespace

PrivateBus::~PrivateBus()
{
    stop();
}

QString PrivateBus::address() const
{
    return u"unix:path="_s + directory_.filePath(u"bus"_s);
}

// The first description of a service counts, so ours comes before those of the system.
bool PrivateBus::writeConfiguration() const
{
    const QString others =
        serviceFolders_.isEmpty() ? QString() : u"<servicedir>%1</servicedir>"_s.arg(serviceFolders_);
    return QDir(directory_.path()).mkpath(u"services"_s) &&
           writeFile(directory_.filePath(u"services/org.freedesktop.secrets.service"_s), NoKeyring) &&
           writeFile(directory_.filePath(u"bus.conf"_s), Configuration.arg(directory_.path(), others));
}

bool PrivateBus::start()
{
    QFile::remove(directory_.filePath(u"bus"_s));
    const QStringList arguments{u"--nofork"_s, u"--nopidfile"_s, u"--print-address=1"_s,
                                u"--config-file="_s + directory_.filePath(u"bus.conf"_s)};
    if (!writeConfiguration() ||
        !startChild(process_, u"dbus-daemon"_s, arguments, QProcessEnvironment::systemEnvironment(), {})) {
        return false;
    }
    return waitUntil([this] { return process_.canReadLine() || process_.state() == QProcess::NotRunning; }) &&
           process_.canReadLine();
}

void PrivateBus::stop()
{
    if (process_.state() == QProcess::NotRunning) {
        return;
    }
    process_.kill();
    process_.waitForFinished();
    process_.readAll();
}

void PrivateBus::freeze()
{
    ::kill(static_cast<pid_t>(process_.processId()), SIGSTOP);
}

void PrivateBus::thaw()
{
    ::kill(static_cast<pid_t>(process_.processId()), SIGCONT);
}

} // namespace quillmar::test
