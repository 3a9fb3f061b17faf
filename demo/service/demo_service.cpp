#include "demo/service/demo_service.h"

#include "demo/service/giant_package.h"
#include "demo/service/http_front.h"
#include "demo/service/request_log.h"
#include "demo/service/service_routes.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// RSA and elliptic keys alike.
QSslKey readKey(const QString &path)
{
    const QByteArray pem = contentsOf(path);
    for (const QSsl::KeyAlgorithm algorithm : {QSsl::Rsa, QSsl::Ec}) {
        const QSslKey key(pem, algorithm);
        if (!key.isNull())
            return key;
    }
    return {};
}

} // namespace

struct DemoService::Private {
    explicit Private(DemoServiceSettings given)
        : settings(std::move(given)),
          routes(settings.host, settings.ticketLifetime),
          front([this](const QHttpServerRequest &request) { return answer(request); })
    {
    }

    Answer answer(const QHttpServerRequest &request)
    {
        Answer given = routes.answer(request);
        log.add(methodName(request.method()), request.url().path(), given);
        return given;
    }

    QString addGiantPackage();
    QString listen();

    DemoServiceSettings settings;
    RequestLog log;
    ServiceRoutes routes;
    HttpFront front;
    quint16 port = 0;
};

QString DemoService::Private::addGiantPackage()
{
    if (settings.giantPackageBytes <= 0)
        return {};
    const GiantPackage giant = makeGiantPackage(settings.catalogueFolder, settings.giantPackageBytes);
    if (!giant.error.isEmpty())
        return giant.error;
    routes.catalogue().addProduct(giant.product, giant.path);
    return {};
}

QString DemoService::Private::listen()
{
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificateChain(QSslCertificate::fromPath(settings.certificateFile));
    tls.setPrivateKey(readKey(settings.keyFile));
    if (tls.localCertificateChain().isEmpty() || tls.privateKey().isNull())
        return u"no usable certificate and key in %1 and %2"_s.arg(settings.certificateFile,
                                                                   settings.keyFile);
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(tls);
    if (!server->listen(QHostAddress::LocalHost, settings.port))
        return u"cannot listen on port %1: %2"_s.arg(settings.port).arg(server->errorString());
    port = server->serverPort();
    if (!front.bind(server.get()))
        return u"the HTTP server does not take the socket"_s;
    // The front is the parent now.
    server.release();
    return {};
}

DemoService::DemoService(DemoServiceSettings settings) : d_(std::make_unique<Private>(std::move(settings))) {}

DemoService::~DemoService() = default;

QString DemoService::start()
{
    if (!d_->log.open(d_->settings.logFile))
        return u"the log %1 cannot be written"_s.arg(d_->settings.logFile);
    if (const QString error = d_->routes.catalogue().load(d_->settings.catalogueFolder); !error.isEmpty())
        return error;
    if (const QString error = d_->addGiantPackage(); !error.isEmpty())
        return error;
    return d_->listen();
}

quint16 DemoService::port() const
{
    return d_->port;
}

} // namespace quillmar::demo
