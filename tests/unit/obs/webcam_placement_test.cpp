#include "obs/webcam_placement.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;
using namespace quillmar;

class WebcamPlacementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placement_data();
    void placement();
};

void WebcamPlacementTest::placement_data()
{
    QTest::addColumn<QSize>("wanted");
    QTest::addColumn<QString>("position");
    QTest::addColumn<QSizeF>("canvas");
    QTest::addColumn<QRectF>("place");
    const QSizeF fullHd{1920, 1080};
    const int huge = std::numeric_limits<int>::max();

    QTest::newRow("default size, empty position")
        << QSize(0, 0) << QString() << fullHd << QRectF(1420, 790, 480, 270);
    QTest::newRow("bottom right") << QSize(0, 0) << u"bottom_right"_s << fullHd
                                  << QRectF(1420, 790, 480, 270);
    QTest::newRow("top right") << QSize(0, 0) << u"top_right"_s << fullHd << QRectF(1420, 20, 480, 270);
    QTest::newRow("bottom left") << QSize(0, 0) << u"bottom_left"_s << fullHd << QRectF(20, 790, 480, 270);
    QTest::newRow("center") << QSize(0, 0) << u"center"_s << fullHd << QRectF(720, 405, 480, 270);
    QTest::newRow("a top left wish") << QSize(0, 0) << u"top_left"_s << fullHd << QRectF(20, 20, 480, 270);
    QTest::newRow("unknown word") << QSize(0, 0) << u"middle"_s << fullHd << QRectF(20, 20, 480, 270);
    QTest::newRow("other case") << QSize(0, 0) << u"Top_Right"_s << fullHd << QRectF(20, 20, 480, 270);
    QTest::newRow("blank word") << QSize(0, 0) << u" "_s << fullHd << QRectF(20, 20, 480, 270);

    QTest::newRow("own size") << QSize(640, 360) << QString() << fullHd << QRectF(1260, 700, 640, 360);
    QTest::newRow("one pixel") << QSize(1, 1) << u"bottom_right"_s << fullHd << QRectF(1899, 1059, 1, 1);
    QTest::newRow("width alone") << QSize(100, 0) << QString() << fullHd << QRectF(1800, 790, 100, 270);
    QTest::newRow("height alone") << QSize(0, 100) << QString() << fullHd << QRectF(1420, 960, 480, 100);
    QTest::newRow("negative size") << QSize(-1, -480) << QString() << fullHd << QRectF(1420, 790, 480, 270);
    QTest::newRow("least size there is")
        << QSize(std::numeric_limits<int>::min(), 0) << QString() << fullHd << QRectF(1420, 790, 480, 270);

    for (const QString &position :
         {u""_s, u"bottom_right"_s, u"top_right"_s, u"bottom_left"_s, u"center"_s, u"x"_s}) {
        QTest::addRow("as large as the canvas, '%s'", qPrintable(position))
            << QSize(1920, 1080) << position << fullHd << QRectF(0, 0, 1920, 1080);
        QTest::addRow("larger than the canvas, '%s'", qPrintable(position))
            << QSize(huge, huge) << position << fullHd << QRectF(0, 0, 1920, 1080);
    }
    QTest::newRow("wider than the canvas")
        << QSize(4000, 200) << QString() << fullHd << QRectF(0, 860, 1920, 200);
    QTest::newRow("taller than the canvas")
        << QSize(200, 4000) << u"top_right"_s << fullHd << QRectF(1700, 0, 200, 1080);
    QTest::newRow("less room than two margins, right")
        << QSize(1910, 1079) << QString() << fullHd << QRectF(5, 0.5, 1910, 1079);
    QTest::newRow("less room than two margins, left")
        << QSize(1910, 1079) << u"x"_s << fullHd << QRectF(5, 0.5, 1910, 1079);
    QTest::newRow("just two margins")
        << QSize(1880, 1040) << QString() << fullHd << QRectF(20, 20, 1880, 1040);
    QTest::newRow("odd room in the center")
        << QSize(481, 271) << u"center"_s << fullHd << QRectF(719.5, 404.5, 481, 271);

    QTest::newRow("upright canvas") << QSize(0, 0) << QString() << QSizeF(1080, 1920)
                                    << QRectF(580, 1630, 480, 270);
    QTest::newRow("canvas below the default size")
        << QSize(0, 0) << u"top_right"_s << QSizeF(320, 200) << QRectF(0, 0, 320, 200);
    QTest::newRow("canvas of one pixel") << QSize(0, 0) << QString() << QSizeF(1, 1) << QRectF(0, 0, 1, 1);
}

void WebcamPlacementTest::placement()
{
    QFETCH(const QSize, wanted);
    QFETCH(const QString, position);
    QFETCH(const QSizeF, canvas);
    QFETCH(const QRectF, place);

    QCOMPARE(placeWebcamFrame(wanted, position, canvas), place);
}

QTEST_GUILESS_MAIN(WebcamPlacementTest)
#include "webcam_placement_test.moc"
