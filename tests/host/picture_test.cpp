#include "tests/host/support/obs_picture.h"
#include "tests/host/support/obs_stage.h"
#include "tests/host/support/served_session.h"

#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr QSize Canvas{1280, 720};
constexpr QSize Small{160, 90};
const QString Product = QStringLiteral("Host stage");

} // namespace

/// What the viewers see after a click on "Add to OBS": the picture that OBS renders, pixel by pixel.
class PictureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void emptySceneIsBlack();
    void overlayKeepsItsShapeInTheMiddle();
    void webcamFrameLiesInItsCorner();
    void clipPlaysAndBeginsAgain();
    void clipThatDoesNotLoopEnds();
    void newSceneIsShownWhenItIsChosen();
    void stingerCoversTheSwitchOfScenes();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    ObsState state() { return served_->state(); }
    ObsStage stage() { return ObsStage(served_->session().driver()); }
    ObsPicture picture(QSize size = Canvas) { return ObsPicture::take(served_->session().driver(), size); }
    QString centre() { return picture(Small).atCentre(); }
    bool enterEmptyScene(const QString &name);
    bool seeInOrder(const QStringList &colours);

    std::unique_ptr<ServedSession> served_;
};

void PictureTest::initTestCase()
{
    const QList<StageComponent> components{
        {.name = u"Square"_s, .asset = stage::Red, .mode = stage::Overlay},
        {.name = u"Frame"_s, .asset = stage::Frame, .mode = stage::Webcam, .size = {320, 180}},
        {.name = u"Loop"_s, .asset = stage::Flip, .mode = stage::Overlay, .looping = true},
        {.name = u"Once"_s, .asset = stage::Flip, .mode = stage::Overlay},
        {.name = u"Intro"_s, .asset = stage::Flip, .mode = stage::NewScene, .looping = true},
        {.name = u"Curtain"_s, .asset = stage::Curtain, .mode = stage::Stinger, .transitionPoint = 1500}};
    QString problem;
    served_ = ServedSession::start({.host = {.canvas = Canvas}, .stage = components, .account = u"demo"_s},
                                   &problem);
    QVERIFY2(served_, qPrintable(problem));
    QVERIFY2(panel().search(Product), qPrintable(panel().problem()));
    QVERIFY(stage().setTransition(u"Cut"_s, 50));
}

bool PictureTest::enterEmptyScene(const QString &name)
{
    return state().createScene(name) && state().setCurrentScene(name) &&
           QTest::qWaitFor([this] { return centre() == "black"_L1; });
}

/// The middle of the picture takes these colours one after the other, with nothing else in between.
bool PictureTest::seeInOrder(const QStringList &colours)
{
    QStringList seen;
    const auto look = [&] {
        const QString now = centre();
        if (seen.isEmpty() ? now == colours.first() : now != seen.last())
            seen.append(now);
        return seen.size() >= colours.size();
    };
    const bool complete = QTest::qWaitFor(look, 10000) && seen.first(colours.size()) == colours;
    if (!complete)
        qWarning("seen: %s", qPrintable(seen.join(", "_L1)));
    return complete;
}

void PictureTest::emptySceneIsBlack()
{
    QTRY_VERIFY_WITH_TIMEOUT(!picture().isNull(), 20000);
    QCOMPARE(picture().atCentre(), u"black"_s);
}

// 400 x 400 inside 1280 x 720: 720 x 720 in the middle, from 280 to 1000.
void PictureTest::overlayKeepsItsShapeInTheMiddle()
{
    QVERIFY2(panel().run({Product, u"Square"_s}), qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(centre(), u"red"_s, 20000);
    const ObsPicture shown = picture();
    for (const QPoint point : {QPoint(283, 3), QPoint(996, 3), QPoint(283, 716), QPoint(996, 716)})
        QCOMPARE(shown.at(point.x(), point.y()), u"red"_s);
    for (const QPoint point : {QPoint(276, 3), QPoint(1003, 3), QPoint(276, 716), QPoint(1003, 716)})
        QCOMPARE(shown.at(point.x(), point.y()), u"black"_s);
}

// 320 x 180 in the bottom right corner with 20 pixels around: from (940, 520) to (1260, 700), border 20 wide.
void PictureTest::webcamFrameLiesInItsCorner()
{
    QVERIFY2(panel().run({Product, u"Frame"_s}), qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(picture().at(950, 530), u"blue"_s, 20000);
    const ObsPicture shown = picture();
    for (const QPoint point :
         {QPoint(943, 523), QPoint(1256, 523), QPoint(943, 696), QPoint(1256, 696), QPoint(1100, 530)})
        QCOMPARE(shown.at(point.x(), point.y()), u"blue"_s);
    for (const QPoint point : {QPoint(1263, 610), QPoint(1100, 704), QPoint(1256, 516), QPoint(1100, 610)})
        QCOMPARE(shown.at(point.x(), point.y()), u"black"_s);
    for (const QPoint point : {QPoint(936, 610), QPoint(980, 516), QPoint(980, 610)})
        QCOMPARE(shown.at(point.x(), point.y()), u"red"_s);
}

void PictureTest::clipPlaysAndBeginsAgain()
{
    QVERIFY(enterEmptyScene(u"For the loop"_s));
    QVERIFY2(panel().run({Product, u"Loop"_s}), qPrintable(panel().problem()));
    QVERIFY(seeInOrder({u"green"_s, u"yellow"_s, u"green"_s, u"yellow"_s, u"green"_s}));
}

void PictureTest::clipThatDoesNotLoopEnds()
{
    QVERIFY(enterEmptyScene(u"For one run"_s));
    QVERIFY2(panel().press({Product, u"Once"_s}), qPrintable(panel().problem()));
    QVERIFY(seeInOrder({u"green"_s, u"yellow"_s, u"black"_s}));
    const qint64 later = state().renderedFrames() + 30;
    QTRY_VERIFY_WITH_TIMEOUT(state().renderedFrames() >= later, 20000);
    QCOMPARE(centre(), u"black"_s);
}

void PictureTest::newSceneIsShownWhenItIsChosen()
{
    QVERIFY(enterEmptyScene(u"Before the intro"_s));
    QVERIFY2(panel().run({Product, u"Intro"_s}), qPrintable(panel().problem()));
    QCOMPARE(centre(), u"black"_s);
    QVERIFY(state().setCurrentScene(u"Quillmar - Intro"_s));
    QVERIFY(seeInOrder({u"green"_s, u"yellow"_s, u"green"_s}));
}

void PictureTest::stingerCoversTheSwitchOfScenes()
{
    QVERIFY2(panel().run({Product, u"Curtain"_s}), qPrintable(panel().problem()));
    QVERIFY(enterEmptyScene(u"Behind the curtain"_s));
    QVERIFY(stage().setTransition(u"Quillmar - Curtain"_s, 300));
    QVERIFY(state().setCurrentScene(u"Scene"_s));
    QVERIFY(seeInOrder({u"black"_s, u"magenta"_s, u"red"_s}));
    QTRY_VERIFY_WITH_TIMEOUT(!stage().isInTransition(), 20000);
    QCOMPARE(state().currentScene(), u"Scene"_s);
    QCOMPARE(served_->session().quit().code, 0);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::PictureTest)
#include "picture_test.moc"
