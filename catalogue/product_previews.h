#pragma once

#include "packages/component_product.h"

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QQueue>
#include <QThreadPool>

#include <functional>

class QNetworkAccessManager;

namespace quillmar
{

/// Fetches preview images over HTTPS, decodes them on a pool of at most two threads and keeps the decoded
/// ones in memory, at most about 32 MiB. Nothing is written to disk.
///
/// Only `https` addresses without user-info and fragment are fetched, redirects are not followed, no cookies
/// or credentials are sent, a body has at most 8 MiB, and only PNG, JPEG and WebP are decoded, whatever the
/// server calls them. At most two pictures are on their way at a time and at most 128 wait.
///
/// Lives on the user-interface thread, with a network manager of its own.
class ProductPreviews : public QObject
{
    Q_OBJECT

public:
    /// Null: there is no picture. Otherwise at most 1600 x 1200 pixels, turned as its EXIF data say.
    using Completion = std::function<void(const QImage &image)>;

    explicit ProductPreviews(QObject *parent = nullptr);

    /// Waits for the decoding pool, without a time limit. Completions are not called any more.
    ~ProductPreviews() override;

    /// Gets the picture of `entry`, from memory or from its address, and after a failure once from its
    /// fallback address. `completion` is called once on this thread: before this call returns when the
    /// picture is in memory or too many requests wait, else later. It is never called once `receiver` is
    /// gone, nor when it is null, and it may destroy the receiver or this object, or request again. A failure
    /// is not remembered.
    void request(const PreviewEntry &entry, QObject *receiver, Completion completion);

private:
    struct Job {
        PreviewEntry entry;
        QPointer<QObject> receiver;
        Completion completion;
        bool usesFallback = false;
    };

    void pump();
    void fetch(quint64 id);
    void decode(quint64 id, const QByteArray &body);
    void complete(quint64 id, const QImage &image);

    QNetworkAccessManager *network_; ///< a child
    QCache<QString, QImage> images_;
    QQueue<Job> waiting_;
    QHash<quint64, Job> active_; ///< being fetched or decoded
    quint64 lastId_ = 0;
    QThreadPool decoders_;
};

} // namespace quillmar
