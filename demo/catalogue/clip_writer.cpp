#include "demo/catalogue/clip_writer.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

constexpr int kEncoderPatience = 60'000; // ms

QStringList vp9(bool transparent)
{
    return {u"-c:v"_s,      u"libvpx-vp9"_s, u"-pix_fmt"_s,      transparent ? u"yuva420p"_s : u"yuv420p"_s,
            u"-deadline"_s, u"realtime"_s,   u"-cpu-used"_s,     u"8"_s,
            u"-crf"_s,      u"30"_s,         u"-b:v"_s,          u"0"_s,
            u"-threads"_s,  u"1"_s,          u"-auto-alt-ref"_s, u"0"_s};
}

QStringList h264()
{
    return {u"-c:v"_s, u"libx264"_s, u"-pix_fmt"_s, u"yuv420p"_s, u"-preset"_s,   u"veryfast"_s,
            u"-crf"_s, u"22"_s,      u"-threads"_s, u"1"_s,       u"-movflags"_s, u"+faststart"_s};
}

QStringList arguments(const QString &path, const Clip &clip)
{
    const QString size = u"%1x%2"_s.arg(clip.size.width()).arg(clip.size.height());
    const QStringList input{
        u"-hide_banner"_s, u"-loglevel"_s, u"error"_s,      u"-y"_s,
        u"-f"_s,           u"rawvideo"_s,  u"-pix_fmt"_s,   u"rgba"_s,
        u"-s"_s,           size,           u"-framerate"_s, QString::number(clip.framesPerSecond),
        u"-i"_s,           u"-"_s};
    // Without these two the container carries the date and the encoder's build.
    const QStringList exact{u"-fflags"_s, u"+bitexact"_s, u"-flags:v"_s, u"+bitexact"_s};
    const QStringList codec = path.endsWith(".mp4"_L1) ? h264() : vp9(clip.transparent);
    return input + codec + exact + QStringList{path};
}

bool feed(QProcess &encoder, const QImage &frame)
{
    const QImage plain = frame.convertToFormat(QImage::Format_RGBA8888);
    const qint64 line = qint64(plain.width()) * 4;
    for (int y = 0; y < plain.height(); ++y)
        encoder.write(reinterpret_cast<const char *>(plain.constScanLine(y)), line);
    while (encoder.bytesToWrite() > 0) {
        if (!encoder.waitForBytesWritten(kEncoderPatience))
            return false;
    }
    return true;
}

} // namespace

QString writeClip(const QString &path, const Clip &clip)
{
    QProcess encoder;
    encoder.start(u"ffmpeg"_s, arguments(path, clip));
    if (!encoder.waitForStarted())
        return u"ffmpeg does not start: %1"_s.arg(encoder.errorString());
    for (int i = 0; i < clip.frames; ++i) {
        if (!feed(encoder, clip.drawFrame(qreal(i) / clip.frames)))
            break;
    }
    encoder.closeWriteChannel();
    encoder.waitForFinished(kEncoderPatience);
    if (encoder.exitStatus() == QProcess::NormalExit && encoder.exitCode() == 0)
        return {};
    return u"ffmpeg cannot write %1: %2"_s.arg(path, QString::fromLocal8Bit(encoder.readAllStandardError()));
}

} // namespace quillmar::demo
