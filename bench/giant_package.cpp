// Memory and event-loop gaps while a package of 1 GiB is acquired from the demo service and a component is
// taken out.
//
//   giant_package DEMO_SERVICE CATALOGUE [BYTES]
//
// Prints the figures of an idle process, of bare Qt reading the same bytes and throwing them away, and of the
// module's own classes, all from one run. Needs the service host to resolve to loopback and its authority to
// be trusted.

#include "bench/process_memory.h"

#include "packages/product_downloads.h"
#include "service/routes.h"
#include "service/service_reply.h"
#include "tests/support/stall_meter.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

namespace
{

using namespace quillmar;

constexpr double mebi = 1024.0 * 1024.0;

struct Figures {
    double seconds = 0;
    double longestGap = 0;
    double growth = 0;
};

/// Runs `start` until it calls the function it is given, and measures on the way.
Figures measure(const std::function<void(std::function<void()>)> &start)
{
    bench::resetPeak();
    const qint64 before = bench::processMemory("VmRSS");
    test::StallMeter meter;
    meter.restart();
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] { start([&loop] { loop.quit(); }); });
    loop.exec();
    return {static_cast<double>(clock.elapsed()) / 1000, meter.longestMilliseconds(),
            static_cast<double>(bench::processMemory("VmHWM") - before) / mebi};
}

void print(const char *what, const Figures &figures)
{
    std::printf("%-44s %8.2f s   longest gap %7.2f ms   peak growth %8.1f MiB\n", what, figures.seconds,
                figures.longestGap, figures.growth);
    std::fflush(stdout);
}

[[noreturn]] void fail(const QString &why)
{
    std::fprintf(stderr, "%s\n", qPrintable(why));
    std::exit(1);
}

/// Sends a request and waits for its end.
ServiceReply fetch(const std::function<QNetworkReply *()> &send)
{
    QNetworkReply *reply = send();
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    ServiceReply result = readServiceReply(*reply);
    reply->deleteLater();
    return result;
}

QString signIn(QNetworkAccessManager &network)
{
    const QByteArray body = QJsonDocument(QJsonObject{{QStringLiteral("username"), QStringLiteral("demo")},
                                                      {QStringLiteral("password"), QStringLiteral("demo")}})
                                .toJson();
    const ServiceReply reply = fetch([&] { return network.post(routes::login(), body); });
    if (reply.status != 200) {
        fail(QStringLiteral("sign-in failed: %1").arg(QString::fromUtf8(reply.body)));
    }
    return reply.text(QLatin1StringView("token"));
}

ComponentProduct largestProduct(QNetworkAccessManager &network, const QString &token)
{
    const ServiceReply reply = fetch([&] { return network.get(routes::products(token)); });
    ComponentProduct largest;
    const QJsonArray products = reply.object.value(QStringLiteral("products")).toArray();
    for (const QJsonValue &value : products) {
        const ComponentProduct product = parseComponentProduct(value.toObject());
        if (product.file_size > largest.file_size) {
            largest = product;
        }
    }
    return largest;
}

/// Reads the package with nothing but Qt, with the same bound on the read buffer.
void downloadBare(QNetworkAccessManager &network, const QString &ticket, std::function<void()> done)
{
    QNetworkReply *reply = network.post(routes::downloadFile(ticket), QByteArray());
    reply->setReadBufferSize(1024 * 1024);
    QObject::connect(reply, &QNetworkReply::readyRead, reply,
                     [reply] { reply->skip(reply->bytesAvailable()); });
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, done = std::move(done)] {
        reply->deleteLater();
        done();
    });
}

QString ticketFor(QNetworkAccessManager &network, const QString &token, const QString &productKey)
{
    const QByteArray body = QJsonDocument(QJsonObject{{QStringLiteral("product_key"), productKey}}).toJson();
    return fetch([&] { return network.post(routes::downloadTicket(token), body); })
        .text(QLatin1StringView("ticket"));
}

void startService(QProcess &service, const QStringList &arguments, const QString &log)
{
    const QString tls = qEnvironmentVariable("QUILLMAR_TLS_DIR");
    service.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    service.start(arguments.at(1),
                  {QStringLiteral("--host"), routes::serviceHost(), QStringLiteral("--port"),
                   QStringLiteral("443"), QStringLiteral("--certificate"),
                   tls + QStringLiteral("/server.pem"), QStringLiteral("--key"),
                   tls + QStringLiteral("/server.key"), QStringLiteral("--catalogue"), arguments.at(2),
                   QStringLiteral("--log"), log, QStringLiteral("--giant-package"),
                   arguments.value(3, QString::number(1024LL * 1024 * 1024))});
    QByteArray output;
    while (!output.contains("ready")) {
        if (!service.waitForReadyRead(120000)) {
            fail(QStringLiteral("the demo service did not start"));
        }
        output += service.readAllStandardOutput();
    }
}

void benchModule(QNetworkAccessManager &network, const QString &token, const ComponentProduct &product)
{
    QTemporaryDir folder;
    ProductDownloads downloads(&network, folder.path(), nullptr);
    downloads.setCallbacks({[token] { return token; }, [] { return quint64{1}; }, [] {}, [] {}});

    ProductFileResult package;
    print("acquire from the service", measure([&](auto done) {
              downloads.acquire(product, &downloads, [&, done](const ProductFileResult &result) {
                  package = result;
                  done();
              });
          }));
    if (!package.isOk()) {
        fail(QStringLiteral("acquire: %1").arg(package.error));
    }
    print("acquire again, from the cache", measure([&](auto done) {
              downloads.acquire(product, &downloads, [done](const ProductFileResult &) { done(); });
          }));
    for (const ProductComponent &component : product.components) {
        ProductFileResult extracted;
        const Figures figures = measure([&](auto done) {
            downloads.materialize(product, package.path, component, &downloads,
                                  [&, done](const auto &result) {
                                      extracted = result;
                                      done();
                                  });
        });
        if (!extracted.isOk()) {
            fail(QStringLiteral("materialize: %1").arg(extracted.error));
        }
        const double size = static_cast<double>(QFile(extracted.path).size()) / mebi;
        print(
            qPrintable(QStringLiteral("extract %1 (%2 MiB)").arg(component.asset_path).arg(size, 0, 'f', 0)),
            figures);
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (application.arguments().size() < 3) {
        fail(QStringLiteral("usage: giant_package DEMO_SERVICE CATALOGUE [BYTES]"));
    }
    const QTemporaryDir logs;
    QProcess service;
    startService(service, application.arguments(), logs.filePath(QStringLiteral("service.log")));

    QNetworkAccessManager network;
    const QString token = signIn(network);
    const ComponentProduct product = largestProduct(network, token);
    std::printf("package of %.0f MiB\n", static_cast<double>(product.file_size) / mebi);

    print("idle", measure([&](auto done) { QTimer::singleShot(5000, &network, done); }));
    const QString ticket = ticketFor(network, token, product.product_key);
    print("bare Qt, bytes thrown away", measure([&](auto done) { downloadBare(network, ticket, done); }));
    benchModule(network, token, product);

    service.kill();
    service.waitForFinished();
    return 0;
}
