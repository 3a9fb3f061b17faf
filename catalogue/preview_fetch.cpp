#include "catalogue/preview_fetch.h"

#include "catalogue/preview_decoder.h"
#include "service/service_reply.h"

#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillmar
{

namespace
{

constexpr int HttpOk = 200;

/// One byte more than a body may have, so that one that is too long shows.
constexpr qint64 BufferSize = MaximumPreviewSize + 1;

QNetworkRequest requestFor(const QUrl &address)
{
    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    return request;
}

} // namespace

bool isFetchablePreview(const QUrl &address)
{
    return address.isValid() && address.scheme() == "https"_L1 && !address.host().isEmpty() &&
           address.userInfo().isEmpty() && !address.hasFragment();
}

PreviewFetch::PreviewFetch(QObject *parent, PreviewDeadlines deadlines)
    : QObject(parent), deadlines_(deadlines)
{
}

PreviewFetch::~PreviewFetch()
{
    dropReply(reply_);
}

void PreviewFetch::start(QNetworkAccessManager &network, const QUrl &address)
{
    if (!isFetchablePreview(address)) {
        Q_EMIT ended({});
        return;
    }
    QNetworkRequest request = requestFor(address);
    request.setTransferTimeout(deadlines_.silence);
    reply_ = network.get(request);
    reply_->setReadBufferSize(BufferSize);
    QTimer::singleShot(deadlines_.whole, reply_.data(), &QNetworkReply::abort);
    connect(reply_, &QNetworkReply::readyRead, this, &PreviewFetch::onReadyRead);
    connect(reply_, &QNetworkReply::finished, this, &PreviewFetch::onFinished);
}

void PreviewFetch::onReadyRead()
{
    takeWhatFits();
    if (isTooLarge() && !std::exchange(wasTooLarge_, true))
        reply_->abort();
}

void PreviewFetch::takeWhatFits()
{
    if (reply_->isOpen())
        body_ += reply_->read(BufferSize - body_.size());
}

bool PreviewFetch::isTooLarge() const
{
    const qint64 announced = reply_->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    return body_.size() > MaximumPreviewSize || announced > MaximumPreviewSize;
}

void PreviewFetch::onFinished()
{
    takeWhatFits();
    wasTooLarge_ = wasTooLarge_ || isTooLarge();
    const bool isGood =
        !wasTooLarge_ && reply_->error() == QNetworkReply::NoError && httpStatus(*reply_) == HttpOk;
    reply_->disconnect(this);
    reply_->deleteLater();
    reply_ = nullptr;
    Q_EMIT ended(isGood ? std::exchange(body_, {}) : QByteArray());
}

} // namespace quillmar
