#include "demo/service/tickets.h"

#include "demo/service/accounts.h"

namespace quillmar::demo
{
namespace
{

/// Expired tickets are told apart from unknown ones until this many are open.
constexpr qsizetype kOpenTickets = 1000;

} // namespace

QByteArray Tickets::issue(Account &account, const QString &productKey)
{
    if (open_.size() >= kOpenTickets)
        dropExpired();
    const QByteArray secret = randomSecret();
    open_.insert(secret, {&account, productKey, QDeadlineTimer(lifetime_)});
    return secret;
}

Tickets::Redemption Tickets::redeem(const QByteArray &secret)
{
    const auto found = open_.constFind(secret);
    if (found == open_.constEnd())
        return {};
    const Ticket ticket = *found;
    open_.erase(found);
    return {ticket.deadline.hasExpired() ? State::Expired : State::Good, ticket};
}

void Tickets::dropExpired()
{
    open_.removeIf([](const auto &entry) { return entry.value().deadline.hasExpired(); });
}

} // namespace quillmar::demo
