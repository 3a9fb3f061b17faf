// What is handed from thread to thread through Qt's queues is ordered by locks inside Qt, which is not built
// with the thread sanitizer. These two calls stand in for Qt's own, tell the sanitizer about that order, and
// call Qt's.

#include <QMetaObject>
#include <QRunnable>
#include <QThreadPool>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

namespace
{

template <typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

/// A queued call that says on arrival what happened before it was sent.
class OrderedCall : public QtPrivate::QSlotObjectBase
{
public:
    explicit OrderedCall(QtPrivate::QSlotObjectBase *call)
        : QSlotObjectBase(&OrderedCall::dispatch), call_(call)
    {
    }

private:
    static void dispatch(int which, QSlotObjectBase *self, QObject *receiver, void **arguments, bool *result)
    {
        auto *ordered = static_cast<OrderedCall *>(self);
        __tsan_acquire(ordered->call_);
        switch (which) {
        case Destroy:
            ordered->call_->destroyIfLastRef();
            delete ordered;
            break;
        case Call:
            ordered->call_->call(receiver, arguments);
            break;
        case Compare:
            *result = ordered->call_->compare(arguments);
            break;
        }
    }

    QtPrivate::QSlotObjectBase *call_;
};

/// A task that says at its start what happened before it was queued.
class OrderedTask : public QRunnable
{
public:
    explicit OrderedTask(QRunnable *task) : task_(task) {}

    void run() override
    {
        __tsan_acquire(task_);
        const bool isOwned = task_->autoDelete();
        task_->run();
        if (isOwned) {
            delete task_;
        }
    }

private:
    QRunnable *task_;
};

} // namespace

bool QMetaObject::invokeMethodImpl(QObject *object, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type,
                                   qsizetype parameterCount, const void *const *parameters,
                                   const char *const *names,
                                   const QtPrivate::QMetaTypeInterface *const *types)
{
    using Invoke =
        bool(QObject *, QtPrivate::QSlotObjectBase *, Qt::ConnectionType, qsizetype, const void *const *,
             const char *const *, const QtPrivate::QMetaTypeInterface *const *);
    static auto *const invoke = next<Invoke>("_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlot"
                                             "ObjectBaseEN2Qt14ConnectionTypeExPKPKvPKPKcPKPK"
                                             "NS2_18QMetaTypeInterfaceE");
    __tsan_release(slot);
    return invoke(object, new OrderedCall(slot), type, parameterCount, parameters, names, types);
}

void QThreadPool::start(QRunnable *task, int priority)
{
    using Start = void(QThreadPool *, QRunnable *, int);
    static auto *const start = next<Start>("_ZN11QThreadPool5startEP9QRunnablei");
    __tsan_release(task);
    start(this, new OrderedTask(task), priority);
}
