// Loaded into OBS before its own libraries. On X11 the graphics thread of OBS takes all events from the
// connection to the X server before it shows a picture in a window, and frees them unread. But that
// connection is Qt's, whose own thread waits for the same events: once in a few hundred times a click, a key
// or a change of the keyboard focus never arrives. Here the graphics thread finds none.

#include "tests/host/driver/event_keeper.h"

#include <atomic>
#include <dlfcn.h>
#include <string_view>

struct xcb_connection_t;
struct xcb_generic_event_t;

namespace
{

std::atomic<int> refusals = 0;

bool isInGraphics(const void *address)
{
    Dl_info place{};
    return dladdr(address, &place) != 0 && place.dli_fname &&
           std::string_view(place.dli_fname).find("libobs-opengl") != std::string_view::npos;
}

} // namespace

extern "C" __attribute__((visibility("default"))) int quillmar_refused_polls()
{
    return refusals;
}

extern "C" __attribute__((visibility("default"))) xcb_generic_event_t *
xcb_poll_for_event(xcb_connection_t *connection)
{
    if (isInGraphics(__builtin_return_address(0))) {
        ++refusals;
        return nullptr;
    }
    using Poll = xcb_generic_event_t *(xcb_connection_t *);
    static auto *const poll = reinterpret_cast<Poll *>(dlsym(RTLD_NEXT, "xcb_poll_for_event"));
    return poll(connection);
}
