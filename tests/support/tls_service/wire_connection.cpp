#include "tests/support/tls_service/tls_service.h"

#include <QSslSocket>

#ifdef Q_OS_UNIX
#include <sys/socket.h>
#else
#include <winsock2.h>
#endif

namespace quillmar::test
{

namespace
{

/// Makes the end of the connection a reset instead of an orderly one.
void resetOnClose(const QSslSocket &socket)
{
#ifdef Q_OS_UNIX
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    setsockopt(int(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
#else
    Q_UNUSED(socket)
#endif
}

bool isConnected(const QSslSocket *socket)
{
    return socket != nullptr && socket->state() == QAbstractSocket::ConnectedState;
}

/// Wine does not tell of a connection that the other side reset; asking for its next byte does.
bool hasBeenReset(const QSslSocket &socket)
{
#ifdef Q_OS_WIN
    char next = 0;
    const auto descriptor = static_cast<SOCKET>(socket.socketDescriptor());
    return recv(descriptor, &next, 1, MSG_PEEK) <= 0 && WSAGetLastError() != WSAEWOULDBLOCK;
#else
    Q_UNUSED(socket)
    return false;
#endif
}

} // namespace

WireConnection::WireConnection(QSslSocket *socket) : socket_(socket) {}

void WireConnection::send(const QByteArray &bytes)
{
    if (isConnected(socket_)) {
        socket_->write(bytes);
    }
}

void WireConnection::close()
{
    if (isConnected(socket_)) {
        socket_->disconnectFromHost();
    }
}

void WireConnection::reset()
{
    if (isConnected(socket_)) {
        resetOnClose(*socket_);
        socket_->abort();
    }
}

bool WireConnection::isOpen() const
{
    return isConnected(socket_) && !hasBeenReset(*socket_);
}

qint64 WireConnection::bytesToWrite() const
{
    return isConnected(socket_) ? socket_->bytesToWrite() + socket_->encryptedBytesToWrite() : 0;
}

} // namespace quillmar::test
