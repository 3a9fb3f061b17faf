#pragma once

#include <QJsonArray>
#include <QList>
#include <QSize>
#include <QString>

namespace quillmar::test
{

/// One component of the product "Host stage", which a test makes up as it needs it.
struct StageComponent {
    QString name;
    /// One of the assets below.
    QString asset;
    QString mode;
    bool looping = false;
    QString position{};
    QSize size{};
    int transitionPoint = 0;
};

/// The assets of that product, in colours that can be told apart in OBS's picture.
namespace stage
{
/// 400 × 400, red all over.
inline const QString Red = QStringLiteral("stage/red.png");
/// 160 × 90, a blue border of 10 pixels around nothing.
inline const QString Frame = QStringLiteral("stage/frame.png");
/// Half a second of green, half a second of yellow.
inline const QString Flip = QStringLiteral("stage/flip.webm");
/// Three seconds of magenta.
inline const QString Curtain = QStringLiteral("stage/curtain.webm");

inline const QString Overlay = QStringLiteral("overlay");
inline const QString Webcam = QStringLiteral("webcam_frame");
inline const QString NewScene = QStringLiteral("fullscreen_scene");
inline const QString Stinger = QStringLiteral("stinger_transition");
} // namespace stage

/// Makes the assets below `folder`.
bool makeStageAssets(const QString &folder);

/// The components as the service tells of them.
QJsonArray stageComponents(const QList<StageComponent> &components);

} // namespace quillmar::test
