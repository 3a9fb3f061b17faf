#pragma once

#include "service/quota_status.h"
#include "service/session.h"
#include "tests/support/locale_files.h"
#include "tests/support/tls_service/tls_service.h"

#include <QJsonDocument>
#include <QStringList>

#include <memory>

namespace quillmar::test
{

/// A reply of the quota route: `remaining` of `limit` downloads left in the period.
inline QJsonObject quotaObject(qint64 remaining, qint64 limit,
                               const QString &period = QStringLiteral("daily"))
{
    return {{QStringLiteral("success"), true},           {QStringLiteral("enabled"), true},
            {QStringLiteral("unlimited"), false},        {QStringLiteral("allow_redownload"), false},
            {QStringLiteral("used"), limit - remaining}, {QStringLiteral("reset_at"), QJsonValue::Null},
            {QStringLiteral("period"), period},          {QStringLiteral("limit"), limit},
            {QStringLiteral("remaining"), remaining}};
}

inline QByteArray quotaReply(qint64 remaining, qint64 limit = 25)
{
    return TlsService::json(200, quotaObject(remaining, limit));
}

/// A quota display of a signed-in user in front of a service on loopback.
struct QuotaFixture {
    explicit QuotaFixture(const QString &language = EnglishCode) : texts(LocaleFiles().localisation(language))
    {
        session.replace(QStringLiteral("t0ken"));
        label = std::make_unique<QuotaStatus>(session, network.get(), texts);
        label->setSessionExpired([this] {
            events.append(label->isHidden() ? QStringLiteral("expired, hidden")
                                            : QStringLiteral("expired, shown"));
        });
    }

    void answer(const QByteArray &bytes, bool thenClose = false)
    {
        service.handleRoute("download-quota", [=](const WireRequest &, WireConnection &connection) {
            connection.send(bytes);
            if (thenClose)
                connection.close();
        });
    }

    /// Takes requests and leaves them without an answer; each connection is appended to `held`.
    void hold()
    {
        service.handleRoute("download-quota", [this](const WireRequest &, WireConnection &connection) {
            held.append(connection);
        });
    }

    /// No request is under way and none waits for its deletion.
    bool isQuiet() const { return network->findChildren<QNetworkReply *>().isEmpty(); }

    QString text(const char *key) const { return texts.translate(key); }

    TlsService service;
    Session session;
    std::unique_ptr<QNetworkAccessManager> network = std::make_unique<QNetworkAccessManager>();
    Localisation texts;
    std::unique_ptr<QuotaStatus> label;
    QStringList events;
    QList<WireConnection> held;
};

} // namespace quillmar::test
