#include "tests/host/support/service_process.h"

#include "tests/support/processes/child_process.h"
#include "tests/support/processes/waiting.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <algorithm>
#include <csignal>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

// Writing a giant package takes its time on a slow disk.
constexpr std::chrono::milliseconds ReadyDeadline = 120s;

} // namespace

std::unique_ptr<ServiceProcess> ServiceProcess::start(const QString &catalogue, qint64 giantBytes,
                                                      QString *problem)
{
    const QDir tls(qEnvironmentVariable("QUILLMAR_TLS_DIR"));
    std::unique_ptr<ServiceProcess> service(new ServiceProcess);
    const QStringList arguments{u"--host"_s,          QStringLiteral(QUILLMAR_SERVICE_HOST),
                                u"--port"_s,          u"443"_s,
                                u"--certificate"_s,   tls.filePath(u"server.pem"_s),
                                u"--key"_s,           tls.filePath(u"server.key"_s),
                                u"--catalogue"_s,     catalogue,
                                u"--log"_s,           service->directory_.filePath(u"requests.log"_s),
                                u"--giant-package"_s, QString::number(giantBytes)};
    service->process_.setProcessChannelMode(QProcess::MergedChannels);
    if (!startChild(service->process_, QStringLiteral(QUILLMAR_DEMO_SERVICE), arguments,
                    QProcessEnvironment::systemEnvironment(), {})) {
        *problem = u"the demo service cannot be started"_s;
        return nullptr;
    }
    QByteArray output;
    waitUntil(
        [&] {
            output += service->process_.readAll();
            return output.contains("ready\n") || service->process_.state() == QProcess::NotRunning;
        },
        ReadyDeadline);
    if (output.contains("ready\n"))
        return service;
    *problem = u"the demo service is not ready: "_s + QString::fromLocal8Bit(output);
    return nullptr;
}

ServiceProcess::~ServiceProcess()
{
    stop();
}

void ServiceProcess::stop()
{
    stopChild(process_, 5s);
}

void ServiceProcess::freeze()
{
    ::kill(static_cast<pid_t>(process_.processId()), SIGSTOP);
}

void ServiceProcess::thaw()
{
    ::kill(static_cast<pid_t>(process_.processId()), SIGCONT);
}

QList<QJsonObject> ServiceProcess::requests() const
{
    QList<QJsonObject> list;
    QFile log(directory_.filePath(u"requests.log"_s));
    if (!log.open(QIODevice::ReadOnly))
        return list;
    while (!log.atEnd())
        list.append(QJsonDocument::fromJson(log.readLine()).object());
    return list;
}

int ServiceProcess::count(const QString &name) const
{
    const QList<QJsonObject> list = requests();
    return static_cast<int>(std::count_if(list.cbegin(), list.cend(), [&name](const QJsonObject &request) {
        return request["path"_L1].toString().endsWith(u'/' + name);
    }));
}

} // namespace quillmar::test
