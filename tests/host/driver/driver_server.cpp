#include "tests/host/driver/driver_server.h"

#include "tests/host/driver/menu_report.h"
#include "tests/host/driver/obs_report.h"
#include "tests/host/driver/process_report.h"
#include "tests/host/driver/widget_report.h"
#include "tests/host/driver/window_actions.h"

#include <QJsonDocument>
#include <QLocalSocket>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

std::unique_ptr<DriverServer> DriverServer::listen(const QString &path)
{
    if (path.isEmpty())
        return nullptr;
    std::unique_ptr<DriverServer> driver(new DriverServer);
    if (!driver->server_.listen(path))
        return nullptr;
    return driver;
}

DriverServer::DriverServer()
{
    addObsHandlers();
    addWindowHandlers();
    addProcessHandlers();
    addStageHandlers();
    addTransitionHandlers();
    connect(&server_, &QLocalServer::newConnection, this, &DriverServer::accept);
}

void DriverServer::accept()
{
    QLocalSocket *socket = server_.nextPendingConnection();
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readRequests(socket); });
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
}

void DriverServer::readRequests(QLocalSocket *socket)
{
    while (socket->canReadLine()) {
        const QByteArray text = QJsonDocument(answer(socket->readLine())).toJson(QJsonDocument::Compact);
        socket->write(text + '\n');
        socket->flush();
    }
}

QJsonObject DriverServer::answer(const QByteArray &line)
{
    const QJsonObject request = QJsonDocument::fromJson(line).object();
    const QString name = request["do"_L1].toString();
    const auto handler = handlers_.constFind(name);
    if (handler == handlers_.cend())
        return {{u"error"_s, QString(u"no such request: " + name)}};
    return {{u"result"_s, (*handler)(request)}};
}

void DriverServer::addObsHandlers()
{
    handlers_[u"sources"_s] = [](const QJsonObject &) { return reportSources(); };
    handlers_[u"scenes"_s] = [](const QJsonObject &) { return reportScenes(); };
    handlers_[u"items"_s] = [](const QJsonObject &request) {
        return reportItems(request["scene"_L1].toString());
    };
    handlers_[u"transitions"_s] = [](const QJsonObject &) { return reportTransitions(); };
    handlers_[u"current-scene"_s] = [](const QJsonObject &) { return reportCurrentScene(); };
    handlers_[u"video-info"_s] = [](const QJsonObject &) { return reportVideo(); };
    handlers_[u"set-current-scene"_s] = [](const QJsonObject &request) {
        return setCurrentScene(request["scene"_L1].toString());
    };
    handlers_[u"create-scene"_s] = [](const QJsonObject &request) {
        return createScene(request["scene"_L1].toString());
    };
    handlers_[u"keep-current-scene"_s] = [](const QJsonObject &) { return keepOnlyCurrentScene(); };
    handlers_[u"save"_s] = [](const QJsonObject &) { return saveSceneCollection(); };
}

void DriverServer::addWindowHandlers()
{
    handlers_[u"widgets"_s] = [](const QJsonObject &request) {
        return reportWidgets(request["of"_L1].toString());
    };
    handlers_[u"windows"_s] = [](const QJsonObject &) { return reportWindows(); };
    handlers_[u"menus"_s] = [](const QJsonObject &) { return reportMenus(); };
    handlers_[u"dock-count"_s] = [](const QJsonObject &request) {
        return countDocks(request["id"_L1].toString());
    };
    handlers_[u"maximise"_s] = [](const QJsonObject &) { return maximiseMainWindow(); };
    handlers_[u"show-dock"_s] = [](const QJsonObject &request) {
        return showDock(request["id"_L1].toString(), request["width"_L1].toInt());
    };
    handlers_[u"screenshot"_s] = [](const QJsonObject &request) {
        return takeScreenshot(request["file"_L1].toString());
    };
    handlers_[u"quit"_s] = [](const QJsonObject &) { return quitLater(); };
}

void DriverServer::addProcessHandlers()
{
    handlers_[u"releases"_s] = [this](const QJsonObject &) { return clicks_.releases(); };
    handlers_[u"refused-polls"_s] = [](const QJsonObject &) { return reportRefusedPolls(); };
    handlers_[u"pid"_s] = [](const QJsonObject &) { return reportProcessId(); };
    handlers_[u"memory"_s] = [](const QJsonObject &) { return reportMemory(); };
    handlers_[u"memory-reset"_s] = [](const QJsonObject &) { return resetPeakMemory(); };
    handlers_[u"stall-reset"_s] = [this](const QJsonObject &) {
        stallMeter_.restart();
        return true;
    };
    handlers_[u"stall"_s] = [this](const QJsonObject &) {
        return QJsonObject{{u"longest_ms"_s, stallMeter_.longestMilliseconds()},
                           {u"over_16_ms"_s, stallMeter_.gapsOverFrame()},
                           {u"ticks"_s, stallMeter_.ticks()}};
    };
}

} // namespace quillmar::test
