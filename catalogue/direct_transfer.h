#pragma once

#include "packages/file_workers.h"
#include "packages/package_body.h"
#include "service/log_function.h"
#include "ui/localisation.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class QLabel;
class QPushButton;

namespace quillmar
{

enum class DownloadStatus;

/// What was clicked, where its progress is shown, and whom it concerns. Button and label die with their card.
struct DirectDownloadClick {
    QPointer<QPushButton> button;
    QPointer<QLabel> status;
    QString productKey;
    qint64 fileSize = 0; ///< bytes; 0 or less: unknown
    std::function<void()> quotaChanged;
};

/// One direct download: a ticket first, then the file that it stands for, straight into the download folder.
///
/// Ends exactly once, with ended(), unless it is destroyed before. When its session or its status line ends
/// on the way, it shows nothing more and drops what has not been saved. Lives on the user-interface thread;
/// the file is written by the workers.
class DirectTransfer : public QObject
{
    Q_OBJECT

public:
    /// What it is fetched with. `workers` and `localisation` outlive this object.
    struct Means {
        QPointer<QNetworkAccessManager> network;
        FileWorkers &workers;
        const Localisation &localisation;
        std::function<QString()> token;
        std::function<quint64()> generation;
        LogFunction log;
        QString folder; ///< absolute and cleaned
    };

    /// Belongs to the session of this moment.
    DirectTransfer(Means means, DirectDownloadClick click, QObject *parent);
    ~DirectTransfer() override;

    /// Sends the first request. Called once.
    void start();

Q_SIGNALS:
    void ended();

private:
    void onTicketFinished();
    void onTicketLost();
    void requestFile(const QString &ticket);
    void onFileArriving();
    void onFileEnded(const PackageBody::Ending &file);
    void onStored(const ProductFileResult &file);

    bool endIfPointless();
    void show(DownloadStatus status);
    void refuseForQuota();
    void fail();
    void failTicket(int status);
    void failFile(int status);
    void warn(const QString &what, int status);
    void release();
    void end();
    void abandon();

    Means means_;
    DirectDownloadClick click_;
    quint64 generation_;
    QPointer<QNetworkReply> ticketReply_;
    PackageBody *body_ = nullptr; ///< a child
    bool isOver_ = false;
};

} // namespace quillmar
