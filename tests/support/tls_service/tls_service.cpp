#include "tests/support/tls_service/tls_service.h"

#include "service/routes.h"
#include "tests/support/tls_service/certificates.h"
#include "tests/support/tls_service/request_reader.h"

#include <QJsonDocument>
#include <QNetworkProxy>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTcpServer>
#include <QTimer>

#include <algorithm>
#include <optional>

namespace quillmar::test
{

namespace
{

/// Hands out its connections as sockets that can turn to TLS later.
class TunnelServer : public QTcpServer
{
public:
    using QTcpServer::QTcpServer;

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto *socket = new QSslSocket(this);
        socket->setProxy(QNetworkProxy::NoProxy);
        if (!socket->setSocketDescriptor(descriptor)) {
            delete socket;
            return;
        }
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        addPendingConnection(socket);
    }
};

/// What is known of one connection.
struct Tunnel {
    QByteArray host; ///< empty until CONNECT has come
    RequestReader reader;
};

/// Playing the service takes OpenSSL, whatever else there is on this system.
void useOpenSsl()
{
    const QString openSsl = QStringLiteral("openssl");
    const bool isUsed = QSslSocket::activeBackend() == openSsl || QSslSocket::setActiveBackend(openSsl);
    if (!isUsed || !QSslSocket::sslLibraryVersionString().startsWith(QStringLiteral("OpenSSL"))) {
        qFatal("The test service needs OpenSSL, but this is %ls",
               qUtf16Printable(QSslSocket::sslLibraryVersionString()));
    }
}

QByteArray reason(int status)
{
    return status == 200 ? QByteArrayLiteral("OK") : QByteArrayLiteral("Status");
}

QByteArray pathOf(const QByteArray &target)
{
    const qsizetype query = target.indexOf('?');
    return query < 0 ? target : target.first(query);
}

QByteArray routePath(const QByteArray &route)
{
    return "/wp-json/quillmar/v1/" + route;
}

} // namespace

struct TlsService::Private {
    explicit Private(TlsService *service) : owner(service) {}

    void listen();
    void makeCertificates();
    void redirectClients();
    void accept();
    void read(QSslSocket *socket, Tunnel &tunnel);
    void openTunnel(QSslSocket *socket, Tunnel &tunnel, const WireRequest &connect);
    void startTls(QSslSocket *socket) const;
    void answer(QSslSocket *socket, const WireRequest &request);

    TlsService *owner;
    TunnelServer server;
    Authority authority;
    QHash<Certificate, Identity> identities;
    Certificate certificate = Certificate::Good;
    bool unreachable = false;
    QByteArray plainText;
    QNetworkProxy formerProxy;
    QSslConfiguration formerTls;
    QTimer wake; ///< under Wine, which lets an event loop sleep on when something comes by a socket
};

void TlsService::Private::listen()
{
    server.setProxy(QNetworkProxy::NoProxy);
    if (!server.listen(QHostAddress::LocalHost)) {
        qFatal("The test service cannot listen on loopback: %ls", qUtf16Printable(server.errorString()));
    }
    QObject::connect(&server, &QTcpServer::newConnection, owner, [this] { accept(); });
}

void TlsService::Private::makeCertificates()
{
    const QString host = routes::serviceHost();
    identities.insert(Certificate::Good, authority.issue({.hostName = host}));
    identities.insert(Certificate::SelfSigned, authority.issue({.hostName = host, .selfSigned = true}));
    identities.insert(Certificate::WrongName, authority.issue({.hostName = QStringLiteral("other.example")}));
    identities.insert(Certificate::Expired, authority.issue({.hostName = host, .expired = true}));
}

void TlsService::Private::redirectClients()
{
    formerProxy = QNetworkProxy::applicationProxy();
    formerTls = QSslConfiguration::defaultConfiguration();
    QSslConfiguration trusting = formerTls;
    trusting.setCaCertificates({authority.certificate()});
    QSslConfiguration::setDefaultConfiguration(trusting);
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, server.serverAddress().toString(), server.serverPort()));
}

void TlsService::Private::accept()
{
    while (auto *socket = qobject_cast<QSslSocket *>(server.nextPendingConnection())) {
        const auto tunnel = std::make_shared<Tunnel>();
        QObject::connect(socket, &QSslSocket::readyRead, owner,
                         [this, socket, tunnel] { read(socket, *tunnel); });
        QObject::connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
        read(socket, *tunnel);
    }
}

void TlsService::Private::read(QSslSocket *socket, Tunnel &tunnel)
{
    tunnel.reader.append(socket->readAll());
    while (std::optional<WireRequest> request = tunnel.reader.next()) {
        if (tunnel.host.isEmpty()) {
            openTunnel(socket, tunnel, *request);
            return;
        }
        request->host = tunnel.host;
        answer(socket, *request);
    }
}

void TlsService::Private::openTunnel(QSslSocket *socket, Tunnel &tunnel, const WireRequest &connect)
{
    owner->connects_.append(connect.target);
    tunnel.host = connect.target.first(connect.target.lastIndexOf(':'));
    socket->write("HTTP/1.1 200 Connection established\r\n\r\n");
    if (unreachable) {
        socket->disconnectFromHost();
    } else if (!plainText.isEmpty()) {
        socket->write(plainText);
        socket->disconnectFromHost();
    } else {
        startTls(socket);
    }
}

void TlsService::Private::startTls(QSslSocket *socket) const
{
    const Identity identity = identities.value(certificate);
    QSslConfiguration tls = formerTls;
    tls.setLocalCertificate(identity.certificate);
    tls.setPrivateKey(identity.key);
    tls.setPeerVerifyMode(QSslSocket::VerifyNone);
    socket->setSslConfiguration(tls);
    socket->startServerEncryption();
}

void TlsService::Private::answer(QSslSocket *socket, const WireRequest &request)
{
    owner->requests_.append(request);
    WireConnection connection(socket);
    const Handler handler = owner->handlers_.value(pathOf(request.target));
    if (handler) {
        handler(request, connection);
    } else {
        connection.send(response(404, "{}"));
    }
}

TlsService::TlsService() : d_(std::make_unique<Private>(this))
{
    useOpenSsl();
    d_->listen();
    d_->makeCertificates();
    d_->redirectClients();
#ifdef Q_OS_WIN
    d_->wake.start(1);
#endif
}

TlsService::~TlsService()
{
    QNetworkProxy::setApplicationProxy(d_->formerProxy);
    QSslConfiguration::setDefaultConfiguration(d_->formerTls);
    d_.reset();
}

void TlsService::handle(const QByteArray &path, Handler handler)
{
    handlers_.insert(path, std::move(handler));
}

void TlsService::handleRoute(const QByteArray &route, Handler handler)
{
    handle(routePath(route), std::move(handler));
}

qsizetype TlsService::count(const QByteArray &route) const
{
    return std::ranges::count_if(requests_, [path = routePath(route)](const WireRequest &request) {
        return pathOf(request.target) == path;
    });
}

void TlsService::useCertificate(Certificate certificate)
{
    d_->certificate = certificate;
}

void TlsService::setUnreachable(bool unreachable)
{
    d_->unreachable = unreachable;
}

void TlsService::setPlainText(const QByteArray &plainText)
{
    d_->plainText = plainText;
}

QByteArray TlsService::response(int status, const QByteArray &body, const QByteArray &contentType,
                                const QList<std::pair<QByteArray, QByteArray>> &headers)
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(status) + ' ' + reason(status) + "\r\n";
    if (!contentType.isEmpty()) {
        bytes += "Content-Type: " + contentType + "\r\n";
    }
    for (const auto &[name, value] : headers) {
        bytes += name + ": " + value + "\r\n";
    }
    return bytes + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

QByteArray TlsService::json(int status, const QJsonObject &object)
{
    return response(status, QJsonDocument(object).toJson(QJsonDocument::Compact));
}

TlsService::Handler TlsService::always(const QByteArray &bytes)
{
    return [bytes](const WireRequest &, WireConnection &connection) { connection.send(bytes); };
}

} // namespace quillmar::test
