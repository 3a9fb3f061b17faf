#include "tests/windows_host/served_catalogue.h"

#include <QGuiApplication>
#include <QNetworkProxy>
#include <QSaveFile>
#include <QSslCertificate>
#include <QSslConfiguration>

using namespace quillmar::test;

namespace
{

/// The port of the service on its first line, then the certificate of its authority.
bool announce(const QString &path)
{
    QSaveFile file(path);
    const QByteArray port = QByteArray::number(QNetworkProxy::applicationProxy().port());
    const QSslCertificate authority = QSslConfiguration::defaultConfiguration().caCertificates().constFirst();
    return file.open(QIODevice::WriteOnly) && file.write(port + '\n' + authority.toPem()) > 0 &&
           file.commit();
}

} // namespace

/// windows_service FILE: plays the service until it is ended; the file appears when it can be reached and
/// tells how.
int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    TlsService service;
    serveCatalogue(service);
    return announce(QCoreApplication::arguments().value(1)) ? QGuiApplication::exec() : 1;
}
