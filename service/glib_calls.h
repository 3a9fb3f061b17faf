#pragma once

#include <gio/gio.h>

#include <chrono>
#include <memory>

namespace quillmar
{

struct UnrefObject {
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// A reference to a GLib object that is given back by itself.
template <typename T>
using ObjectHandle = std::unique_ptr<T, UnrefObject>;

/// Asynchronous calls of GLib's libraries, waited for one after another and all together no longer than a
/// deadline.
///
/// They run on a context of their own: while one is waited for, no event of the host is handled, whichever
/// loop it runs, and the deadline does not depend on a loop that may not exist. Synchronous calls would not
/// do: nothing could cancel them from the thread that they block. One thread; instances may nest.
class GlibCalls
{
public:
    explicit GlibCalls(std::chrono::milliseconds deadline);
    ~GlibCalls();
    GlibCalls(const GlibCalls &) = delete;
    GlibCalls &operator=(const GlibCalls &) = delete;

    /// Lets `start` begin a call with the cancellable, callback and user data that it is given, and waits for
    /// the result, which after the deadline is an error.
    template <typename Start>
    ObjectHandle<GAsyncResult> wait(Start start)
    {
        ObjectHandle<GAsyncResult> result;
        start(cancellable_.get(), &GlibCalls::keepResult, &result);
        while (!result) {
            g_main_context_iteration(context_, TRUE);
        }
        return result;
    }

private:
    static void keepResult(GObject *source, GAsyncResult *result, gpointer target);

    GMainContext *context_;
    GSource *alarm_;
    ObjectHandle<GCancellable> cancellable_;
};

} // namespace quillmar
