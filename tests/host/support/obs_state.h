#pragma once

#include "tests/host/support/driver_client.h"

#include <QJsonObject>
#include <QList>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <optional>

namespace quillmar::test
{

/// What OBS calls left and top, centre, and scaled to fit inside the bounds.
inline constexpr int AlignLeftTop = 1 | 4;
inline constexpr int AlignCentre = 0;
inline constexpr int BoundsScaleInner = 2;

/// A source, scene or transition of the running OBS.
struct ObsSource {
    QString name;
    QString id;
    QString kind;
    QJsonObject settings;
    QSize size;

    /// The local file that an image or media source shows.
    QString file() const;
};

/// One item of a scene with its whole transform.
struct ObsItem {
    QString source;
    QPointF position;
    QPointF scale;
    QSizeF bounds;
    double rotation = 0;
    int alignment = -1;
    int boundsType = -1;
    int boundsAlignment = -1;
    bool cropToBounds = true;
    bool visible = false;
    bool locked = false;
    QList<int> crop;
};

/// Reads what the running OBS holds, through libobs itself.
class ObsState
{
public:
    explicit ObsState(DriverClient &driver) : driver_(driver) {}

    QList<ObsSource> sources() const;
    std::optional<ObsSource> source(const QString &name) const;
    /// Names of the sources and scenes that the module made, sorted.
    QStringList ownNames() const;
    QStringList scenes() const;
    /// The transitions of the front end.
    QList<ObsSource> transitions() const;
    std::optional<ObsSource> transition(const QString &name) const;
    QString currentTransition() const;
    QString currentScene() const;
    /// From bottom to top.
    QList<ObsItem> items(const QString &scene) const;
    std::optional<ObsItem> topItem(const QString &scene) const;
    bool setCurrentScene(const QString &scene) const;
    bool createScene(const QString &scene) const;
    QSize canvas() const;
    /// Pictures that OBS has rendered since it started.
    qint64 renderedFrames() const;

private:
    DriverClient &driver_;
};

} // namespace quillmar::test
