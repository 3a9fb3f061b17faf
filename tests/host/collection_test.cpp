#include "tests/host/support/obs_stage.h"
#include "tests/host/support/served_session.h"

#include <QFile>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

const QString Product = QStringLiteral("Host stage");
const QString Prefix = QStringLiteral("Quillmar - ");
constexpr int Insertions = 100;
// A hundred layers on a large one would keep software rendering busy.
constexpr QSize SmallCanvas{320, 180};

const QList<StageComponent> &components()
{
    static const QList<StageComponent> list{
        {.name = u"Picture"_s, .asset = stage::Red, .mode = stage::Overlay},
        {.name = u"Clip"_s, .asset = stage::Flip, .mode = stage::Overlay, .looping = true},
        {.name = u"Frame"_s,
         .asset = stage::Frame,
         .mode = stage::Webcam,
         .position = u"center"_s,
         .size = {133, 101}},
        {.name = u"Moving frame"_s, .asset = stage::Flip, .mode = stage::Webcam},
        {.name = u"Picture scene"_s, .asset = stage::Red, .mode = stage::NewScene},
        {.name = u"Clip scene"_s, .asset = stage::Flip, .mode = stage::NewScene},
        {.name = u"Curtain"_s, .asset = stage::Curtain, .mode = stage::Stinger, .transitionPoint = 777}};
    return list;
}

// What depends on the moment, not on what was inserted.
QJsonObject withoutMoment(QJsonObject source)
{
    for (const QString &name : {u"width"_s, u"height"_s})
        source.remove(name);
    return source;
}

} // namespace

/// A scene collection full of insertions: written by one run of OBS, read by the next.
class CollectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void oneOfEachKindComesBackAsItWas();
    void hundredInsertions();
    void allOfThemComeBack();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    ObsState state() { return served_->state(); }
    QJsonArray own(const QString &question);
    QJsonObject everything();
    bool add(const QString &component);
    QStringList warnings() const;

    std::unique_ptr<ServedSession> served_;
    QString scene_;
    QJsonArray items_;
    QJsonArray transitions_;
};

void CollectionTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start(
        {.host = {.canvas = SmallCanvas}, .stage = components(), .account = u"demo"_s}, &problem);
    QVERIFY2(served_, qPrintable(problem));
    QVERIFY2(panel().search(Product), qPrintable(panel().problem()));
    scene_ = state().currentScene();
}

/// The sources or transitions that the module made, sorted by their names.
QJsonArray CollectionTest::own(const QString &question)
{
    QMap<QString, QJsonObject> sorted;
    const bool isSources = question == "sources"_L1;
    const QJsonValue answer = served_->session().driver().ask(question);
    const QJsonArray all = answer.isArray() ? answer.toArray() : answer["all"_L1].toArray();
    for (const QJsonValue &value : all) {
        const QString name = value["name"_L1].toString();
        const bool partOfAStinger =
            isSources && (value["kind"_L1].toString() == "transition"_L1 || name.endsWith(" (Stinger)"_L1));
        if (name.startsWith(Prefix) && !partOfAStinger && !value["removed"_L1].toBool())
            sorted[name] = withoutMoment(value.toObject());
    }
    QJsonArray list;
    for (const QJsonObject &object : std::as_const(sorted))
        list.append(object);
    return list;
}

/// Sources and transitions with their settings, items with their transforms, in every scene.
QJsonObject CollectionTest::everything()
{
    QJsonObject scenes;
    const QStringList names = state().scenes();
    for (const QString &name : names)
        scenes[name] = served_->session().driver().ask(u"items"_s, {{u"scene"_s, name}});
    return {{u"sources"_s, own(u"sources"_s)},
            {u"transitions"_s, own(u"transitions"_s)},
            {u"scenes"_s, scenes},
            {u"current"_s, state().currentScene()},
            {u"transition"_s, state().currentTransition()}};
}

void CollectionTest::oneOfEachKindComesBackAsItWas()
{
    for (const StageComponent &component : components())
        QVERIFY2(panel().run({Product, component.name}), qPrintable(panel().problem()));
    const QJsonObject before = everything();
    QCOMPARE(before["sources"_L1].toArray().size(), 8);
    QCOMPARE(before["transitions"_L1].toArray().size(), 1);
    QCOMPARE(before["scenes"_L1].toObject().size(), 3);
    QCOMPARE(before["scenes"_L1][scene_].toArray().size(), 4);

    // With all scenes there, for they are what is looked at; OBS's own trouble with them at exit is not.
    QVERIFY(served_->session().obs().quit().inTime);
    QString problem;
    QVERIFY2(served_->resume(&problem), qPrintable(problem));
    QCOMPARE(everything(), before);
}

/// Without a pointer, which would take a second each; everything behind the button is as ever.
bool CollectionTest::add(const QString &component)
{
    const QJsonObject button{{u"component"_s, component}, {u"caption"_s, panel().text(u"Component.Add"_s)}};
    DriverClient &driver = served_->session().driver();
    return driver.ask(u"press-on-card"_s, button).toBool() && QTest::qWaitFor([&] {
               return driver.ask(u"status-on-card"_s, button).toString() == "Component.Added"_L1;
           });
}

void CollectionTest::hundredInsertions()
{
    QVERIFY2(panel().search(Product), qPrintable(panel().problem()));
    QVERIFY2(panel().openComponents(Product), qPrintable(panel().problem()));
    const qsizetype before = own(u"sources"_s).size() + own(u"transitions"_s).size();
    int scenes = 0;
    QStringList pressed;
    for (int count = 0; count < Insertions; ++count) {
        const StageComponent &component = components().at(count % components().size());
        QVERIFY2(add(component.name), qPrintable(component.name));
        scenes += component.mode == stage::NewScene ? 1 : 0;
        if (component.mode == stage::Overlay || component.mode == stage::Webcam)
            pressed.append(Prefix + component.name);
    }
    QCOMPARE(own(u"sources"_s).size() + own(u"transitions"_s).size(), before + Insertions + scenes);
    QCOMPARE(state().currentScene(), scene_);

    items_ = served_->session().driver().ask(u"items"_s, {{u"scene"_s, scene_}}).toArray();
    for (qsizetype item = 0; item < pressed.size(); ++item)
        QVERIFY(items_.at(items_.size() - pressed.size() + item)["source"_L1].toString().startsWith(
            pressed.at(item)));
    transitions_ = own(u"transitions"_s);
    const ObsExit exit = served_->session().quit();
    QVERIFY(exit.inTime);
    QCOMPARE(exit.code, 0);
    QCOMPARE(exit.log.leaks, 0);
    QCOMPARE(warnings(), QStringList());
}

/// What the module said at a level above "info" in any run so far.
QStringList CollectionTest::warnings() const
{
    QStringList found;
    QFile output(served_->session().home().output());
    if (!output.open(QIODevice::ReadOnly))
        return {u"there is no output of OBS"_s};
    const QStringList lines = QString::fromUtf8(output.readAll()).split(u'\n');
    for (const QString &line : lines) {
        if (line.contains("[quillmar-obs-plugin]"_L1) && !line.startsWith("info: "_L1))
            found.append(line);
    }
    return found;
}

void CollectionTest::allOfThemComeBack()
{
    QString problem;
    QVERIFY2(served_->resume(&problem), qPrintable(problem));
    const QJsonArray now = served_->session().driver().ask(u"items"_s, {{u"scene"_s, scene_}}).toArray();
    QCOMPARE(now, items_);
    QCOMPARE(own(u"transitions"_s), transitions_);
    QVERIFY(items_.size() > Insertions / 2);
    const ObsExit exit = served_->session().quit();
    QCOMPARE(exit.code, 0);
    QCOMPARE(exit.log.leaks, 0);
    QCOMPARE(warnings(), QStringList());
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::CollectionTest)
#include "collection_test.moc"
