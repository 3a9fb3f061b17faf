#include "tests/host/support/host_catalogue.h"

#include "tests/host/support/asset_tools.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonDocument>
#include <QRandomGenerator>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype NoiseBytes = 48 * 1024 * 1024;
constexpr quint32 NoiseSeed = 20;

bool drawPicture(const QString &path, QSize size, const char *format)
{
    QImage picture(size, QImage::Format_ARGB32);
    picture.fill(QColor(0x55, 0xff, 0x22, 0x80));
    return picture.save(path, format);
}

// Does not compress, so that the package stays large; the same in every run.
bool writeNoise(const QString &path)
{
    QByteArray noise(NoiseBytes, Qt::Uninitialized);
    QRandomGenerator generator(NoiseSeed);
    generator.fillRange(reinterpret_cast<quint32 *>(noise.data()), noise.size() / qsizetype(sizeof(quint32)));
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(noise) == noise.size() && file.flush();
}

QString digestOf(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return {};
    return QString::fromLatin1(hash.result().toHex());
}

QJsonObject component(const QString &name, const QString &asset, const QString &mode, const QString &source)
{
    return {{u"component_key"_s, QString(asset + mode)},
            {u"component_name"_s, name},
            {u"component_type"_s, source},
            {u"asset_path"_s, asset},
            {u"asset_kind"_s, asset.endsWith(u'/') ? u"folder"_s : u"file"_s},
            {u"insert_mode"_s, mode},
            {u"source_type"_s, source},
            {u"auto_insert_enabled"_s, true}};
}

QJsonObject looping(QJsonObject object)
{
    object[u"media_loop"_s] = true;
    return object;
}

QJsonArray pictureComponents()
{
    QJsonObject silent = component(u"Not for adding"_s, u"art/plain.png"_s, u"overlay"_s, u"image"_s);
    silent[u"auto_insert_enabled"_s] = false;
    return {component(u"Plain"_s, u"art/plain.png"_s, u"overlay"_s, u"image"_s),
            component(u"Capital"_s, u"art/CAPITAL.PNG"_s, u"overlay"_s, u"image"_s),
            component(u"  "_s, u"art/blank.png"_s, u"overlay"_s, u"image"_s),
            component(u" Leading"_s, u"art/leading.png"_s, u"overlay"_s, u"image"_s),
            component(u"قاب فارسی"_s, u"art/قاب.png"_s, u"overlay"_s, u"image"_s),
            component(u"Picture scene"_s, u"art/plain.png"_s, u"fullscreen_scene"_s, u"image"_s),
            looping(component(u"Clip"_s, u"clips/clip.webm"_s, u"overlay"_s, u"media"_s)),
            component(u"Clip scene"_s, u"clips/clip.webm"_s, u"fullscreen_scene"_s, u"media"_s),
            component(u"Animation"_s, u"art/animation.gif"_s, u"overlay"_s, u"image"_s),
            silent,
            component(u"Folder"_s, u"art/"_s, u"overlay"_s, u"image"_s)};
}

QJsonArray webcamComponents(const QList<WebcamFrame> &frames)
{
    QJsonArray list;
    for (const WebcamFrame &frame : frames) {
        QJsonObject object = component(frame.name, u"art/plain.png"_s, u"webcam_frame"_s, u"image"_s);
        object[u"position"_s] = frame.position;
        object[u"width"_s] = frame.width;
        object[u"height"_s] = frame.height;
        list.append(object);
    }
    return list;
}

} // namespace

HostCatalogue::HostCatalogue(const QList<WebcamFrame> &frames, const QList<StageComponent> &stage)
{
    const QString picture = u"art/plain.png"_s;
    const QJsonArray pair{component(u"First"_s, u"art/plain.png"_s, u"overlay"_s, u"image"_s),
                          component(u"Second"_s, u"art/leading.png"_s, u"overlay"_s, u"image"_s)};
    valid_ =
        directory_.isValid() && drawAssets() &&
        addProduct(u"host-pair"_s, u"Host pair"_s, pair, {u"art"_s, u"noise.bin"_s}) &&
        addProduct(u"host-pictures"_s, u"Host pictures"_s, pictureComponents(), {u"art"_s, u"clips"_s}) &&
        addProduct(u"host-wrong-digest"_s, u"Host wrong digest"_s, {pair.first()}, {picture}) &&
        addProduct(u"host-webcam"_s, u"Host webcam"_s, webcamComponents(frames), {picture}) && addSingle() &&
        (stage.isEmpty() || addStage(stage)) && writeProducts();
}

bool HostCatalogue::drawAssets() const
{
    QDir folder(path());
    return folder.mkpath(u"art"_s) && folder.mkpath(u"clips"_s) && folder.mkpath(u"previews"_s) &&
           drawPicture(folder.filePath(u"art/plain.png"_s), {320, 180}, "PNG") &&
           drawPicture(folder.filePath(u"art/CAPITAL.PNG"_s), {320, 180}, "PNG") &&
           drawPicture(folder.filePath(u"art/blank.png"_s), {64, 64}, "PNG") &&
           drawPicture(folder.filePath(u"art/leading.png"_s), {64, 64}, "PNG") &&
           drawPicture(folder.filePath(u"art/قاب.png"_s), {64, 64}, "PNG") &&
           drawPicture(folder.filePath(u"art/animation.gif.png"_s), {8, 8}, "PNG") &&
           folder.rename(u"art/animation.gif.png"_s, u"art/animation.gif"_s) &&
           runTool(path(), u"ffmpeg"_s,
                   {u"-f"_s, u"lavfi"_s, u"-i"_s, u"testsrc=size=64x64:rate=10"_s, u"-t"_s, u"1"_s, u"-c:v"_s,
                    u"libvpx"_s, u"clips/clip.webm"_s}) &&
           writeNoise(folder.filePath(u"noise.bin"_s));
}

bool HostCatalogue::addStage(const QList<StageComponent> &components)
{
    return makeStageAssets(path()) &&
           addProduct(u"host-stage"_s, u"Host stage"_s, stageComponents(components), {u"stage"_s});
}

bool HostCatalogue::addProduct(const QString &key, const QString &name, const QJsonArray &components,
                               const QStringList &files)
{
    const QString package = path() + u"/packages/"_s + key + u'/' + key + u".zip"_s;
    if (!QDir().mkpath(QFileInfo(package).path()) ||
        !runTool(path(), u"zip"_s, QStringList{u"-q"_s, u"-r"_s, u"-n"_s, u".bin"_s, package} + files))
        return false;
    const bool lies = key == "host-wrong-digest"_L1;
    products_.append(QJsonObject{{u"product_key"_s, key},
                                 {u"product_name"_s, name},
                                 {u"product_version"_s, u"1.0"_s},
                                 {u"description"_s, QString(u"Made for the test of "_s + key)},
                                 {u"category"_s, key == "host-webcam"_L1 ? u"Frames"_s : u"Pictures"_s},
                                 {u"file_name"_s, QString(key + u".zip"_s)},
                                 {u"file_mime"_s, u"application/zip"_s},
                                 {u"file_size"_s, QFileInfo(package).size()},
                                 {u"sha256"_s, lies ? QString(64, u'0') : digestOf(package)},
                                 {u"components"_s, components}});
    return true;
}

bool HostCatalogue::addSingle()
{
    const QString file = u"Host single.png"_s;
    const QString folder = path() + u"/packages/host-single"_s;
    if (!QDir().mkpath(folder) || !drawPicture(folder + u'/' + file, {640, 360}, "PNG"))
        return false;
    QJsonArray gallery;
    for (int number = 1; number <= 3; ++number) {
        const QString preview = u"single-%1.png"_s.arg(number);
        if (!drawPicture(path() + u"/previews/"_s + preview, {400 * number, 300}, "PNG"))
            return false;
        gallery.append(
            QJsonObject{{u"url"_s, QString(u"https://" QUILLMAR_SERVICE_HOST "/previews/"_s + preview)},
                        {u"label"_s, u"View %1"_s.arg(number)}});
    }
    products_.append(QJsonObject{{u"product_key"_s, u"host-single"_s},
                                 {u"product_name"_s, u"Host single"_s},
                                 {u"product_version"_s, u"2.0"_s},
                                 {u"description"_s, u"Made for the test of one file"_s},
                                 {u"category"_s, u"Pictures"_s},
                                 {u"file_name"_s, file},
                                 {u"file_mime"_s, u"image/png"_s},
                                 {u"file_size"_s, QFileInfo(folder + u'/' + file).size()},
                                 {u"preview_gallery"_s, gallery}});
    return true;
}

bool HostCatalogue::writeProducts() const
{
    QFile file(path() + u"/products.json"_s);
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(products_).toJson()) > 0 &&
           file.flush();
}

} // namespace quillmar::test
