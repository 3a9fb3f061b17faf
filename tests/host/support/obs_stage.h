#pragma once

#include "tests/host/support/driver_client.h"

#include <QJsonObject>
#include <QSize>
#include <QString>

namespace quillmar::test
{

/// Brings the running OBS into the states in which a user may ask the module for something. Every call is
/// false when OBS refuses or there is nothing of that name.
class ObsStage
{
public:
    explicit ObsStage(DriverClient &driver) : driver_(driver) {}

    bool setStudioMode(bool on) const;
    bool setPreviewScene(const QString &scene) const;
    bool setCanvas(QSize size) const;
    /// Each becomes the top item of a scene.
    bool addColour(const QString &scene, const QString &name) const;
    bool addGroup(const QString &scene, const QString &name) const;
    bool nestScene(const QString &scene, const QString &nested) const;
    bool lockItems(const QString &scene) const;

    /// As a user adds one of OBS's own kinds: through the dialogs, which it leaves closed. It is then
    /// current.
    bool addTransition(const QString &id, const QString &name) const;
    bool setTransition(const QString &name, int milliseconds) const;
    /// How far the current transition is; 0 before it begins, 1 when it has ended.
    double transitionTime() const;
    /// The current transition has begun and not ended.
    bool isInTransition() const;

    bool openProperties(const QString &source) const;
    /// A visible dialog of that class.
    bool showsDialog(const QString &className) const;
    bool showsAnyDialog() const;
    /// Closes all of them and waits until they are gone.
    bool closeDialogs() const;

    /// Lays an ambush, see the driver; `then` tells what happens at that moment.
    bool atStatus(const QString &key, QJsonObject then) const;
    bool atDialog(const QString &className, QJsonObject then) const;
    bool isSprung() const;

private:
    DriverClient &driver_;
};

} // namespace quillmar::test
