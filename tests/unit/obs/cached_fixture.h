#pragma once

#include "tests/unit/obs/actions_fixture.h"
#include "tests/unit/obs/front_end.h"

#include <QCoreApplication>

namespace quillmar::test
{

/// The fixture with its package in the cache and the widget made.
struct CachedFixture : ActionsFixture {
    explicit CachedFixture(bool withFrontEnd = false)
    {
        if (withFrontEnd) {
            window = std::make_unique<FrontEnd>(obs);
            window->show();
        }
        storePackage();
        makeActions();
    }

    /// Nothing of OBS is held, and nothing was put into it.
    bool isObsUntouched() const
    {
        return obs.calls().isEmpty() && obs.misuse().isEmpty() &&
               obs.outstanding() == LibobsFake::Outstanding();
    }

    /// Lets running file work end, and then everything that is queued.
    void drain()
    {
        downloads.reset();
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }

    std::unique_ptr<FrontEnd> window;
};

} // namespace quillmar::test
