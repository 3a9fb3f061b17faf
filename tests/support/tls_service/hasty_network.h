#pragma once

#include <QNetworkAccessManager>

namespace quillmar::test
{

/// Waits a hundredth of the time that a request allows.
class HastyNetwork : public QNetworkAccessManager
{
protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *body) override
    {
        QNetworkRequest hasty(request);
        hasty.setTransferTimeout(request.transferTimeoutAsDuration() / 100);
        return QNetworkAccessManager::createRequest(operation, hasty, body);
    }
};

} // namespace quillmar::test
