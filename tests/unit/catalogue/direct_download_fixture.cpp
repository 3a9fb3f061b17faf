#include "tests/unit/catalogue/direct_download_fixture.h"

#include "tests/unit/packages/file_tree.h"

#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr int DeadlineMs = 30'000;

bool isOutcome(const QString &key)
{
    return !key.isEmpty() && key != "Download.Preparing"_L1 && key != "Download.Progress"_L1;
}

} // namespace

const QByteArray DirectDownloadFixture::Disposition = "attachment; filename=\"Pack 1.zip\"";

DownloadRow::DownloadRow() : button(new QPushButton(&card)), status(new QLabel(&card))
{
    status->setTextFormat(Qt::PlainText);
}

DirectDownloadFixture::DirectDownloadFixture()
    : network(std::make_unique<QNetworkAccessManager>()), row(std::make_unique<DownloadRow>())
{
    serveGood();
    makeDownloads();
}

DirectDownloadFixture::~DirectDownloadFixture() = default;

void DirectDownloadFixture::makeDownloads(const QString &folder)
{
    downloads = std::make_unique<DirectDownloads>(
        DirectDownloads::Means{network.get(), texts, [this] { return token; }, [this] { return generation; },
                               [this](LogLevel level, const QString &line) {
                                   events.append(line);
                                   if (level < LogLevel::Info)
                                       warnings.append(line);
                               },
                               folder});
}

void DirectDownloadFixture::serveGood()
{
    serveTicket(TlsService::always(goodTicket()));
    serveFile([this](const WireRequest &, WireConnection &connection) {
        connection.send(file(bytes, Disposition));
    });
}

WireRequest DirectDownloadFixture::lastRequest(const QByteArray &route) const
{
    const QByteArray ending = '/' + route;
    WireRequest last;
    for (const WireRequest &request : service.requests()) {
        if (request.target.endsWith(ending))
            last = request;
    }
    return last;
}

void DirectDownloadFixture::start(DownloadRow &on, const QString &productKey, qint64 fileSize)
{
    const auto quotaChanged = [this] {
        events.append(u"quota"_s);
        if (onQuota)
            onQuota();
    };
    downloads->startDirectDownload(on.button, on.status, productKey, quotaChanged, fileSize);
}

QString DirectDownloadFixture::outcome(const QString &productKey, qint64 fileSize)
{
    start(*row, productKey, fileSize);
    return outcomeOf(*row);
}

QString DirectDownloadFixture::outcomeOf(const DownloadRow &on)
{
    const bool isOver = QTest::qWaitFor([&on] { return isOutcome(on.key()); }, DeadlineMs);
    return isOver ? on.key() : QString();
}

QByteArray DirectDownloadFixture::saved(const QString &name) const
{
    return fileContent(folder() + u'/' + name);
}

QByteArray DirectDownloadFixture::goodTicket()
{
    return TlsService::json(200, {{u"ticket"_s, u"ticket-1"_s}});
}

QByteArray DirectDownloadFixture::file(const QByteArray &body, const QByteArray &disposition)
{
    QList<std::pair<QByteArray, QByteArray>> headers;
    if (!disposition.isNull())
        headers.emplaceBack("Content-Disposition", disposition);
    return TlsService::response(200, body, "application/octet-stream", headers);
}

} // namespace quillmar::test
