#pragma once

#include "tests/host/support/host_catalogue.h"
#include "tests/host/support/host_session.h"
#include "tests/host/support/service_process.h"

#include <memory>
#include <optional>

namespace quillmar::test
{

struct ServedSettings {
    HostSettings host{};
    QList<WebcamFrame> frames{};
    /// What "Host stage" has; empty: there is no such product.
    QList<StageComponent> stage{};
    /// Above 0: the service also offers a product of this size ("Giant package" with the component "Giant
    /// clip").
    qint64 giantBytes = 0;
    /// Account that is signed in, in English, before start() returns; empty for the sign-in view in Persian.
    QString account{};
};

/// The demo service with the host tests' own catalogue, and a user with OBS in front of it.
class ServedSession
{
public:
    /// Null, with the reason in `*problem`, on failure.
    static std::unique_ptr<ServedSession> start(const ServedSettings &settings, QString *problem);

    HostSession &session() { return *session_; }
    QuillmarPanel &panel() { return session_->panel(); }
    ObsState state() { return session_->state(); }
    ServiceProcess &service() { return *service_; }
    const HostCatalogue &catalogue() const { return catalogue_; }

    void stopService() { service_->stop(); }
    /// A service on the same catalogue; its accounts and its log begin anew.
    bool startService(QString *problem);
    /// Starts OBS again after it has ended, and waits until the kept session is restored, in English as
    /// before.
    bool resume(QString *problem);
    /// Switches to English, signs in with name and password alike, and waits for the products.
    bool enter(const QString &account);

private:
    explicit ServedSession(const ServedSettings &settings)
        : settings_(settings), catalogue_(settings.frames, settings.stage)
    {
    }

    ServedSettings settings_;
    HostCatalogue catalogue_;
    std::unique_ptr<ServiceProcess> service_;
    std::unique_ptr<HostSession> session_;
};

} // namespace quillmar::test
