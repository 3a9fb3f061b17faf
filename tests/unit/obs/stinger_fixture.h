#pragma once

#include "tests/unit/obs/front_end.h"
#include "tests/unit/obs/insertion_fixture.h"

namespace quillmar::test
{

inline const QString StingerId = QStringLiteral("obs_stinger_transition");

/// An OBS that can take a stinger, with a fade as its current transition.
struct StingerFixture : InsertionFixture {
    FrontEnd window{obs};
    obs_source_t *fade = obs.addTransition(QStringLiteral("محو"));
    QString path = file(QStringLiteral("دانلود.webm"));

    StingerFixture()
    {
        obs.setCurrentTransition(fade);
        window.show();
    }

    /// Nothing was made, nothing was changed, nothing is held.
    bool isUntouched() const
    {
        return obs.transitionNames() == QStringList(fade->name) && obs.currentTransition() == fade &&
               obs.calls().isEmpty() && isBalanced();
    }
};

inline ProductComponent stinger(const QString &name = QStringLiteral("X"))
{
    ProductComponent component =
        insertable(QStringLiteral("stinger_transition"), QStringLiteral("media"), name);
    component.transition_point_ms = 1234;
    return component;
}

} // namespace quillmar::test
