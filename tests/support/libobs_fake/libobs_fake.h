#pragma once

#include "obs/libobs.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMainWindow>
#include <QPointer>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <cstdarg>
#include <memory>
#include <optional>

/// What stands behind the handles of OBS in a test. Sources count references as OBS does.
struct obs_source {
    QString id;
    QString name;
    QVariantHash settings;
    int references = 1;
    bool removed = false;
    float transitionTime = 0.0F;
    std::unique_ptr<obs_scene> scene; ///< set when the source is a scene
};

struct obs_scene_item {
    obs_source_t *source = nullptr; ///< holds one reference
    obs_transform_info info{};
    QList<int> orders; ///< obs_order_movement, one per call
};

struct obs_scene {
    obs_source_t *source = nullptr; ///< the scene's own source, which owns this
    QList<obs_scene_item *> items;
};

struct obs_data {
    QVariantHash values;
    int references = 1;
};

struct text_lookup {
    QHash<QByteArray, QByteArray> texts;
};

namespace quillmar::test
{

/// An OBS made of plain values that answers the calls of the module instead of the real one.
///
/// Make one per test, before anything calls OBS, and let it die last; calls without one end the program.
/// Every call that changes something is recorded. A reference that the module got and did not give back stays
/// in `outstanding`.
class LibobsFake
{
public:
    LibobsFake();
    ~LibobsFake();
    LibobsFake(const LibobsFake &) = delete;
    LibobsFake &operator=(const LibobsFake &) = delete;

    static LibobsFake &instance();

    // --- what the test sets ---

    void setVersion(quint32 major, quint32 minor = 0, quint32 patch = 0);
    void setCanvas(std::optional<QSize> size) { canvas_ = size; }
    void setMainWindow(QMainWindow *window) { mainWindow_ = window; }
    void setConfigurable(const QString &sourceId, bool configurable);

    enum class Creation { Source, Scene, SceneItem };

    /// The n-th such creation from now on fails, once.
    void failCreation(Creation creation, int nth = 1) { failures_[creation] = nth; }

    /// Adds a source that OBS itself holds. A scene is one of id "scene".
    obs_source_t *addSource(const QString &id, const QString &name);
    obs_source_t *addTransition(const QString &name, const QString &id = QStringLiteral("fade_transition"));

    /// OBS holds neither strongly here: both stay what they are until changed. Null: there is none.
    void setCurrentScene(obs_source_t *source) { currentScene_ = source; }
    void setCurrentTransition(obs_source_t *transition) { currentTransition_ = transition; }

    /// Null: no configuration folder.
    void setConfigFolder(const QByteArray &path) { configFolder_ = path; }
    void setModuleBinary(const QByteArray &path) { moduleBinary_ = path; }

    /// Texts of a language; a language without texts has no locale file.
    void setTexts(const QByteArray &locale, const QHash<QByteArray, QByteArray> &texts)
    {
        texts_[locale] = texts;
    }
    void refuseDock(bool refuse) { refuseDock_ = refuse; }

    // --- what the test reads ---

    /// Calls that change something, in order, with their main arguments: "obs_scene_create Quillmar - X".
    const QStringList &calls() const { return calls_; }
    qsizetype count(const QString &function) const;
    void clearCalls() { calls_.clear(); }

    /// References and allocations that the module holds. All zero between two calls of the module.
    struct Outstanding {
        int sources = 0; ///< scenes included
        int data = 0;
        int strings = 0;
        int lookups = 0;

        bool operator==(const Outstanding &) const = default;
    };
    const Outstanding &outstanding() const { return outstanding_; }

    /// Names of the living sources in the order of creation, transitions not included.
    QStringList sourceNames() const;
    obs_source_t *source(const QString &name) const;
    obs_source_t *transition(const QString &name) const;
    QStringList transitionNames() const;
    obs_source_t *currentTransition() const { return currentTransition_; }

    /// Names given to obs_source_remove.
    const QStringList &removedNames() const { return removed_; }

    /// Releases of what was not held, and other breaches of OBS's rules. Empty in a good run.
    const QStringList &misuse() const { return misuse_; }

    struct LogLine {
        int level;
        QString text;
    };
    const QList<LogLine> &log() const { return log_; }

    /// Docks by id. OBS owns the widget from a successful registration on.
    QWidget *dock(const QString &id) const { return docks_.value(id); }

    // --- used by the calls ---

    void record(const QString &call) { calls_.append(call); }
    bool takeFailure(Creation creation);
    obs_source_t *newSource(const QString &id, const QString &name);
    void handOut(obs_source_t *source);
    void giveBack(obs_source_t *source);
    void remove(obs_source_t *source);
    obs_source_t *findByName(const char *name) const;
    obs_data_t *newData();
    void releaseData(obs_data_t *data);
    obs_scene_item *addItem(obs_scene_t *scene, obs_source_t *source);
    char *newString(const QByteArray &text);
    void freeString(void *text);
    lookup_t *newLookup(const char *defaultLocale, const char *locale);
    void destroyLookup(lookup_t *lookup);
    void appendLog(int level, const QString &text) { log_.append({level, text}); }
    bool addDock(const QString &id, QWidget *widget);
    void removeDock(const QString &id);

    quint32 version() const { return version_; }
    const std::optional<QSize> &canvas() const { return canvas_; }
    QMainWindow *mainWindow() const { return mainWindow_; }
    bool isConfigurable(const QString &sourceId) const { return !unconfigurable_.contains(sourceId); }
    obs_source_t *currentScene() const { return currentScene_; }
    const QList<obs_source_t *> &transitions() const { return transitions_; }
    const QByteArray &configFolder() const { return configFolder_; }
    const QByteArray &moduleBinary() const { return moduleBinary_; }

private:
    void drop(obs_source_t *source);
    void destroy(obs_source_t *source);

    quint32 version_ = 0;
    std::optional<QSize> canvas_ = QSize(1920, 1080);
    QPointer<QMainWindow> mainWindow_;
    QStringList unconfigurable_;
    QHash<Creation, int> failures_;
    QList<obs_source_t *> sources_;     ///< every living one, transitions included
    QList<obs_source_t *> held_;        ///< one reference each, held by OBS itself
    QList<obs_source_t *> transitions_; ///< one reference each, held by the front end
    QHash<obs_source_t *, int> lent_;   ///< references that the module holds
    QList<obs_data_t *> data_;
    QList<void *> strings_;
    QList<lookup_t *> lookups_;
    obs_source_t *currentScene_ = nullptr;
    obs_source_t *currentTransition_ = nullptr;
    QByteArray configFolder_;
    QByteArray moduleBinary_;
    QHash<QByteArray, QHash<QByteArray, QByteArray>> texts_;
    bool refuseDock_ = false;
    QHash<QString, QPointer<QWidget>> docks_;
    Outstanding outstanding_;
    QStringList calls_;
    QStringList removed_;
    QStringList misuse_;
    QList<LogLine> log_;
};

} // namespace quillmar::test
