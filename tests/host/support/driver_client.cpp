#include "tests/host/support/driver_client.h"

#include "tests/support/processes/waiting.h"

#include <QJsonDocument>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

bool DriverClient::connectTo(const QString &socket)
{
    if (isConnected())
        return true;
    socket_.abort();
    socket_.connectToServer(socket);
    return isConnected();
}

QJsonValue DriverClient::ask(const QString &name, QJsonObject arguments)
{
    if (!isConnected())
        return QJsonValue::Undefined;
    arguments[u"do"_s] = name;
    socket_.write(QJsonDocument(arguments).toJson(QJsonDocument::Compact) + '\n');
    const bool answered = waitUntil([this] { return socket_.canReadLine() || !isConnected(); });
    if (!answered || !socket_.canReadLine())
        return QJsonValue::Undefined;
    return QJsonDocument::fromJson(socket_.readLine()).object().value("result"_L1);
}

} // namespace quillmar::test
