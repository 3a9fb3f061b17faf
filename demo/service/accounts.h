#pragma once

#include <QByteArray>
#include <QDate>
#include <QHash>
#include <QJsonObject>
#include <QString>

#include <vector>

namespace quillmar::demo
{

/// Downloads of one account in the current day (UTC).
struct Quota {
    bool unlimited = false;
    qint64 limit = 25;
    qint64 usedAtDawn = 0; ///< what `used` returns to when a day begins
    qint64 used = 0;
    QDate day;

    /// Begins a new day when `today` is another day than the last one.
    void renew(QDate today);
    bool isExhausted() const { return !unlimited && used >= limit; }
    void spend() { ++used; }
    /// The reply of the quota route.
    QJsonObject toJson() const;
};

/// Somebody who can sign in.
struct Account {
    QString name;
    QString password;
    bool countryAllowed = true;
    bool hasProducts = true;
    bool hasManyProducts = false; ///< the crowd of the catalogue instead of its products
    int requestsPerSession = -1;  ///< authenticated requests before a session expires; -1: any number
    Quota quota;
};

/// The accounts of the demo and their open sessions. One thread; accounts live as long as this object.
class Accounts
{
public:
    Accounts();

    /// The account with these credentials, or null.
    Account *find(const QString &name, const QString &password);

    /// A new random token for `account`. Several sessions of one account may be open.
    QByteArray openSession(Account &account);

    /// The account behind `token`, or null when the token is unknown, revoked or used up. Counts as one
    /// request.
    Account *authenticate(const QByteArray &token);

    void closeSession(const QByteArray &token) { sessions_.remove(token); }

private:
    struct Session {
        Account *account = nullptr;
        int requestsLeft = -1;
    };
    std::vector<Account> accounts_;
    QHash<QByteArray, Session> sessions_;
};

/// 256 random bits as text that is safe in a header.
QByteArray randomSecret();

} // namespace quillmar::demo
