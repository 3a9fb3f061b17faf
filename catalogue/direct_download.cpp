#include "catalogue/direct_download.h"

#include "catalogue/download_status.h"

#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr char BusyProperty[] = "downloadBusy";
constexpr std::chrono::milliseconds RestAfterDownload{1200};
constexpr int MaximumTransfers = 4;

void setBusy(QPushButton *button, bool isBusy)
{
    button->setProperty(BusyProperty, isBusy);
    button->setEnabled(!isBusy);
}

} // namespace

void releaseButton(QPushButton *button)
{
    QTimer::singleShot(RestAfterDownload, button, [button] { setBusy(button, false); });
}

DirectDownloads::DirectDownloads(Means means, QObject *parent) : QObject(parent), means_(std::move(means)) {}

/// The transfers go first: they use the workers, which wait for their tasks when they go.
DirectDownloads::~DirectDownloads()
{
    qDeleteAll(findChildren<DirectTransfer *>(Qt::FindDirectChildrenOnly));
}

void DirectDownloads::startDirectDownload(QPushButton *button, QLabel *status, const QString &productKey,
                                          std::function<void()> quotaChanged, qint64 fileSize)
{
    if (button->property(BusyProperty).toBool())
        return;
    if (means_.token().isEmpty()) {
        showDownloadStatus(status, DownloadStatus::LoginRequired, means_.localisation);
        return;
    }
    if (productKey.isEmpty()) {
        showDownloadStatus(status, DownloadStatus::ProductMissing, means_.localisation);
        return;
    }
    setBusy(button, true);
    showDownloadStatus(status, DownloadStatus::Preparing, means_.localisation);
    auto *transfer =
        new DirectTransfer({means_.network, workers_, means_.localisation, means_.token, means_.generation,
                            means_.log, folder()},
                           {button, status, productKey, fileSize, std::move(quotaChanged)}, this);
    connect(transfer, &DirectTransfer::ended, this, [this, transfer] { onEnded(transfer); });
    waiting_.append(transfer);
    startWaiting();
}

void DirectDownloads::startWaiting()
{
    while (runningCount_ < MaximumTransfers && !waiting_.isEmpty()) {
        ++runningCount_;
        waiting_.takeFirst()->start();
    }
}

void DirectDownloads::onEnded(DirectTransfer *transfer)
{
    transfer->deleteLater();
    if (!waiting_.removeOne(transfer))
        --runningCount_;
    // Queued: transfers also end in the middle of the destruction of a list of cards.
    QMetaObject::invokeMethod(this, &DirectDownloads::startWaiting, Qt::QueuedConnection);
}

QString DirectDownloads::folder() const
{
    const QString folder =
        means_.folder.isEmpty()
            ? QString(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation) + "/Quillmar"_L1)
            : means_.folder;
    return QDir::cleanPath(QDir(folder).absolutePath());
}

} // namespace quillmar
