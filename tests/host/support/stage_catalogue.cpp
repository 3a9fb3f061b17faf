#include "tests/host/support/stage_catalogue.h"

#include "tests/host/support/asset_tools.h"

#include <QDir>
#include <QImage>
#include <QJsonObject>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

bool drawRed(const QString &path)
{
    QImage picture(400, 400, QImage::Format_RGB32);
    picture.fill(QColor(255, 0, 0));
    return picture.save(path, "PNG");
}

bool drawFrame(const QString &path)
{
    constexpr int border = 10;
    QImage picture(160, 90, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    const QRect inside = picture.rect().adjusted(border, border, -border, -border);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (!inside.contains(x, y))
                picture.setPixelColor(x, y, QColor(0, 0, 255));
        }
    }
    return picture.save(path, "PNG");
}

QStringList plainColour(const QString &colour, const QString &seconds)
{
    return {u"-f"_s, u"lavfi"_s, u"-i"_s, QString(u"color=c=" + colour + u":s=160x90:r=10:d="_s + seconds)};
}

bool makeClips(const QString &folder)
{
    const QStringList encoding{u"-c:v"_s, u"libvpx"_s, u"-g"_s, u"1"_s};
    const QStringList both{u"-filter_complex"_s, u"[0:v][1:v]concat=n=2:v=1"_s};
    return runTool(folder, u"ffmpeg"_s,
                   plainColour(u"0x00ff00"_s, u"0.5"_s) + plainColour(u"0xffff00"_s, u"0.5"_s) + both +
                       encoding + QStringList(stage::Flip)) &&
           runTool(folder, u"ffmpeg"_s,
                   plainColour(u"0xff00ff"_s, u"3"_s) + encoding + QStringList(stage::Curtain));
}

} // namespace

bool makeStageAssets(const QString &folder)
{
    const QDir directory(folder);
    return directory.mkpath(u"stage"_s) && drawRed(directory.filePath(stage::Red)) &&
           drawFrame(directory.filePath(stage::Frame)) && makeClips(folder);
}

QJsonArray stageComponents(const QList<StageComponent> &components)
{
    QJsonArray list;
    for (const StageComponent &component : components) {
        list.append(
            QJsonObject{{u"component_key"_s, u"stage-%1"_s.arg(list.size())},
                        {u"component_name"_s, component.name},
                        {u"component_type"_s, u"stage"_s},
                        {u"asset_path"_s, component.asset},
                        {u"asset_kind"_s, u"file"_s},
                        {u"insert_mode"_s, component.mode},
                        {u"source_type"_s, component.asset.endsWith(u".png"_s) ? u"image"_s : u"media"_s},
                        {u"auto_insert_enabled"_s, true},
                        {u"media_loop"_s, component.looping},
                        {u"position"_s, component.position},
                        {u"width"_s, component.size.width()},
                        {u"height"_s, component.size.height()},
                        {u"transition_point_ms"_s, component.transitionPoint}});
    }
    return list;
}

} // namespace quillmar::test
