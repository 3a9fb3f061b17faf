#pragma once

#include "recording_view.h"
#include "service/account.h"
#include "tests/support/tls_service/tls_service.h"

#include <QStringList>

#include <memory>
#include <optional>

namespace quillmar::test
{

/// Keeps a token in memory and fails on demand.
class FakeStore : public SessionStore
{
public:
    bool save(const QString &newToken) override;
    QString load() override { return token; }
    bool remove() override;

    QString token;
    bool saves = true;
    bool removes = true;
    int removals = 0;
};

/// An account in front of a service on loopback.
struct AccountFixture {
    explicit AccountFixture(
        std::unique_ptr<QNetworkAccessManager> manager = std::make_unique<QNetworkAccessManager>());

    /// Answers a route with bytes, and lets go of the connection afterwards when `thenClose`.
    void answer(const QByteArray &route, const QByteArray &bytes, bool thenClose = false);

    /// Takes requests for a route and leaves them without an answer; each connection is appended to `held`.
    void hold(const QByteArray &route);

    /// Answers all routes well: token "t0ken", two products, a sign-out without body.
    void answerWell();

    /// Signs in at a service that answers well, and waits for the products.
    void signInWell();

    /// No request is under way and none waits for its deletion.
    bool isQuiet() const;

    /// Runs the event loop until it is quiet; false when that takes too long.
    bool settles() const;

    TlsService service;
    Session session;
    FakeStore store;
    std::unique_ptr<RecordingView> view = std::make_unique<RecordingView>();
    std::unique_ptr<QNetworkAccessManager> network;
    QStringList log; ///< "level line"
    std::unique_ptr<Account> account;
    QList<WireConnection> held;
};

QByteArray goodLogin();
QByteArray goodProducts();

/// Two products with nothing but their names.
QJsonArray twoProducts();

} // namespace quillmar::test
