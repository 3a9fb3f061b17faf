#pragma once

#include "demo/service/answer.h"

#include <QAbstractHttpServer>
#include <QHttpServerRequest>

#include <functional>

namespace quillmar::demo
{

/// Hands every request to one function and puts its answer on the wire.
class HttpFront : public QAbstractHttpServer
{
    Q_OBJECT

public:
    using Handler = std::function<Answer(const QHttpServerRequest &request)>;

    explicit HttpFront(Handler handler, QObject *parent = nullptr);

protected:
    bool handleRequest(const QHttpServerRequest &request, QHttpServerResponder &responder) override;
    void missingHandler(const QHttpServerRequest &request, QHttpServerResponder &responder) override;

private:
    static void streamFile(const Answer &answer, QHttpServerResponder &responder);

    Handler handler_;
};

} // namespace quillmar::demo
