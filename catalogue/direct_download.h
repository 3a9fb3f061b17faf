#pragma once

#include "catalogue/direct_transfer.h"
#include "packages/file_workers.h"
#include "service/log_function.h"
#include "ui/localisation.h"

#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>

#include <functional>

class QLabel;
class QPushButton;

namespace quillmar
{

/// Saves products without components as they are into the user's download folder.
///
/// Every card has a state of its own. At most four files are on their way at a time, so that stuck ones leave
/// connections to the other requests of the module; the others wait for their turn. Lives on the
/// user-interface thread, writes files on a pool of at most two.
class DirectDownloads : public QObject
{
    Q_OBJECT

public:
    /// What the rest of the module lends to this object. `localisation` outlives it.
    struct Means {
        QPointer<QNetworkAccessManager> network; ///< shared; may die before this object
        const Localisation &localisation;
        std::function<QString()> token;      ///< current session token, empty when signed out
        std::function<quint64()> generation; ///< current session generation
        LogFunction log;
        QString folder = {}; ///< absolute; empty: the user's download folder followed by "/Quillmar"
    };

    explicit DirectDownloads(Means means, QObject *parent = nullptr);

    /// Drops what is on its way and waits for running file work, without a time limit.
    ~DirectDownloads() override;

    /// Downloads the file of the product `productKey` and shows every state on `button` and `status`, which
    /// may die at any time. Does nothing while the button's property `downloadBusy` is set.
    ///
    /// `quotaChanged` is called after the file was saved and after the quota was found exhausted; it may
    /// delete anything. A file that grows beyond `fileSize` bytes, or beyond 2 GiB when that is 0 or less, is
    /// a failed download.
    void startDirectDownload(QPushButton *button, QLabel *status, const QString &productKey,
                             std::function<void()> quotaChanged, qint64 fileSize = 0);

private:
    void startWaiting();
    void onEnded(DirectTransfer *transfer);
    QString folder() const;

    Means means_;
    QList<DirectTransfer *> waiting_; ///< in the order of the clicks
    int runningCount_ = 0;
    FileWorkers workers_;
};

/// Lets `button` be clicked again in 1200 ms.
void releaseButton(QPushButton *button);

} // namespace quillmar
