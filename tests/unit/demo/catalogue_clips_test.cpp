#include "tests/unit/demo/catalogue_fixture.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillmar::test
{
namespace
{

/// Opacity of every pixel of one frame; empty when it cannot be decoded.
QByteArray opacityAt(const QString &clip, double seconds)
{
    QProcess decoder;
    decoder.start(u"ffmpeg"_s,
                  {u"-hide_banner"_s, u"-loglevel"_s, u"error"_s, u"-c:v"_s, u"libvpx-vp9"_s, u"-ss"_s,
                   QString::number(seconds), u"-i"_s, clip, u"-vf"_s, u"alphaextract"_s, u"-frames:v"_s,
                   u"1"_s, u"-f"_s, u"rawvideo"_s, u"-pix_fmt"_s, u"gray"_s, u"-"_s});
    decoder.waitForFinished();
    return decoder.readAllStandardOutput();
}

int brightest(const QByteArray &values)
{
    const auto less = [](char a, char b) { return uchar(a) < uchar(b); };
    return uchar(*std::max_element(values.begin(), values.end(), less));
}

int darkest(const QByteArray &values)
{
    const auto less = [](char a, char b) { return uchar(a) < uchar(b); };
    return uchar(*std::min_element(values.begin(), values.end(), less));
}

/// Lossy compression leaves a few pixels behind; this many of ten thousand are one too many to see.
bool isOpaque(const QByteArray &values)
{
    const auto clear =
        std::count_if(values.begin(), values.end(), [](char value) { return uchar(value) < 235; });
    return clear * 10'000 < values.size();
}

} // namespace

/// The clips of the demo are what their components call them.
class CatalogueClipsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stingersCoverTheMiddle();
    void overlaysStayTransparent();
};

void CatalogueClipsTest::stingersCoverTheMiddle()
{
    int stingers = 0;
    const QTemporaryDir root;
    for (const CatalogueProduct &product : readCatalogue()) {
        for (const ProductComponent &component : product.parsed.components) {
            if (component.insert_mode != "stinger_transition"_L1 || !isInsertable(component) ||
                component.transition_point_ms == 300)
                continue;
            const QString clip = takeOut(root.path(), product, component);
            const QByteArray first = opacityAt(clip, 0);
            const QByteArray middle = opacityAt(clip, component.transition_point_ms / 1000.0);
            QVERIFY2(!first.isEmpty() && !middle.isEmpty(), qPrintable(clip));
            QVERIFY2(brightest(first) < 16, "the old scene is still seen at the start");
            QVERIFY2(isOpaque(middle), "nothing is seen through it at the transition point");
            ++stingers;
        }
    }
    QVERIFY(stingers >= 2);
}

void CatalogueClipsTest::overlaysStayTransparent()
{
    int overlays = 0;
    const QTemporaryDir root;
    for (const CatalogueProduct &product : readCatalogue()) {
        for (const ProductComponent &component : product.parsed.components) {
            if (component.insert_mode != "overlay"_L1 || !component.asset_path.endsWith(".webm"_L1))
                continue;
            const QByteArray opacity = opacityAt(takeOut(root.path(), product, component), 0.9);
            QVERIFY2(!opacity.isEmpty(), qPrintable(component.component_key));
            QVERIFY(darkest(opacity) < 16);
            QVERIFY(brightest(opacity) > 200);
            ++overlays;
        }
    }
    QVERIFY(overlays >= 2);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::CatalogueClipsTest)
#include "catalogue_clips_test.moc"
