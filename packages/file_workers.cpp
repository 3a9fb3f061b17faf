#include "packages/file_workers.h"

#include <new>

namespace quillmar
{

using namespace Qt::StringLiterals;

namespace
{

constexpr int kMaxThreads = 2;

/// Sizes are bounded before anything is allocated; this is for a process that has no memory left at all.
ProductFileResult runGuarded(const FileWorkers::Task &task)
{
    try {
        return task();
    } catch (const std::bad_alloc &) {
        return ProductFileResult::failure(u"Download.Failed"_s);
    }
}

} // namespace

FileWorkers::FileWorkers()
{
    workers_.setMaxThreadCount(kMaxThreads);
}

FileWorkers::~FileWorkers()
{
    workers_.waitForDone();
}

void FileWorkers::run(QObject *receiver, Task task, Answer answer, Urgency urgency)
{
    const quint64 id = ++lastId_;
    expected_.insert(id, {receiver, std::move(answer)});
    // This object outlives its workers, and takes the calls that are still queued with it.
    auto work = [this, id, task = std::move(task)] {
        const ProductFileResult result = runGuarded(task);
        QMetaObject::invokeMethod(this, [this, id, result] { deliver(id, result); }, Qt::QueuedConnection);
    };
    workers_.start(std::move(work), static_cast<int>(urgency));
}

void FileWorkers::deliver(quint64 id, const ProductFileResult &result)
{
    const Expected expected = expected_.take(id);
    if (expected.receiver)
        expected.answer(result);
}

} // namespace quillmar
