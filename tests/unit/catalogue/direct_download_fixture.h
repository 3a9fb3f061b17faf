#pragma once

#include "catalogue/direct_download.h"
#include "tests/support/locale_files.h"
#include "tests/support/tls_service/tls_service.h"

#include <QLabel>
#include <QNetworkAccessManager>
#include <QPushButton>
#include <QTemporaryDir>

#include <memory>

namespace quillmar::test
{

/// What a card hands over: a button and a status line that die together.
struct DownloadRow {
    DownloadRow();

    QString key() const { return status->property("quillmarTextKey").toString(); }
    QString suffix() const { return status->property("quillmarTextSuffix").toString(); }
    bool isBusy() const { return button->property("downloadBusy").toBool(); }

    QWidget card;
    QPushButton *button;
    QLabel *status;
};

/// A service, a session, an empty download folder and the direct downloads between them. The service delivers
/// `bytes` as "Pack 1.zip" until a test tells it otherwise.
class DirectDownloadFixture
{
public:
    DirectDownloadFixture();
    ~DirectDownloadFixture();

    QByteArray bytes = QByteArray("the file ").repeated(30'000);
    QString token = QStringLiteral("token");
    quint64 generation = 1;
    QStringList events;   ///< "quota" and the log lines, in the order of the calls
    QStringList warnings; ///< log lines above the level of information
    std::function<void()> onQuota;

    TlsService service;
    Localisation texts = LocaleFiles().localisation(EnglishCode);
    std::unique_ptr<QNetworkAccessManager> network;
    std::unique_ptr<DirectDownloads> downloads;
    std::unique_ptr<DownloadRow> row;

    /// Where the files go, and the folder that it is made in.
    QString folder() const { return folder_.filePath(QStringLiteral("Downloads/Quillmar")); }
    QString around() const { return folder_.path(); }

    void makeDownloads() { makeDownloads(folder()); }
    void makeDownloads(const QString &folder);
    void serveTicket(TlsService::Handler handler)
    {
        service.handleRoute("download-ticket", std::move(handler));
    }
    void serveFile(TlsService::Handler handler) { service.handleRoute("download-file", std::move(handler)); }
    void serveGood();

    qsizetype tickets() const { return service.count("download-ticket"); }
    qsizetype files() const { return service.count("download-file"); }
    WireRequest lastRequest(const QByteArray &route) const;

    void start(DownloadRow &on, const QString &productKey = QStringLiteral("abc"), qint64 fileSize = 0);

    /// Starts on `row` and waits until its status is an outcome; its key, or empty at the deadline.
    QString outcome(const QString &productKey = QStringLiteral("abc"), qint64 fileSize = 0);

    /// Waits until `on` shows an outcome; its key.
    static QString outcomeOf(const DownloadRow &on);

    /// Content of a file in the download folder.
    QByteArray saved(const QString &name) const;

    static QByteArray goodTicket();

    /// A 200 with `body` and this Content-Disposition; none when that is null.
    static QByteArray file(const QByteArray &body, const QByteArray &disposition);

    static const QByteArray Disposition; ///< of the file that is served

private:
    QTemporaryDir folder_;
};

} // namespace quillmar::test
