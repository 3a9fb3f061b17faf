#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QHash>
#include <QString>

#include <chrono>

namespace quillmar::demo
{

struct Account;

/// Download tickets: each opens one package, once, for a short while. One thread.
class Tickets
{
public:
    explicit Tickets(std::chrono::milliseconds lifetime) : lifetime_(lifetime) {}

    struct Ticket {
        Account *account = nullptr;
        QString productKey;
        QDeadlineTimer deadline;
    };
    enum class State { Good, Unknown, Expired };
    struct Redemption {
        State state = State::Unknown;
        Ticket ticket;
    };

    QByteArray issue(Account &account, const QString &productKey);

    /// Takes the ticket out of circulation, whatever its state. A used ticket is unknown.
    Redemption redeem(const QByteArray &secret);

    std::chrono::milliseconds lifetime() const { return lifetime_; }

private:
    void dropExpired();

    std::chrono::milliseconds lifetime_;
    QHash<QByteArray, Ticket> open_;
};

} // namespace quillmar::demo
