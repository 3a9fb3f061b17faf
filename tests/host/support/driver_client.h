#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QLocalSocket>
#include <QString>

namespace quillmar::test
{

/// Asks the driver inside OBS and waits for its answer.
class DriverClient
{
public:
    /// False while nobody listens there yet.
    bool connectTo(const QString &socket);
    bool isConnected() const { return socket_.state() == QLocalSocket::ConnectedState; }

    /// The result of request `name`, or undefined when OBS is gone or does not answer in time.
    QJsonValue ask(const QString &name, QJsonObject arguments = {});

private:
    QLocalSocket socket_;
};

} // namespace quillmar::test
