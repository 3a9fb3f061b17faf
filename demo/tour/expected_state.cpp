#include "demo/tour/expected_state.h"

namespace quillmar::demo
{

using namespace Qt::StringLiterals;

namespace
{

constexpr QSizeF WholeCanvas{1920, 1080};

} // namespace

const QList<ExpectedInsertion> &expectedInsertions()
{
    static const QList<ExpectedInsertion> list{{.product = u"Neon Garden – Overlay Pack"_s,
                                                .component = u"Match overlay"_s,
                                                .mode = u"overlay"_s,
                                                .sourceId = u"image_source"_s,
                                                .source = u"Quillmar - Match overlay"_s,
                                                .newScene = {},
                                                .position = {0, 0},
                                                .bounds = WholeCanvas},
                                               {.product = u"Aurora – Webcam Frames"_s,
                                                .component = u"Round, bottom right"_s,
                                                .mode = u"webcam_frame"_s,
                                                .sourceId = u"image_source"_s,
                                                .source = u"Quillmar - Round, bottom right"_s,
                                                .newScene = {},
                                                .position = {1420, 790},
                                                .bounds = {480, 270}},
                                               {.product = u"Emerald – Full-screen Scenes"_s,
                                                .component = u"Starting soon"_s,
                                                .mode = u"fullscreen_scene"_s,
                                                .sourceId = u"image_source"_s,
                                                .source = u"Quillmar - Starting soon - Asset"_s,
                                                .newScene = u"Quillmar - Starting soon"_s,
                                                .position = {0, 0},
                                                .bounds = WholeCanvas},
                                               {.product = u"Living Light – Motion Set"_s,
                                                .component = u"Rising sparks"_s,
                                                .mode = u"overlay"_s,
                                                .sourceId = u"ffmpeg_source"_s,
                                                .source = u"Quillmar - Rising sparks"_s,
                                                .newScene = {},
                                                .position = {0, 0},
                                                .bounds = WholeCanvas}};
    return list;
}

} // namespace quillmar::demo
