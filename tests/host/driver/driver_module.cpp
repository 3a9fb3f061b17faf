#include "obs/libobs.h"

#include "tests/host/driver/driver_server.h"

#include <obs-module.h>

#include <memory>

OBS_DECLARE_MODULE()

namespace
{

std::unique_ptr<quillmar::test::DriverServer> server;

// Before this event the front end still builds its window; after the exit event its calls no longer answer.
void followFrontend(obs_frontend_event event, void *)
{
    if (event == OBS_FRONTEND_EVENT_FINISHED_LOADING)
        server = quillmar::test::DriverServer::listen(qEnvironmentVariable("QUILLMAR_DRIVER_SOCKET"));
    else if (event == OBS_FRONTEND_EVENT_EXIT)
        server.reset();
}

} // namespace

bool obs_module_load()
{
    obs_frontend_add_event_callback(followFrontend, nullptr);
    return true;
}

void obs_module_unload()
{
    server.reset();
}
