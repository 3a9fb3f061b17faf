#pragma once

#include "service/routes.h"
#include "service/update_checker.h"
#include "tests/support/tls_service/tls_service.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace quillmar::test
{

inline constexpr qint64 Day = 86400;
inline constexpr qint64 Hour = 3600;

/// A reply of the version route; its address is one that a user may be sent to.
inline QByteArray updateBody(const QString &version = QStringLiteral("0.2.0"))
{
    return "{\"latest_version\":\"" + version.toUtf8() + "\",\"download_url\":\"https://" +
           routes::serviceHost().toLatin1() + "/get\",\"required\":false,\"release_notes\":\"Better.\"}";
}

/// An update checker with a clock of its own, in front of a service on loopback.
struct UpdateFixture {
    struct Result {
        UpdateInfo info;
        bool available = false;
    };

    UpdateFixture() { answer(TlsService::response(200, updateBody())); }

    /// Replaces the checker by one as after a restart. Nothing is started.
    void restart(const QString &installed = QStringLiteral("0.1.3"))
    {
        checker.reset();
        checker = create(installed);
    }

    std::unique_ptr<UpdateChecker> create(const QString &installed = QStringLiteral("0.1.3"))
    {
        auto made = std::make_unique<UpdateChecker>(nullptr, installed, path, [this] { return now; });
        made->setResultCallback(
            [this](const UpdateInfo &info, bool available) { results.append({info, available}); });
        made->setLogCallback([this](const QString &line) { log.append(line); });
        return made;
    }

    void answer(const QByteArray &bytes, bool thenClose = false)
    {
        service.handleRoute("plugin-version", [=](const WireRequest &, WireConnection &connection) {
            connection.send(bytes);
            if (thenClose)
                connection.close();
        });
    }

    void hold()
    {
        service.handleRoute("plugin-version", [this](const WireRequest &, WireConnection &connection) {
            held.append(connection);
        });
    }

    /// Writes the settings as another program could.
    void writeSettings(const QByteArray &content) const
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            QTest::qFail("the settings cannot be written", __FILE__, __LINE__);
    }

    /// What a check at `time` that got `body` leaves behind.
    void keep(const QByteArray &body, qint64 lastSuccess, qint64 lastAttempt) const
    {
        QSettings settings(path, QSettings::IniFormat);
        settings.setValue("Updates/response", body);
        settings.setValue("Updates/lastSuccess", lastSuccess);
        settings.setValue("Updates/lastAttempt", lastAttempt);
    }

    QVariant kept(const char *key) const
    {
        return QSettings(path, QSettings::IniFormat)
            .value(QStringLiteral("Updates/") + QLatin1StringView(key));
    }

    /// A request has been handed to the network and its answer has not been handled and put away.
    bool isAsking() const { return !checker->findChildren<QNetworkReply *>().isEmpty(); }

    QTimer *timer() const { return checker->findChild<QTimer *>(Qt::FindDirectChildrenOnly); }

    /// Seconds to the next check; -1 when none is planned.
    qint64 delay() const { return timer()->isActive() ? timer()->interval() / 1000 : -1; }

    TlsService service;
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("settings.ini"));
    qint64 now = 1'800'000'000;
    QStringList log;
    QList<Result> results;
    QList<WireConnection> held;
    std::unique_ptr<UpdateChecker> checker = create();
};

} // namespace quillmar::test
