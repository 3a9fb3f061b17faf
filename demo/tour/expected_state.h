#pragma once

#include <QList>
#include <QPointF>
#include <QSizeF>
#include <QString>

namespace quillmar::demo
{

/// What the tour adds to OBS, and what OBS must hold afterwards on its canvas of 1920 × 1080.
struct ExpectedInsertion {
    QString product;
    QString component;
    /// "overlay", "webcam_frame" or "fullscreen_scene", for the table.
    QString mode;
    QString sourceId;
    QString source;
    /// Empty: the scene that was current when the tour began.
    QString newScene;
    QPointF position;
    QSizeF bounds;
};

/// In the order in which the tour adds them.
const QList<ExpectedInsertion> &expectedInsertions();

} // namespace quillmar::demo
