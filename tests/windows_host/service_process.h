#pragma once

#include <QProcess>
#include <QSslConfiguration>
#include <QTemporaryDir>

namespace quillmar::test
{

/// The service in a process of its own, with its own TLS. While an instance lives, whatever this process asks
/// for goes there, and the authority of the service is the only one that is trusted.
class ServiceProcess
{
public:
    /// Ends the program when the service cannot be started. A TLS back-end has been found before.
    ServiceProcess();
    ~ServiceProcess();
    ServiceProcess(const ServiceProcess &) = delete;
    ServiceProcess &operator=(const ServiceProcess &) = delete;

private:
    void reach(const QString &announcement);

    QTemporaryDir folder_;
    QProcess process_;
    QSslConfiguration formerTls_ = QSslConfiguration::defaultConfiguration();
};

} // namespace quillmar::test
