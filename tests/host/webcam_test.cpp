#include "tests/host/support/served_session.h"

#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr QSize Canvas{1920, 1080};
// So small that the margins shrink, and so odd beside the frame that they are fractions.
constexpr QSize SmallCanvas{502, 282};

struct Placement {
    WebcamFrame frame;
    QPointF position;
    QSizeF bounds;
};

const QList<Placement> &onTheCanvas()
{
    static const QList<Placement> placements{
        {{u"nothing said"_s, u""_s, 0, 0}, {1420, 790}, {480, 270}},
        {{u"negative size"_s, u""_s, -5, -5}, {1420, 790}, {480, 270}},
        {{u"centre"_s, u"center"_s, 640, 360}, {640, 360}, {640, 360}},
        {{u"centre at half pixels"_s, u"center"_s, 481, 271}, {719.5, 404.5}, {481, 271}},
        {{u"top right"_s, u"top_right"_s, 640, 360}, {1260, 20}, {640, 360}},
        {{u"bottom right"_s, u"bottom_right"_s, 640, 360}, {1260, 700}, {640, 360}},
        {{u"bottom left"_s, u"bottom_left"_s, 640, 360}, {20, 700}, {640, 360}},
        {{u"unknown place is top left"_s, u"top_left"_s, 640, 360}, {20, 20}, {640, 360}},
        {{u"other case is unknown"_s, u"Center"_s, 640, 360}, {20, 20}, {640, 360}},
        {{u"zero width alone"_s, u"bottom_left"_s, 0, 100}, {20, 960}, {480, 100}},
        {{u"one pixel"_s, u"top_right"_s, 1, 1}, {1899, 20}, {1, 1}},
        {{u"canvas size, top right"_s, u"top_right"_s, 1920, 1080}, {0, 0}, {1920, 1080}},
        {{u"canvas size, centre"_s, u"center"_s, 1920, 1080}, {0, 0}, {1920, 1080}},
        {{u"canvas size, bottom left"_s, u"bottom_left"_s, 1920, 1080}, {0, 0}, {1920, 1080}},
        {{u"canvas size, nothing said"_s, u""_s, 1920, 1080}, {0, 0}, {1920, 1080}},
        {{u"over the canvas"_s, u"bottom_right"_s, 4000, 3000}, {0, 0}, {1920, 1080}},
        {{u"over the width alone"_s, u"top_right"_s, 4000, 270}, {0, 20}, {1920, 270}},
        {{u"less than a margin from the edge"_s, u"bottom_right"_s, 1910, 1070}, {5, 5}, {1910, 1070}},
    };
    return placements;
}

const QList<Placement> &onTheSmallCanvas()
{
    static const QList<Placement> placements{
        {{u"small: nothing said"_s, u""_s, 0, 0}, {11, 6}, {480, 270}},
        {{u"small: half pixels"_s, u"bottom_right"_s, 481, 271}, {10.5, 5.5}, {481, 271}},
        {{u"small: wider margin on one side"_s, u"bottom_left"_s, 200, 271}, {20, 5.5}, {200, 271}},
    };
    return placements;
}

} // namespace

/// Where webcam frames of every size and position land, to the last number.
class WebcamTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void places_data();
    void places();
    void cleanupTestCase();

private:
    bool ensureSession(QSize canvas, QString *problem);

    std::unique_ptr<ServedSession> served_;
    QSize canvas_;
};

bool WebcamTest::ensureSession(QSize canvas, QString *problem)
{
    if (served_ && canvas_ == canvas)
        return true;
    served_.reset();
    canvas_ = canvas;
    QList<WebcamFrame> frames;
    for (const Placement &placement : onTheCanvas() + onTheSmallCanvas())
        frames.append(placement.frame);
    served_ =
        ServedSession::start({.host = {.canvas = canvas}, .frames = frames, .account = u"demo"_s}, problem);
    return served_ && (served_->state().canvas() == canvas);
}

void WebcamTest::places_data()
{
    QTest::addColumn<Placement>("placement");
    QTest::addColumn<QSize>("canvas");
    for (const Placement &placement : onTheCanvas())
        QTest::newRow(qPrintable(placement.frame.name)) << placement << Canvas;
    for (const Placement &placement : onTheSmallCanvas())
        QTest::newRow(qPrintable(placement.frame.name)) << placement << SmallCanvas;
}

void WebcamTest::places()
{
    QFETCH(const Placement, placement);
    QFETCH(const QSize, canvas);
    QString problem;
    QVERIFY2(ensureSession(canvas, &problem), qPrintable(problem));
    QuillmarPanel &panel = served_->panel();
    QVERIFY2(panel.run({u"Host webcam"_s, placement.frame.name}), qPrintable(panel.problem()));

    const ObsState state = served_->state();
    const std::optional<ObsItem> item = state.topItem(state.currentScene());
    QVERIFY(item);
    QCOMPARE(item->source, QString(u"Quillmar - "_s + placement.frame.name));
    QCOMPARE(item->position, placement.position);
    QCOMPARE(item->bounds, placement.bounds);
    QCOMPARE(item->boundsType, BoundsScaleInner);
    QCOMPARE(item->boundsAlignment, AlignCentre);
    QCOMPARE(item->alignment, AlignLeftTop);
    QCOMPARE(item->scale, QPointF(1, 1));
    QCOMPARE(item->rotation, 0.0);
    QVERIFY(!item->cropToBounds);
}

void WebcamTest::cleanupTestCase()
{
    QVERIFY(served_);
    QCOMPARE(served_->session().quit().code, 0);
}

} // namespace quillmar::test

Q_DECLARE_METATYPE(quillmar::test::Placement)

QTEST_GUILESS_MAIN(quillmar::test::WebcamTest)
#include "webcam_test.moc"
