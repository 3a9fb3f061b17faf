#include "obs/libobs.h"

#include "tests/host/driver/picture_report.h"

#include <QImage>

#include <memory>

namespace quillmar::test
{

namespace
{

struct GraphicsContext {
    GraphicsContext() { obs_enter_graphics(); }
    ~GraphicsContext() { obs_leave_graphics(); }
    Q_DISABLE_COPY_MOVE(GraphicsContext)
};

using Target = std::unique_ptr<gs_texrender_t, decltype(&gs_texrender_destroy)>;
using Stage = std::unique_ptr<gs_stagesurf_t, decltype(&gs_stagesurface_destroy)>;

bool renderProgram(gs_texrender_t *target, QSize size)
{
    obs_video_info video{};
    if (!obs_get_video_info(&video) || !gs_texrender_begin(target, static_cast<uint32_t>(size.width()),
                                                           static_cast<uint32_t>(size.height())))
        return false;
    vec4 black{};
    gs_clear(GS_CLEAR_COLOR, &black, 0.0F, 0);
    gs_ortho(0.0F, static_cast<float>(video.base_width), 0.0F, static_cast<float>(video.base_height), -100.0F,
             100.0F);
    gs_blend_state_push();
    gs_blend_function(GS_BLEND_ONE, GS_BLEND_ZERO);
    obs_render_main_texture();
    gs_blend_state_pop();
    gs_texrender_end(target);
    return true;
}

QImage readBack(gs_texture_t *texture, QSize size)
{
    const Stage stage(gs_stagesurface_create(static_cast<uint32_t>(size.width()),
                                             static_cast<uint32_t>(size.height()), GS_BGRA),
                      gs_stagesurface_destroy);
    gs_stage_texture(stage.get(), texture);
    uint8_t *data = nullptr;
    uint32_t lineSize = 0;
    if (!gs_stagesurface_map(stage.get(), &data, &lineSize))
        return {};
    QImage picture = QImage(data, size.width(), size.height(), lineSize, QImage::Format_RGB32).copy();
    gs_stagesurface_unmap(stage.get());
    return picture;
}

QImage programPicture(QSize size)
{
    const GraphicsContext context;
    const Target target(gs_texrender_create(GS_BGRA, GS_ZS_NONE), gs_texrender_destroy);
    return renderProgram(target.get(), size) ? readBack(gs_texrender_get_texture(target.get()), size)
                                             : QImage();
}

} // namespace

QJsonValue writeProgramPicture(const QString &file, QSize size)
{
    const QImage picture = programPicture(size);
    return !picture.isNull() && picture.save(file, "PNG", 90);
}

} // namespace quillmar::test
