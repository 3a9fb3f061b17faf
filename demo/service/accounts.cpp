#include "demo/service/accounts.h"

#include <QDateTime>
#include <QRandomGenerator>
#include <QTimeZone>

#include <array>

using namespace Qt::StringLiterals;

namespace quillmar::demo
{
namespace
{

Account ordinary(const QString &name)
{
    Account account;
    account.name = name;
    account.password = name;
    account.quota.renew(QDateTime::currentDateTimeUtc().date());
    return account;
}

std::vector<Account> demoAccounts()
{
    Account wary = ordinary(u"wary"_s);
    wary.password = u"Saffron-Lantern-4711"_s;
    Account exhausted = ordinary(u"quota"_s);
    exhausted.quota.usedAtDawn = exhausted.quota.used = exhausted.quota.limit;
    Account expiring = ordinary(u"expired"_s);
    expiring.requestsPerSession = 2; // what a sign-in asks for: the quota and the list
    Account elsewhere = ordinary(u"country"_s);
    elsewhere.countryAllowed = false;
    Account empty = ordinary(u"empty"_s);
    empty.hasProducts = false;
    empty.quota.unlimited = true;
    Account many = ordinary(u"many"_s);
    many.hasManyProducts = true;
    return {ordinary(u"demo"_s), wary, exhausted, expiring, elsewhere, empty, many};
}

} // namespace

void Quota::renew(QDate today)
{
    if (day == today)
        return;
    day = today;
    used = usedAtDawn;
}

QJsonObject Quota::toJson() const
{
    QJsonObject object{{u"success"_s, true},
                       {u"enabled"_s, true},
                       {u"unlimited"_s, unlimited},
                       {u"allow_redownload"_s, false},
                       {u"used"_s, used}};
    if (unlimited) {
        object.insert(u"reset_at"_s, QJsonValue::Null);
        return object;
    }
    object.insert(u"period"_s, u"daily"_s);
    object.insert(u"limit"_s, limit);
    object.insert(u"remaining"_s, qMax<qint64>(limit - used, 0));
    object.insert(u"reset_at"_s, day.addDays(1).startOfDay(QTimeZone::UTC).toString(Qt::ISODateWithMs));
    return object;
}

Accounts::Accounts() : accounts_(demoAccounts()) {}

Account *Accounts::find(const QString &name, const QString &password)
{
    for (Account &account : accounts_) {
        if (account.name == name && account.password == password)
            return &account;
    }
    return nullptr;
}

QByteArray Accounts::openSession(Account &account)
{
    const QByteArray token = randomSecret();
    sessions_.insert(token, {&account, account.requestsPerSession});
    return token;
}

Account *Accounts::authenticate(const QByteArray &token)
{
    const auto session = sessions_.find(token);
    if (session == sessions_.end())
        return nullptr;
    if (session->requestsLeft == 0) {
        sessions_.erase(session);
        return nullptr;
    }
    if (session->requestsLeft > 0)
        --session->requestsLeft;
    session->account->quota.renew(QDateTime::currentDateTimeUtc().date());
    return session->account;
}

QByteArray randomSecret()
{
    std::array<quint32, 8> words{};
    QRandomGenerator::system()->fillRange(words.data(), words.size());
    const QByteArrayView bytes(reinterpret_cast<const char *>(words.data()), sizeof(words));
    return bytes.toByteArray().toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

} // namespace quillmar::demo
