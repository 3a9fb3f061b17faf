#include "tests/windows_host/service_process.h"

#include "tests/support/processes/child_process.h"
#include "tests/support/processes/waiting.h"

#include <QCoreApplication>
#include <QFile>
#include <QNetworkProxy>
#include <QSslCertificate>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

ServiceProcess::ServiceProcess()
{
    const QString announcement = folder_.filePath(u"announcement"_s);
    const QString program = QCoreApplication::applicationDirPath() + u"/windows_service.exe"_s;
    if (!startChild(process_, program, {announcement}, QProcessEnvironment::systemEnvironment(), {}) ||
        !waitUntil([&] { return QFile::exists(announcement); }))
        qFatal("The service does not start");
    reach(announcement);
}

ServiceProcess::~ServiceProcess()
{
    process_.kill();
    process_.waitForFinished();
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    QSslConfiguration::setDefaultConfiguration(formerTls_);
}

void ServiceProcess::reach(const QString &announcement)
{
    QFile file(announcement);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The service does not say where it is");
    const quint16 port = file.readLine().trimmed().toUShort();
    QSslConfiguration trusting = formerTls_;
    trusting.setCaCertificates({QSslCertificate(file.readAll())});
    QSslConfiguration::setDefaultConfiguration(trusting);
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::HttpProxy, u"127.0.0.1"_s, port));
}

} // namespace quillmar::test
