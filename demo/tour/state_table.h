#pragma once

#include "tests/host/support/obs_state.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace quillmar::demo
{

/// Reads back what the running OBS holds of the expected insertions.
struct StateTable {
    /// One row per insertion: component, mode, source type, name, scene, position, size, verdict.
    QList<QStringList> rows;
    /// One sentence per difference; empty when everything is as it should be.
    QStringList differences;

    /// `firstScene` is the scene that was current when the tour began, and must be so still.
    static StateTable read(const test::ObsState &state, const QString &firstScene);

    /// The rows below a header, in columns.
    QString text() const;
};

} // namespace quillmar::demo
