#pragma once

#include "tests/host/driver/ambush.h"
#include "tests/host/driver/click_counter.h"
#include "tests/support/stall_meter.h"

#include <QHash>
#include <QJsonObject>
#include <QJsonValue>
#include <QLocalServer>
#include <QObject>

#include <functional>
#include <memory>

class QLocalSocket;

namespace quillmar::test
{

/// Answers questions about the running OBS: one JSON object per line in, one per line out, in order.
///
/// A request is {"do": name, ...arguments}; its answer {"result": value} or {"error": text}. Everything runs
/// on the user-interface thread, so an answer is a consistent picture of widgets and scenes between two
/// events.
class DriverServer : public QObject
{
    Q_OBJECT

public:
    /// Listens on the socket file `path`; null when that is empty or the system refuses.
    static std::unique_ptr<DriverServer> listen(const QString &path);

private:
    using Handler = std::function<QJsonValue(const QJsonObject &request)>;

    DriverServer();
    void accept();
    void readRequests(QLocalSocket *socket);
    QJsonObject answer(const QByteArray &line);
    void addObsHandlers();
    void addWindowHandlers();
    void addProcessHandlers();
    void addStageHandlers();
    void addTransitionHandlers();

    QLocalServer server_;
    QHash<QString, Handler> handlers_;
    StallMeter stallMeter_;
    Ambush ambush_;
    ClickCounter clicks_;
};

} // namespace quillmar::test
