#include "demo/service/http_front.h"

#include <QFile>
#include <QHttpHeaders>
#include <QHttpServerResponder>
#include <QJsonDocument>

namespace quillmar::demo
{
namespace
{

using StatusCode = QHttpServerResponder::StatusCode;
using Header = QHttpHeaders::WellKnownHeader;

QHttpHeaders headersOf(const Answer &answer)
{
    const bool isJson = answer.page.isEmpty() && answer.file.isEmpty();
    QHttpHeaders headers;
    headers.append(Header::ContentType, isJson ? QByteArray("application/json") : answer.contentType);
    headers.append(Header::CacheControl, "no-store");
    if (!answer.allowedMethod.isEmpty())
        headers.append(Header::Allow, answer.allowedMethod);
    if (!answer.downloadName.isEmpty())
        headers.append(Header::ContentDisposition,
                       "attachment; filename=\"" + answer.downloadName.toUtf8() + '"');
    return headers;
}

} // namespace

HttpFront::HttpFront(Handler handler, QObject *parent)
    : QAbstractHttpServer(parent), handler_(std::move(handler))
{
    // An older Qt has no such limits; there only tests of this project are served.
#if QT_VERSION >= QT_VERSION_CHECK(6, 10, 0)
    QHttpServerConfiguration limits;
    limits.setMaximumBodySize(64 * 1024);
    setConfiguration(limits);
#endif
}

bool HttpFront::handleRequest(const QHttpServerRequest &request, QHttpServerResponder &responder)
{
    const Answer answer = handler_(request);
    if (!answer.file.isEmpty())
        streamFile(answer, responder);
    else if (!answer.page.isEmpty())
        responder.write(answer.page, headersOf(answer), StatusCode(answer.status));
    else
        responder.write(QJsonDocument(answer.json).toJson(QJsonDocument::Compact), headersOf(answer),
                        StatusCode(answer.status));
    return true;
}

void HttpFront::missingHandler(const QHttpServerRequest &, QHttpServerResponder &responder)
{
    responder.write(StatusCode::NotFound);
}

void HttpFront::streamFile(const Answer &answer, QHttpServerResponder &responder)
{
    auto file = std::make_unique<QFile>(answer.file);
    if (!file->open(QIODevice::ReadOnly)) {
        responder.write(StatusCode::InternalServerError);
        return;
    }
    responder.write(file.release(), headersOf(answer), StatusCode(answer.status));
}

} // namespace quillmar::demo
