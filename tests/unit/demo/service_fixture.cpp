#include "tests/unit/demo/service_fixture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QSslSocket>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{
namespace
{

constexpr int kPatience = 20'000; // ms

QByteArray jsonBytes(const QJsonObject &object)
{
    return QJsonDocument(object).toJson();
}

QJsonObject product(const QString &key)
{
    return {{u"product_key"_s, key},
            {u"product_version"_s, u"1"_s},
            {u"file_name"_s, QString(key + u" pack.zip"_s)},
            {u"file_mime"_s, u"application/zip"_s}};
}

Answered parse(const QByteArray &response)
{
    Answered answered;
    const qsizetype end = response.indexOf("\r\n\r\n");
    answered.status = response.sliced(0, response.indexOf("\r\n")).split(' ').value(1).toInt();
    answered.body = end < 0 ? QByteArray() : response.sliced(end + 4);
    answered.json = QJsonDocument::fromJson(answered.body).object();
    return answered;
}

} // namespace

ServiceFixture::ServiceFixture(const std::function<void(demo::DemoServiceSettings &)> &adjust)
{
    writeFolder();
    tls_.setCaCertificates({authority_.certificate()});
    demo::DemoServiceSettings settings;
    settings.host = u"localhost"_s;
    settings.port = 0;
    settings.certificateFile = folder_.filePath(u"server.pem"_s);
    settings.keyFile = folder_.filePath(u"server.key"_s);
    settings.catalogueFolder = folder_.path();
    settings.logFile = folder_.filePath(u"access.log"_s);
    if (adjust)
        adjust(settings);
    service_ = std::make_unique<demo::DemoService>(settings);
    error_ = service_->start();
}

Answered ServiceFixture::send(const QByteArray &method, const QString &target, const HeaderList &headers,
                              const QByteArray &body)
{
    QNetworkRequest request(QUrl(u"https://localhost:%1%2"_s.arg(port()).arg(target)));
    request.setSslConfiguration(tls_);
    request.setTransferTimeout(kPatience);
    for (const auto &[name, value] : headers)
        request.setRawHeader(name, value);
    const std::unique_ptr<QNetworkReply> reply(network_.sendCustomRequest(request, method, body));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    if (!reply->isFinished())
        finished.wait(kPatience);
    Answered answered;
    answered.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    answered.body = reply->readAll();
    answered.json = QJsonDocument::fromJson(answered.body).object();
    answered.headers = reply->headers();
    answered.error = reply->error();
    return answered;
}

Answered ServiceFixture::sendRaw(const QByteArray &bytes)
{
    QSslSocket socket;
    socket.setSslConfiguration(tls_);
    QObject::connect(&socket, &QSslSocket::encrypted, &socket, [&] { socket.write(bytes); });
    QByteArray response;
    QObject::connect(&socket, &QSslSocket::readyRead, &socket, [&] { response += socket.readAll(); });
    socket.connectToHostEncrypted(u"localhost"_s, port());
    const auto isWhole = [&] {
        return response.endsWith('}') ||
               (socket.state() == QAbstractSocket::UnconnectedState && !response.isEmpty());
    };
    return QTest::qWaitFor(isWhole, kPatience) ? parse(response) : Answered();
}

Answered ServiceFixture::get(const QString &name, const QByteArray &token)
{
    return send("GET", route(name), {{"Authorization", "Bearer " + token}});
}

Answered ServiceFixture::signIn(const QString &account)
{
    return send("POST", route(u"login"_s), {{"Content-Type", "application/json"}},
                jsonBytes({{u"username"_s, account}, {u"password"_s, account}}));
}

QByteArray ServiceFixture::token(const QString &account)
{
    return signIn(account).json.value("token"_L1).toString().toLatin1();
}

Answered ServiceFixture::askForTicket(const QByteArray &token, const QString &productKey)
{
    return send("POST", route(u"download-ticket"_s),
                {{"Authorization", "Bearer " + token}, {"Content-Type", "application/json"}},
                jsonBytes({{u"product_key"_s, productKey}}));
}

QByteArray ServiceFixture::ticket(const QByteArray &token, const QString &productKey)
{
    return askForTicket(token, productKey).json.value("ticket"_L1).toString().toLatin1();
}

Answered ServiceFixture::fetch(const QByteArray &ticket)
{
    return send("POST", route(u"download-file"_s), {{"X-Quillmar-Ticket", ticket}});
}

QByteArray ServiceFixture::package(const QString &productKey) const
{
    return productKey == "alpha"_L1 ? QByteArray("0123456789").repeated(30'000)
                                    : QByteArray("a small package");
}

QByteArray ServiceFixture::log() const
{
    QFile file(folder_.filePath(u"access.log"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void ServiceFixture::writeFolder()
{
    const Identity identity = authority_.issue({.hostName = u"localhost"_s});
    writeFile(u"server.pem"_s, identity.certificate.toPem());
    writeFile(u"server.key"_s, identity.key.toPem());
    QJsonArray products;
    for (const QString &key : {u"alpha"_s, u"beta"_s}) {
        products.append(product(key));
        writeFile(u"packages/%1/%1 pack.zip"_s.arg(key), package(key));
    }
    writeFile(u"products.json"_s, QJsonDocument(products).toJson());
    writeFile(u"previews/one.png"_s, "a picture");
    writeFile(u"previews/unsteady-two.png"_s, "another picture");
}

void ServiceFixture::writeFile(const QString &name, const QByteArray &content)
{
    const QString path = folder_.filePath(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write the folder of the test");
}

} // namespace quillmar::test
