#include "tests/host/driver/driver_server.h"
#include "tests/host/driver/picture_report.h"
#include "tests/host/driver/stage_actions.h"
#include "tests/host/driver/window_actions.h"

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QString text(const QJsonObject &request, QLatin1StringView name)
{
    return request[name].toString();
}

QSize size(const QJsonObject &request)
{
    return {request["width"_L1].toInt(), request["height"_L1].toInt()};
}

Ambush::Action actionOf(const QJsonObject &request)
{
    const QString action = text(request, "then"_L1);
    if (action == "remove-dock"_L1)
        return removeDock;
    if (action == "remove-files"_L1)
        return [folder = text(request, "folder"_L1)] { removeFiles(folder); };
    if (action == "trigger"_L1)
        return [entry = text(request, "entry"_L1)] { triggerLater(entry); };
    return [] { quitLater(); };
}

} // namespace

void DriverServer::addStageHandlers()
{
    handlers_[u"studio-mode"_s] = [](const QJsonObject &r) { return setStudioMode(r["on"_L1].toBool()); };
    handlers_[u"set-preview-scene"_s] = [](const QJsonObject &r) {
        return setPreviewScene(text(r, "scene"_L1));
    };
    handlers_[u"set-canvas"_s] = [](const QJsonObject &r) { return setCanvas(size(r)); };
    handlers_[u"add-colour"_s] = [](const QJsonObject &r) {
        return addColour(text(r, "scene"_L1), text(r, "name"_L1));
    };
    handlers_[u"add-group"_s] = [](const QJsonObject &r) {
        return addGroup(text(r, "scene"_L1), text(r, "name"_L1));
    };
    handlers_[u"nest-scene"_s] = [](const QJsonObject &r) {
        return addNestedScene(text(r, "scene"_L1), text(r, "nested"_L1));
    };
    handlers_[u"lock-items"_s] = [](const QJsonObject &r) { return lockItems(text(r, "scene"_L1)); };
    handlers_[u"open-properties"_s] = [](const QJsonObject &r) {
        return openProperties(text(r, "source"_L1));
    };
    handlers_[u"close-dialogs"_s] = [](const QJsonObject &) { return closeDialogs(); };
    handlers_[u"press-on-card"_s] = [](const QJsonObject &r) {
        return pressOnCard(text(r, "component"_L1), text(r, "caption"_L1));
    };
    handlers_[u"status-on-card"_s] = [](const QJsonObject &r) {
        return statusOnCard(text(r, "component"_L1));
    };
    handlers_[u"program-picture"_s] = [](const QJsonObject &r) {
        return writeProgramPicture(text(r, "file"_L1), size(r));
    };
}

void DriverServer::addTransitionHandlers()
{
    handlers_[u"set-transition"_s] = [](const QJsonObject &r) {
        return setTransition(text(r, "name"_L1), r["milliseconds"_L1].toInt());
    };
    handlers_[u"add-transition"_s] = [this](const QJsonObject &r) {
        ambush_.atDialog(u"NameDialog"_s, [name = text(r, "name"_L1)] { answerNameDialogLater(name); });
        addTransitionLater(text(r, "id"_L1).toUtf8());
        return true;
    };
    handlers_[u"transition-time"_s] = [](const QJsonObject &) { return transitionTime(); };
    handlers_[u"ambush-status"_s] = [this](const QJsonObject &r) {
        ambush_.atStatus(text(r, "key"_L1), actionOf(r));
        return true;
    };
    handlers_[u"ambush-dialog"_s] = [this](const QJsonObject &r) {
        ambush_.atDialog(text(r, "class"_L1), actionOf(r));
        return true;
    };
    handlers_[u"ambush-sprung"_s] = [this](const QJsonObject &) { return ambush_.isSprung(); };
}

} // namespace quillmar::test
