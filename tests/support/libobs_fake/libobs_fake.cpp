#include "tests/support/libobs_fake/libobs_fake.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

LibobsFake *current = nullptr;

} // namespace

LibobsFake::LibobsFake()
{
    if (current != nullptr) {
        qFatal("one LibobsFake at a time");
    }
    current = this;
    setVersion(32, 2, 2);
}

LibobsFake::~LibobsFake()
{
    for (obs_source_t *source : std::as_const(sources_)) {
        if (source->scene) {
            qDeleteAll(source->scene->items);
        }
    }
    qDeleteAll(sources_);
    qDeleteAll(data_);
    qDeleteAll(lookups_);
    for (void *text : std::as_const(strings_)) {
        std::free(text);
    }
    current = nullptr;
}

LibobsFake &LibobsFake::instance()
{
    if (current == nullptr) {
        qFatal("OBS was called outside the life of a LibobsFake");
    }
    return *current;
}

void LibobsFake::setVersion(quint32 major, quint32 minor, quint32 patch)
{
    version_ = (major << 24) | (minor << 16) | patch;
}

void LibobsFake::setConfigurable(const QString &sourceId, bool configurable)
{
    unconfigurable_.removeAll(sourceId);
    if (!configurable) {
        unconfigurable_.append(sourceId);
    }
}

obs_source_t *LibobsFake::addSource(const QString &id, const QString &name)
{
    obs_source_t *source = newSource(id, name);
    held_.append(source);
    return source;
}

obs_source_t *LibobsFake::addTransition(const QString &name, const QString &id)
{
    obs_source_t *transition = newSource(id, name);
    transitions_.append(transition);
    return transition;
}

qsizetype LibobsFake::count(const QString &function) const
{
    return std::ranges::count_if(
        calls_, [&](const QString &call) { return call == function || call.startsWith(function + u' '); });
}

QStringList LibobsFake::sourceNames() const
{
    QStringList names;
    for (const obs_source_t *source : sources_) {
        if (!transitions_.contains(source)) {
            names.append(source->name);
        }
    }
    return names;
}

obs_source_t *LibobsFake::source(const QString &name) const
{
    return findByName(name.toUtf8().constData());
}

obs_source_t *LibobsFake::transition(const QString &name) const
{
    const auto found = std::ranges::find(transitions_, name, &obs_source::name);
    return found == transitions_.cend() ? nullptr : *found;
}

QStringList LibobsFake::transitionNames() const
{
    QStringList names;
    for (const obs_source_t *transition : transitions_) {
        names.append(transition->name);
    }
    return names;
}

bool LibobsFake::takeFailure(Creation creation)
{
    const auto failure = failures_.find(creation);
    return failure != failures_.end() && --failure.value() == 0;
}

obs_source_t *LibobsFake::newSource(const QString &id, const QString &name)
{
    auto *source = new obs_source{.id = id, .name = name, .settings = {}, .scene = nullptr};
    if (id == "scene"_L1) {
        source->scene = std::make_unique<obs_scene>();
        source->scene->source = source;
    }
    sources_.append(source);
    return source;
}

void LibobsFake::handOut(obs_source_t *source)
{
    ++lent_[source];
    ++outstanding_.sources;
}

void LibobsFake::giveBack(obs_source_t *source)
{
    if (lent_.value(source) == 0) {
        misuse_.append(u"released a source that was not held"_s);
        return;
    }
    --lent_[source];
    --outstanding_.sources;
    drop(source);
}

void LibobsFake::drop(obs_source_t *source)
{
    if (--source->references == 0) {
        destroy(source);
    }
}

void LibobsFake::destroy(obs_source_t *source)
{
    if (source->scene) {
        const QList<obs_scene_item *> items = std::exchange(source->scene->items, {});
        for (obs_scene_item *item : items) {
            drop(item->source);
            delete item;
        }
    }
    sources_.removeAll(source);
    lent_.remove(source);
    delete source;
}

void LibobsFake::remove(obs_source_t *source)
{
    record(u"obs_source_remove "_s + source->name);
    removed_.append(source->name);
    if (!std::exchange(source->removed, true) && held_.removeAll(source) > 0) {
        drop(source);
    }
}

obs_source_t *LibobsFake::findByName(const char *name) const
{
    const QString wanted = QString::fromUtf8(name);
    const auto found = std::ranges::find_if(sources_, [&](obs_source_t *source) {
        return source->name == wanted && !transitions_.contains(source);
    });
    return found == sources_.cend() ? nullptr : *found;
}

obs_data_t *LibobsFake::newData()
{
    data_.append(new obs_data);
    ++outstanding_.data;
    return data_.constLast();
}

void LibobsFake::releaseData(obs_data_t *data)
{
    if (!data_.removeOne(data)) {
        misuse_.append(u"released settings that were not held"_s);
        return;
    }
    --outstanding_.data;
    delete data;
}

obs_scene_item *LibobsFake::addItem(obs_scene_t *scene, obs_source_t *source)
{
    ++source->references;
    scene->items.append(new obs_scene_item{.source = source, .info = {}, .orders = {}});
    return scene->items.constLast();
}

char *LibobsFake::newString(const QByteArray &text)
{
    const auto size = static_cast<std::size_t>(text.size()) + 1;
    auto *copy = static_cast<char *>(std::malloc(size));
    std::memcpy(copy, text.constData(), size);
    strings_.append(copy);
    ++outstanding_.strings;
    return copy;
}

void LibobsFake::freeString(void *text)
{
    if (text == nullptr) {
        return;
    }
    if (!strings_.removeOne(text)) {
        misuse_.append(u"freed memory that OBS did not hand out"_s);
        return;
    }
    --outstanding_.strings;
    std::free(text);
}

lookup_t *LibobsFake::newLookup(const char *defaultLocale, const char *locale)
{
    record(u"obs_module_load_locale "_s + QString::fromUtf8(defaultLocale) + u' ' +
           QString::fromUtf8(locale));
    if (!texts_.contains(defaultLocale)) {
        return nullptr;
    }
    auto *lookup = new text_lookup{texts_.value(defaultLocale)};
    lookup->texts.insert(texts_.value(locale));
    lookups_.append(lookup);
    ++outstanding_.lookups;
    return lookup;
}

void LibobsFake::destroyLookup(lookup_t *lookup)
{
    if (!lookups_.removeOne(lookup)) {
        misuse_.append(u"destroyed a text lookup that was not held"_s);
        return;
    }
    --outstanding_.lookups;
    delete lookup;
}

bool LibobsFake::addDock(const QString &id, QWidget *widget)
{
    record(u"obs_frontend_add_dock_by_id "_s + id);
    if (refuseDock_ || docks_.value(id) != nullptr) {
        return false;
    }
    docks_.insert(id, widget);
    if (mainWindow_) {
        widget->setParent(mainWindow_);
    }
    return true;
}

void LibobsFake::removeDock(const QString &id)
{
    record(u"obs_frontend_remove_dock "_s + id);
    delete docks_.take(id);
}

} // namespace quillmar::test
