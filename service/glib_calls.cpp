#include "service/glib_calls.h"

namespace quillmar
{

namespace
{

gboolean cancel(gpointer cancellable)
{
    g_cancellable_cancel(static_cast<GCancellable *>(cancellable));
    return G_SOURCE_REMOVE;
}

} // namespace

GlibCalls::GlibCalls(std::chrono::milliseconds deadline)
    : context_(g_main_context_new()),
      alarm_(g_timeout_source_new(static_cast<guint>(deadline.count()))),
      cancellable_(g_cancellable_new())
{
    g_main_context_push_thread_default(context_);
    g_source_set_callback(alarm_, cancel, cancellable_.get(), nullptr);
    g_source_attach(alarm_, context_);
}

GlibCalls::~GlibCalls()
{
    g_source_destroy(alarm_);
    g_source_unref(alarm_);
    g_main_context_pop_thread_default(context_);
    g_main_context_unref(context_);
}

void GlibCalls::keepResult(GObject *, GAsyncResult *result, gpointer target)
{
    g_object_ref(result);
    static_cast<ObjectHandle<GAsyncResult> *>(target)->reset(result);
}

} // namespace quillmar
