#pragma once

#include <QByteArray>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <chrono>

class QNetworkAccessManager;

namespace quillmar
{

/// The address may be fetched: `https`, a host, no user-info and no fragment.
bool isFetchablePreview(const QUrl &address);

/// How long a server may take.
struct PreviewDeadlines {
    std::chrono::milliseconds silence{15'000}; ///< without a byte
    std::chrono::milliseconds whole{20'000};   ///< for everything
};

/// Fetches the body of one preview address, at most 8 MiB, which are counted while they arrive.
///
/// Ends exactly once, with ended(), unless it is destroyed before; then the request is dropped. Lives on the
/// user-interface thread.
class PreviewFetch : public QObject
{
    Q_OBJECT

public:
    explicit PreviewFetch(QObject *parent, PreviewDeadlines deadlines = {});
    ~PreviewFetch() override;

    /// Sends the request. Called once. `network` outlives the request or takes it with it.
    void start(QNetworkAccessManager &network, const QUrl &address);

Q_SIGNALS:
    /// `body` is empty when the address was refused, when the server answered with anything but status 200
    /// and a body of at most 8 MiB in time, and when that body was empty. May come before start() returns.
    void ended(const QByteArray &body);

private:
    void onReadyRead();
    void onFinished();
    void takeWhatFits();
    bool isTooLarge() const;

    const PreviewDeadlines deadlines_;
    QPointer<QNetworkReply> reply_;
    QByteArray body_;
    bool wasTooLarge_ = false;
};

} // namespace quillmar
