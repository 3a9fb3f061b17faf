#pragma once

#include "demo/service/accounts.h"
#include "demo/service/answer.h"
#include "demo/service/catalogue_folder.h"
#include "demo/service/request_checks.h"
#include "demo/service/tickets.h"

#include <QHttpServerRequest>
#include <QSet>

namespace quillmar::demo
{

/// Answers requests: finds the route, applies its rules, runs it. Holds the state of the service (sessions,
/// tickets, quotas). One thread; nothing blocks but the start of a file.
class ServiceRoutes
{
public:
    /// `host` is the name that requests must ask for.
    ServiceRoutes(QString host, std::chrono::milliseconds ticketLifetime);

    CatalogueFolder &catalogue() { return catalogue_; }

    Answer answer(const QHttpServerRequest &request);

private:
    using Handler = Answer (ServiceRoutes::*)(const QHttpServerRequest &request, Account *account);
    struct Route {
        RequestRules rules;
        Handler handler = nullptr;
    };

    Answer run(const Route &route, const QHttpServerRequest &request);

    Answer login(const QHttpServerRequest &request, Account *account);
    Answer logout(const QHttpServerRequest &request, Account *account);
    Answer products(const QHttpServerRequest &request, Account *account);
    Answer downloadQuota(const QHttpServerRequest &request, Account *account);
    Answer downloadTicket(const QHttpServerRequest &request, Account *account);
    Answer downloadFile(const QHttpServerRequest &request, Account *account);
    Answer pluginVersion(const QHttpServerRequest &request, Account *account);
    Answer preview(const QHttpServerRequest &request, Account *account);
    Answer downloadPage(const QHttpServerRequest &request, Account *account);

    QString host_;
    QHash<QString, Route> routes_;
    Accounts accounts_;
    Tickets tickets_;
    CatalogueFolder catalogue_;
    QSet<QString> steadied_; ///< names of unsteady previews that have failed once
};

} // namespace quillmar::demo
