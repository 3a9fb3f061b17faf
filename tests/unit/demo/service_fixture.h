#pragma once

#include "demo/service/demo_service.h"
#include "tests/support/tls_service/certificates.h"

#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslConfiguration>
#include <QTemporaryDir>

namespace quillmar::test
{

using HeaderList = QList<std::pair<QByteArray, QByteArray>>;

/// What came back, read to the end.
struct Answered {
    int status = 0;
    QByteArray body;
    QJsonObject json; ///< of `body`, when it is an object
    QHttpHeaders headers;
    QNetworkReply::NetworkError error = QNetworkReply::NoError;

    QString code() const { return json.value(QLatin1StringView("code")).toString(); }
};

/// A running demo service over a small catalogue in a folder of its own, and a client that trusts its
/// certificate.
///
/// The service answers for "localhost". Products: "alpha" (package of 300,000 bytes) and "beta"; two
/// previews, "one.png" and "unsteady-two.png".
class ServiceFixture
{
public:
    /// `adjust` may change the settings before the service starts.
    explicit ServiceFixture(const std::function<void(demo::DemoServiceSettings &)> &adjust = {});

    /// Why the service did not start; empty when it runs.
    const QString &error() const { return error_; }

    Answered send(const QByteArray &method, const QString &target, const HeaderList &headers = {},
                  const QByteArray &body = {});

    /// Bytes as they are over TLS; the answer is read until the service closes or is silent at the end of a
    /// response.
    Answered sendRaw(const QByteArray &bytes);

    Answered get(const QString &route, const QByteArray &token);
    Answered signIn(const QString &account);
    QByteArray token(const QString &account = QStringLiteral("demo"));
    Answered askForTicket(const QByteArray &token, const QString &productKey = QStringLiteral("alpha"));
    QByteArray ticket(const QByteArray &token, const QString &productKey = QStringLiteral("alpha"));
    Answered fetch(const QByteArray &ticket);

    QByteArray package(const QString &productKey) const;
    QByteArray log() const;
    QString folder() const { return folder_.path(); }
    quint16 port() const { return service_->port(); }

    static QString route(const QString &name) { return u"/wp-json/quillmar/v1/" + name; }

private:
    void writeFolder();
    void writeFile(const QString &name, const QByteArray &content);

    QTemporaryDir folder_;
    Authority authority_;
    QSslConfiguration tls_ = QSslConfiguration::defaultConfiguration();
    std::unique_ptr<demo::DemoService> service_;
    QString error_;
    QNetworkAccessManager network_;
};

} // namespace quillmar::test
