#include "demo/tour/stinger_stop.h"

#include "tests/host/support/obs_picture.h"
#include "tests/host/support/obs_stage.h"
#include "tests/support/processes/waiting.h"

#include <QFileInfo>
#include <QTemporaryDir>

namespace quillmar::demo
{

using namespace Qt::StringLiterals;

namespace
{

const QString Product = QStringLiteral("Pulse – Stinger Transitions");
const QString Component = QStringLiteral("Blades");
const QString Transition = QStringLiteral("Quillmar - Blades");
constexpr int PointMilliseconds = 600;
/// As long as OBS fades of itself; a stinger lasts as long as its clip.
constexpr int FadeMilliseconds = 300;

/// The clip lasts 1.2 seconds and covers the picture half way; OBS adds a quarter of a second to it.
constexpr double EarliestMiddle = 0.3;
constexpr double LatestMiddle = 0.5;
constexpr int Attempts = 40;
constexpr QSize Small{160, 90};

bool isAsExpected(const std::optional<test::ObsSource> &transition)
{
    return transition && transition->id == "obs_stinger_transition"_L1 &&
           QFileInfo(transition->settings["path"_L1].toString()).isFile() &&
           transition->settings["tp_type"_L1].toInt(-1) == 0 &&
           transition->settings["transition_point"_L1].toInt() == PointMilliseconds;
}

} // namespace

bool StingerStop::visit()
{
    const QString scene = session_.state().currentScene();
    const QString transition = session_.state().currentTransition();
    const test::ObsStage stage(session_.driver());
    if (!add())
        return false;
    if (session_.state().currentTransition() != transition)
        return fail(u"the current transition is another one now"_s);
    if (!stage.setTransition(Transition, FadeMilliseconds))
        return fail(u"OBS does not take the stinger as its transition"_s);
    for (const QString &language : {u"en-US"_s, u"fa-IR"_s}) {
        if (!showIn(language))
            return false;
    }
    return (session_.panel().setLanguage(u"en-US"_s) && stage.setTransition(transition, FadeMilliseconds) &&
            session_.state().setCurrentScene(scene)) ||
           fail(u"OBS does not go back to what it showed"_s);
}

QString StingerStop::report() const
{
    return u"“%1” is a transition of OBS, switches at %2 ms, and was seen in the middle."_s.arg(Transition)
        .arg(PointMilliseconds);
}

bool StingerStop::add()
{
    const test::ComponentButton button{Product, Component};
    if (!session_.panel().run(button) || !photograph_(u"added-stinger"_s, button))
        return fail(session_.panel().problem());
    return isAsExpected(session_.state().transition(Transition)) ||
           fail(u"OBS holds another stinger than expected"_s);
}

bool StingerStop::showIn(const QString &language)
{
    if (!session_.panel().setLanguage(language))
        return fail(session_.panel().problem());
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"stinger.png"_s);
    for (int attempt = 0; attempt < Attempts; ++attempt) {
        if (catchTheMiddle(otherScene(), file))
            return keep_(language, u"stinger"_s, file) || fail(u"the picture cannot be kept"_s);
    }
    return fail(u"the stinger was never seen in the middle"_s);
}

/// False when the moment was missed: a busy machine shows few pictures of so short a clip.
bool StingerStop::catchTheMiddle(const QString &scene, const QString &file)
{
    test::DriverClient &driver = session_.driver();
    const test::ObsStage stage(driver);
    const test::ObsPicture before = test::ObsPicture::take(driver, Small);
    if (scene.isEmpty() || !session_.state().setCurrentScene(scene))
        return false;
    double time = 0;
    test::waitUntil([&] {
        time = stage.transitionTime();
        return time > EarliestMiddle;
    });
    const test::ObsPicture middle =
        time < LatestMiddle ? test::ObsPicture::take(driver, Small) : test::ObsPicture();
    const bool caught = !middle.isNull() && session_.takeScreenshot(file);
    const bool ended = test::waitUntil([&] { return !stage.isInTransition(); });
    const test::ObsPicture after = test::ObsPicture::take(driver, Small);
    return caught && ended && middle.differsFrom(before) && middle.differsFrom(after);
}

QString StingerStop::otherScene() const
{
    const test::ObsState state = session_.state();
    const QStringList scenes = state.scenes();
    for (const QString &scene : scenes) {
        if (scene != state.currentScene())
            return scene;
    }
    return {};
}

bool StingerStop::fail(const QString &problem)
{
    problem_ = problem;
    return false;
}

} // namespace quillmar::demo
