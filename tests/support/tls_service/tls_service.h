#pragma once

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class QSslSocket;

namespace quillmar::test
{

/// One request as it came over the wire.
struct WireRequest {
    QByteArray method;
    QByteArray host; ///< of the CONNECT that opened the tunnel, without port
    QByteArray target;
    QList<std::pair<QByteArray, QByteArray>> headers; ///< names lower-cased, in the order of arrival
    QByteArray body;

    /// Value of the first header `lowerName`; a null array when there is none.
    QByteArray header(QByteArrayView lowerName) const;
    bool hasHeader(QByteArrayView lowerName) const;
};

/// The server's end of the connection that a request came by; misbehaves on demand. Safe to use after the
/// client has gone away: everything is then ignored.
class WireConnection
{
public:
    explicit WireConnection(QSslSocket *socket);

    /// Sends bytes as they are.
    void send(const QByteArray &bytes);

    /// Ends the connection in order, after what was sent.
    void close();

    /// Breaks the connection off.
    void reset();

    bool isOpen() const;

    /// Bytes handed to the socket and not yet taken by the client's side.
    qint64 bytesToWrite() const;

private:
    QPointer<QSslSocket> socket_;
};

/// A service that answers under the real service host on loopback.
///
/// While an instance lives, the application's HTTP proxy is a socket of its own that accepts CONNECT for any
/// host and port, ends TLS itself with a certificate of the service host, and hands each request to the
/// handler of its path. The authority that signed the certificate is made at run time and is the only one
/// that the default TLS configuration trusts. What a client sees are the very bytes that the handler sends.
/// One instance at a time; everything on the thread that made it.
class TlsService : public QObject
{
    Q_OBJECT

public:
    using Handler = std::function<void(const WireRequest &request, WireConnection &connection)>;

    TlsService();
    ~TlsService() override;

    /// Answers requests whose target (without query) is `path`. A path without handler gets status 404.
    void handle(const QByteArray &path, Handler handler);

    /// Shorthand for the paths of the service: "login" stands for "/wp-json/quillmar/v1/login".
    void handleRoute(const QByteArray &route, Handler handler);

    /// Requests so far, all or those for one route.
    const QList<WireRequest> &requests() const { return requests_; }
    qsizetype count(const QByteArray &route) const;

    /// Hosts and ports that were asked for by CONNECT, in order ("quillmar.example:443").
    const QList<QByteArray> &connects() const { return connects_; }

    /// From now on the certificate is this one; all but the first are certificates that a client must refuse.
    /// This and the two settings below rule the connections to come. One that is open stays as it is: a
    /// client that has one forgets it with QNetworkAccessManager::clearConnectionCache().
    enum class Certificate { Good, SelfSigned, WrongName, Expired };
    void useCertificate(Certificate certificate);

    /// From now on CONNECT is answered and the connection then closed, so that no HTTP response ever comes.
    void setUnreachable(bool unreachable);

    /// From now on a tunnel that was asked for gets these bytes instead of TLS, and is closed. Empty: TLS
    /// again.
    void setPlainText(const QByteArray &plainText);

    /// A complete HTTP/1.1 response with Content-Length.
    static QByteArray response(int status, const QByteArray &body,
                               const QByteArray &contentType = "application/json",
                               const QList<std::pair<QByteArray, QByteArray>> &headers = {});
    static QByteArray json(int status, const QJsonObject &object);

    /// A handler that always gives the same answer.
    static Handler always(const QByteArray &bytes);

private:
    struct Private;
    std::unique_ptr<Private> d_;
    QHash<QByteArray, Handler> handlers_;
    QList<WireRequest> requests_;
    QList<QByteArray> connects_;
};

} // namespace quillmar::test
