#include "catalogue/product_previews.h"

#include "catalogue/preview_decoder.h"
#include "catalogue/preview_fetch.h"

#include <QNetworkAccessManager>

#include <utility>

namespace quillmar
{

namespace
{

constexpr qsizetype MostActive = 2;
constexpr qsizetype MostWaiting = 128;
constexpr int MostDecoders = 2;

/// In KiB of pixels, each picture rounded up.
constexpr qsizetype MostKept = 32768;

qsizetype costOf(const QImage &image)
{
    return image.sizeInBytes() / 1024 + 1;
}

/// The revision is part of it, so a changed picture is fetched anew and the old one is forgotten in time.
QString keyOf(const PreviewEntry &entry)
{
    return entry.url.toString(QUrl::FullyEncoded) + u'\n' + entry.fallback_url.toString(QUrl::FullyEncoded) +
           u'\n' + entry.revision;
}

} // namespace

ProductPreviews::ProductPreviews(QObject *parent)
    : QObject(parent), network_(new QNetworkAccessManager(this)), images_(MostKept)
{
    decoders_.setMaxThreadCount(MostDecoders);
}

ProductPreviews::~ProductPreviews()
{
    decoders_.waitForDone();
}

void ProductPreviews::request(const PreviewEntry &entry, QObject *receiver, Completion completion)
{
    if (!receiver)
        return;
    if (const QImage *known = images_.object(keyOf(entry))) {
        // A copy: the completion may push the picture out of memory.
        completion(QImage(*known));
    } else if (waiting_.size() >= MostWaiting) {
        completion(QImage());
    } else {
        waiting_.enqueue({entry, receiver, std::move(completion)});
        pump();
    }
}

void ProductPreviews::pump()
{
    while (active_.size() < MostActive && !waiting_.isEmpty()) {
        Job job = waiting_.dequeue();
        if (!job.receiver)
            continue;
        const quint64 id = ++lastId_;
        active_.insert(id, std::move(job));
        fetch(id);
    }
}

void ProductPreviews::fetch(quint64 id)
{
    const Job &job = active_[id];
    auto *fetch = new PreviewFetch(this);
    connect(fetch, &PreviewFetch::ended, fetch, &QObject::deleteLater);
    // Queued: a completion may destroy this object, and with it the reply that has just finished.
    connect(
        fetch, &PreviewFetch::ended, this, [this, id](const QByteArray &body) { decode(id, body); },
        Qt::QueuedConnection);
    fetch->start(*network_, job.usesFallback ? job.entry.fallback_url : job.entry.url);
}

void ProductPreviews::decode(quint64 id, const QByteArray &body)
{
    if (body.isEmpty() || !active_[id].receiver) {
        complete(id, QImage());
        return;
    }
    // This object waits for its decoders, and takes the calls that are still queued with it.
    decoders_.start([this, id, body] {
        QMetaObject::invokeMethod(
            this, [this, id, image = decodePreview(body)] { complete(id, image); }, Qt::QueuedConnection);
    });
}

void ProductPreviews::complete(quint64 id, const QImage &image)
{
    Job &active = active_[id];
    const bool canFallBack = !active.usesFallback && isFetchablePreview(active.entry.fallback_url);
    if (active.receiver && image.isNull() && canFallBack) {
        active.usesFallback = true;
        fetch(id);
        return;
    }
    const QPointer<ProductPreviews> guard(this);
    const Job job = active_.take(id);
    if (!image.isNull())
        images_.insert(keyOf(job.entry), new QImage(image), costOf(image));
    if (job.receiver)
        job.completion(image);
    if (guard)
        pump();
}

} // namespace quillmar
