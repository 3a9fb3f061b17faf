#pragma once

#include <QHostAddress>
#include <QString>

#include <chrono>
#include <memory>

namespace quillmar::demo
{

struct DemoServiceSettings {
    QString host;            ///< name that the service answers for
    quint16 port = 443;      ///< 0: any free one
    QString certificateFile; ///< PEM
    QString keyFile;         ///< PEM
    QString catalogueFolder; ///< made by quillmar-demo-catalogue
    QString logFile;         ///< appended to; empty: no log
    std::chrono::milliseconds ticketLifetime = std::chrono::minutes(1);
    qint64 giantPackageBytes = 0; ///< above 0: adds a product whose package has this size
};

/// The Quillmar web service, for demonstrations and tests: the whole interface over HTTPS, as strict as a
/// real one.
///
/// Listens on the loopback address only. Lives on the thread that made it, which must run an event loop.
/// State (sessions, tickets, quotas) is lost with the object.
class DemoService
{
public:
    explicit DemoService(DemoServiceSettings settings);
    ~DemoService();
    Q_DISABLE_COPY_MOVE(DemoService)

    /// Empty when the service listens, else a sentence that says why not. Blocks while it writes a giant
    /// package.
    QString start();

    /// Port in use; 0 before a successful start.
    quint16 port() const;

private:
    struct Private;
    std::unique_ptr<Private> d_;
};

} // namespace quillmar::demo
