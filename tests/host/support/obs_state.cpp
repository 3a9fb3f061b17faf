#include "tests/host/support/obs_state.h"

#include <QJsonArray>

#include <algorithm>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

QPointF pairOf(const QJsonValue &value)
{
    return {value[0].toDouble(), value[1].toDouble()};
}

ObsSource readSource(const QJsonValue &value)
{
    return {value["name"_L1].toString(), value["id"_L1].toString(), value["kind"_L1].toString(),
            value["settings"_L1].toObject(), QSize(value["width"_L1].toInt(), value["height"_L1].toInt())};
}

ObsItem readItem(const QJsonValue &value)
{
    ObsItem item;
    item.source = value["source"_L1].toString();
    item.position = pairOf(value["pos"_L1]);
    item.scale = pairOf(value["scale"_L1]);
    const QPointF bounds = pairOf(value["bounds"_L1]);
    item.bounds = {bounds.x(), bounds.y()};
    item.rotation = value["rot"_L1].toDouble();
    item.alignment = value["alignment"_L1].toInt(-1);
    item.boundsType = value["bounds_type"_L1].toInt(-1);
    item.boundsAlignment = value["bounds_alignment"_L1].toInt(-1);
    item.cropToBounds = value["crop_to_bounds"_L1].toBool(true);
    item.visible = value["visible"_L1].toBool();
    item.locked = value["locked"_L1].toBool();
    const QJsonArray crop = value["crop"_L1].toArray();
    for (const QJsonValue &side : crop)
        item.crop.append(side.toInt());
    return item;
}

std::optional<ObsSource> named(const QList<ObsSource> &list, const QString &name)
{
    const auto found =
        std::find_if(list.cbegin(), list.cend(), [&name](const ObsSource &s) { return s.name == name; });
    return found == list.cend() ? std::nullopt : std::optional(*found);
}

} // namespace

QString ObsSource::file() const
{
    return id == "image_source"_L1 ? settings["file"_L1].toString() : settings["local_file"_L1].toString();
}

QList<ObsSource> ObsState::sources() const
{
    QList<ObsSource> list;
    const QJsonArray report = driver_.ask(u"sources"_s).toArray();
    for (const QJsonValue &value : report) {
        if (!value["removed"_L1].toBool())
            list.append(readSource(value));
    }
    return list;
}

std::optional<ObsSource> ObsState::source(const QString &name) const
{
    return named(sources(), name);
}

QList<ObsSource> ObsState::transitions() const
{
    QList<ObsSource> list;
    const QJsonArray report = driver_.ask(u"transitions"_s)["all"_L1].toArray();
    for (const QJsonValue &value : report)
        list.append(readSource(value));
    return list;
}

std::optional<ObsSource> ObsState::transition(const QString &name) const
{
    return named(transitions(), name);
}

QString ObsState::currentTransition() const
{
    return driver_.ask(u"transitions"_s)["current"_L1].toString();
}

QStringList ObsState::ownNames() const
{
    QStringList names;
    const QList<ObsSource> list = sources();
    for (const ObsSource &source : list) {
        if (source.name.startsWith("Quillmar - "_L1))
            names.append(source.name);
    }
    names.sort();
    return names;
}

QStringList ObsState::scenes() const
{
    return driver_.ask(u"scenes"_s).toVariant().toStringList();
}

QString ObsState::currentScene() const
{
    return driver_.ask(u"current-scene"_s).toString();
}

QList<ObsItem> ObsState::items(const QString &scene) const
{
    QList<ObsItem> list;
    const QJsonArray report = driver_.ask(u"items"_s, {{u"scene"_s, scene}}).toArray();
    for (const QJsonValue &value : report)
        list.append(readItem(value));
    return list;
}

std::optional<ObsItem> ObsState::topItem(const QString &scene) const
{
    const QList<ObsItem> list = items(scene);
    return list.isEmpty() ? std::nullopt : std::optional(list.last());
}

bool ObsState::setCurrentScene(const QString &scene) const
{
    return driver_.ask(u"set-current-scene"_s, {{u"scene"_s, scene}}).toBool();
}

bool ObsState::createScene(const QString &scene) const
{
    return driver_.ask(u"create-scene"_s, {{u"scene"_s, scene}}).toBool();
}

QSize ObsState::canvas() const
{
    const QJsonValue video = driver_.ask(u"video-info"_s);
    return {video["width"_L1].toInt(), video["height"_L1].toInt()};
}

qint64 ObsState::renderedFrames() const
{
    return driver_.ask(u"video-info"_s)["frames"_L1].toInteger();
}

} // namespace quillmar::test
