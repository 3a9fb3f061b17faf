#pragma once

#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace quillmar::test
{

/// The demo service as a program of its own, answering under the service's real name on port 443.
///
/// Certificate and key come from the folder that QUILLMAR_TLS_DIR names (server.pem, server.key); the system
/// must trust their issuer and resolve the name to the loopback address.
class ServiceProcess
{
public:
    /// Null, with the reason in `*problem`, when it does not get ready. `giantBytes` above 0 adds a product
    /// of that size.
    static std::unique_ptr<ServiceProcess> start(const QString &catalogue, qint64 giantBytes,
                                                 QString *problem);

    ~ServiceProcess();
    Q_DISABLE_COPY_MOVE(ServiceProcess)

    /// Ends the service; its log stays readable.
    void stop();

    /// Keeps the process alive but has it do nothing, and the reverse: the service cannot be reached for a
    /// while, and forgets nothing.
    void freeze();
    void thaw();

    /// Every request answered so far: {"time", "method", "path", "status", "account", "reason"}.
    QList<QJsonObject> requests() const;

    /// How many of them went to the route `name`, for example "download-ticket".
    int count(const QString &name) const;

private:
    ServiceProcess() = default;

    QTemporaryDir directory_;
    QProcess process_;
};

} // namespace quillmar::test
