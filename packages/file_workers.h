#pragma once

#include "packages/product_file_result.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QThreadPool>

#include <functional>
#include <memory>

namespace quillmar
{

/// Runs file work on at most two threads and brings the answers back to its own thread.
///
/// A task owns copies of what it needs; receivers and answers never leave the thread of this object.
class FileWorkers : public QObject
{
    Q_OBJECT

public:
    using Task = std::function<ProductFileResult()>;
    using Answer = std::function<void(const ProductFileResult &)>;

    /// Which of the waiting tasks runs first.
    enum class Urgency : int { Ordinary = 0, KeepsTransferGoing = 1 };

    FileWorkers();

    /// Waits for all tasks, without a time limit. Their answers are not called any more.
    ~FileWorkers() override;

    /// Runs `task` on a worker, then `answer` on this thread, as a queued call, unless `receiver` is gone by
    /// then. A task that runs out of memory answers "Download.Failed".
    void run(QObject *receiver, Task task, Answer answer, Urgency urgency = Urgency::Ordinary);

    /// Destroys `object` on a worker, once no task holds it any more.
    template <typename T>
    void release(std::shared_ptr<T> object)
    {
        workers_.start([held = std::move(object)]() mutable { held.reset(); });
    }

private:
    struct Expected {
        QPointer<QObject> receiver;
        Answer answer;
    };

    void deliver(quint64 id, const ProductFileResult &result);

    QHash<quint64, Expected> expected_;
    quint64 lastId_ = 0;
    QThreadPool workers_;
};

} // namespace quillmar
