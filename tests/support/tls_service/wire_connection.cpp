#include "tests/support/tls_service/tls_service.h"

#include <QSslSocket>

#ifdef Q_OS_UNIX
#include <sys/socket.h>
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

} // namespace

WireConnection::WireConnection(QSslSocket *socket) : socket_(socket) {}

void WireConnection::send(const QByteArray &bytes)
{
    if (isOpen()) {
        socket_->write(bytes);
    }
}

void WireConnection::close()
{
    if (isOpen()) {
        socket_->disconnectFromHost();
    }
}

void WireConnection::reset()
{
    if (isOpen()) {
        resetOnClose(*socket_);
        socket_->abort();
    }
}

bool WireConnection::isOpen() const
{
    return socket_ && socket_->state() == QAbstractSocket::ConnectedState;
}

qint64 WireConnection::bytesToWrite() const
{
    return isOpen() ? socket_->bytesToWrite() + socket_->encryptedBytesToWrite() : 0;
}

} // namespace quillmar::test
