#include "demo/tour/tour.h"

#include "demo/tour/expected_state.h"
#include "demo/tour/readability.h"
#include "demo/tour/state_table.h"
#include "demo/tour/stinger_stop.h"
#include "tests/support/processes/waiting.h"

#include <QFile>
#include <QTextStream>

namespace quillmar::demo
{

using namespace Qt::StringLiterals;

namespace
{

constexpr std::chrono::milliseconds LayoutDeadline = std::chrono::seconds(3);

/// What the demo account may download a day.
constexpr int DailyDownloads = 25;

void say(const QString &line)
{
    QTextStream(stdout) << line << Qt::endl;
}

} // namespace

bool Tour::run()
{
    return open() && visitSignIn() && comeBack() && browse() && lookAtDetails() && saveFile() &&
           addComponents() && readQuota() && readState() && addStinger() && showNewScene() && leave();
}

bool Tour::open()
{
    QString problem;
    service_ = test::ServiceProcess::start(catalogue_, 0, &problem);
    if (!service_)
        return fail(problem);
    say(u"The demo service answers."_s);
    session_ = test::HostSession::start({}, &problem);
    if (!session_)
        return fail(problem);
    firstScene_ = session_->state().currentScene();
    say(u"OBS Studio runs with the module; its dock is open."_s);
    if (!session_->panel().waitForBanner())
        return failPanel();
    say(u"The panel tells that a newer version is there."_s);
    return true;
}

bool Tour::visitSignIn()
{
    test::QuillmarPanel &panel = session_->panel();
    if (!photographIn(u"fa-IR"_s, u"sign-in"_s) || !panel.setLanguage(u"en-US"_s) ||
        !photographIn(u"en-US"_s, u"sign-in"_s))
        return failPanel();
    if (!panel.enter(u"demo"_s, u"demo"_s))
        return failPanel();
    say(u"Signed in as “demo”; %1 products are listed."_s.arg(panel.visibleProducts().size()));
    return true;
}

bool Tour::comeBack()
{
    const test::ObsExit exit = session_->quit();
    QString problem;
    if (!exit.inTime || exit.crashed || exit.code != 0 || !session_->startObs(&problem))
        return fail(u"OBS did not end and start again in order. "_s + problem);
    test::QuillmarPanel &panel = session_->panel();
    panel.assumeLanguage(u"en-US"_s);
    if (!panel.waitForHome() || !panel.waitForBanner() ||
        !panel.waitForDailyQuota(DailyDownloads, DailyDownloads) || !photograph(u"signed-in-again"_s))
        return failPanel();
    say(u"OBS was closed and started again: signed in as before, without typing."_s);
    firstScene_ = session_->state().currentScene();
    return true;
}

bool Tour::browse()
{
    test::QuillmarPanel &panel = session_->panel();
    const QString product = expectedInsertions().first().product;
    if (!photograph(u"products"_s) || !panel.search(u"camera"_s) || !photograph(u"search"_s))
        return failPanel();
    say(u"A search for “camera” finds: "_s + panel.visibleProducts().join(", "_L1));
    if (!panel.search({}) || !panel.openComponents(product) || !photograph(u"components"_s))
        return failPanel();
    return true;
}

bool Tour::lookAtDetails()
{
    test::QuillmarPanel &panel = session_->panel();
    test::ProductDialog dialog(panel, u"Eight Turns"_s);
    if (!panel.search(u"eight"_s) || !dialog.open() || !dialog.waitForPicture(u" · 1/8 · "_s) ||
        !photograph(u"details"_s))
        return failPanel();
    for (const QString &place : {u" · 2/8 · "_s, u" · 3/8 · "_s}) {
        if (!dialog.pressUntil(u"Gallery.Next"_s, place))
            return failPanel();
    }
    if (!photograph(u"gallery"_s) || !enlarge(dialog))
        return failPanel();
    say(u"The details of “Eight Turns” were opened, its gallery stepped through, a picture enlarged."_s);
    return panel.search({}) || failPanel();
}

/// The enlarged view covers the language selector, so it is opened in each language anew.
bool Tour::enlarge(test::ProductDialog &dialog)
{
    test::QuillmarPanel &panel = session_->panel();
    test::RobotHand hand(session_->desktop());
    for (const QString &language : {u"en-US"_s, u"fa-IR"_s}) {
        if (!panel.setLanguage(language) || !dialog.press(u"Gallery.Enlarge"_s) ||
            !dialog.waitForWindows(2) || !photographIn(language, u"enlarged"_s) || !hand.press(u"Escape"_s) ||
            !dialog.waitForWindows(1))
            return false;
    }
    return panel.setLanguage(u"en-US"_s) && dialog.press(u"Gallery.Previous"_s) && hand.press(u"Escape"_s) &&
           dialog.waitForWindows(0);
}

bool Tour::saveFile()
{
    test::QuillmarPanel &panel = session_->panel();
    test::ProductDialog card(panel, u"Eight Turns"_s);
    if (!panel.search(u"eight"_s) || !card.save() || !card.showStatus() || !photograph(u"saved-file"_s) ||
        !panel.search({}))
        return failPanel();
    const QString file = session_->home().packageRoot() + u"/Eight Turns.png"_s;
    say(u"“Eight Turns” was saved as a file."_s);
    return QFile::exists(file) || fail(u"there is no file "_s + file);
}

bool Tour::addComponents()
{
    test::QuillmarPanel &panel = session_->panel();
    for (const ExpectedInsertion &insertion : expectedInsertions()) {
        const test::ComponentButton button{insertion.product, insertion.component};
        if (!panel.run(button))
            return failPanel();
        say(u"Added “%1” of “%2”."_s.arg(insertion.component, insertion.product));
        const bool isClip = insertion.sourceId == "ffmpeg_source"_L1;
        if (!photograph(u"added-"_s + (isClip ? u"clip"_s : insertion.mode), button))
            return failPanel();
    }
    return true;
}

bool Tour::readQuota()
{
    const int left = DailyDownloads - downloads();
    if (!session_->panel().waitForDailyQuota(left, DailyDownloads))
        return failPanel();
    say(u"The service let %1 downloads through; the panel shows %2 of %3 left."_s.arg(downloads())
            .arg(left)
            .arg(DailyDownloads));
    return true;
}

bool Tour::readState()
{
    const StateTable table = StateTable::read(session_->state(), firstScene_);
    say(u'\n' + table.text());
    return table.differences.isEmpty() || fail(table.differences.join(u'\n'));
}

bool Tour::addStinger()
{
    StingerStop stop(
        *session_,
        [this](const QString &name, const test::ComponentButton &outcome) {
            return photograph(name, outcome);
        },
        [this](const QString &language, const QString &name, const QString &file) {
            const QString picture = pictureName(language, name);
            ++pictures_;
            return QFile::copy(file, output_.filePath(picture));
        });
    if (!stop.visit())
        return fail(stop.problem());
    say(stop.report());
    return true;
}

bool Tour::showNewScene()
{
    for (const ExpectedInsertion &insertion : expectedInsertions()) {
        if (insertion.newScene.isEmpty())
            continue;
        if (!session_->state().setCurrentScene(insertion.newScene) || !photograph(u"new-scene"_s))
            return fail(u"the new scene cannot be shown"_s);
    }
    return true;
}

bool Tour::leave()
{
    const test::ObsExit exit = session_->quit();
    if (!exit.inTime || exit.crashed || exit.code != 0)
        return fail(u"OBS did not end in order"_s);
    say(u"OBS ended in order; memory leaks by its own count: %1."_s.arg(exit.log.leaks));
    say(u"%1 screenshots: %2"_s.arg(pictures_).arg(output_.absolutePath()));
    return cutTexts_.isEmpty() || fail(u"Texts that are cut off:\n"_s + cutTexts_.join(u'\n'));
}

bool Tour::photograph(const QString &name, const std::optional<test::ComponentButton> &outcome)
{
    test::QuillmarPanel &panel = session_->panel();
    for (const QString &language : {u"en-US"_s, u"fa-IR"_s}) {
        if (!panel.setLanguage(language) || (outcome && !panel.showOutcome(*outcome)) ||
            !photographIn(language, name))
            return false;
    }
    return panel.setLanguage(u"en-US"_s);
}

bool Tour::photographIn(const QString &language, const QString &name)
{
    const QString picture = pictureName(language, name);
    waitForLayout(picture);
    if (!waitForPreview())
        return false;
    ++pictures_;
    return session_->takeScreenshot(output_.filePath(picture));
}

QString Tour::pictureName(const QString &language, const QString &name) const
{
    const QString number = u"%1"_s.arg(pictures_ / 2 + 1, 2, 10, '0'_L1);
    return number + u'-' + name + u'-' + language + u".png"_s;
}

/// What was just added is in OBS's picture, and a fade between scenes is over, only some frames later.
bool Tour::waitForPreview()
{
    constexpr int settlingFrames = 20;
    const qint64 wanted = session_->state().renderedFrames() + settlingFrames;
    return test::waitUntil([&] { return session_->state().renderedFrames() >= wanted; });
}

void Tour::waitForLayout(const QString &picture)
{
    QStringList cut;
    test::waitUntil(
        [&] {
            cut = cutTexts(session_->panel().robot().tree());
            return cut.isEmpty();
        },
        LayoutDeadline);
    for (const QString &text : std::as_const(cut))
        cutTexts_.append(picture + u": "_s + text);
}

bool Tour::fail(const QString &problem)
{
    QTextStream(stderr) << "quillmar-demo-tour: " << problem << Qt::endl;
    return false;
}

} // namespace quillmar::demo
