#include "account_fixture.h"

#include <QCoreApplication>
#include <QTest>
#include <QTimer>

namespace quillmar::test
{

bool FakeStore::save(const QString &newToken)
{
    if (saves) {
        token = newToken;
    }
    return saves;
}

bool FakeStore::remove()
{
    ++removals;
    if (removes) {
        token.clear();
    }
    return removes;
}

AccountFixture::AccountFixture(std::unique_ptr<QNetworkAccessManager> manager) : network(std::move(manager))
{
    account = std::make_unique<Account>(session, store, *view, network.get(),
                                        [this](LogLevel level, const QString &line) {
                                            log << QString::number(int(level)) + QLatin1Char(' ') + line;
                                        });
}

void AccountFixture::answer(const QByteArray &route, const QByteArray &bytes, bool thenClose)
{
    service.handleRoute(route, [bytes, thenClose](const WireRequest &, WireConnection &connection) {
        connection.send(bytes);
        if (thenClose) {
            connection.close();
        }
    });
}

void AccountFixture::hold(const QByteArray &route)
{
    service.handleRoute(route,
                        [this](const WireRequest &, WireConnection &connection) { held.append(connection); });
}

void AccountFixture::answerWell()
{
    answer("login", goodLogin());
    answer("products", goodProducts());
    answer("logout", TlsService::response(204, {}, {}));
}

void AccountFixture::signInWell()
{
    answerWell();
    view->usernameText = QStringLiteral("sara");
    view->passwordText = QStringLiteral("s3cret");
    account->signIn();
    if (!settles() || view->screen != RecordingView::Screen::Home) {
        QTest::qFail("sign-in did not work", __FILE__, __LINE__);
    }
    view->calls.clear();
}

bool AccountFixture::isQuiet() const
{
    return network->findChildren<QNetworkReply *>().isEmpty();
}

bool AccountFixture::settles() const
{
    QTimer alarm;
    alarm.setSingleShot(true);
    alarm.start(20'000);
    while (!isQuiet() && alarm.isActive()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return isQuiet();
}

QByteArray goodLogin()
{
    return TlsService::json(200, {{QStringLiteral("token"), QStringLiteral("t0ken")}});
}

QByteArray goodProducts()
{
    return TlsService::json(200, {{QStringLiteral("products"), twoProducts()}});
}

QJsonArray twoProducts()
{
    return {QJsonObject{{QStringLiteral("product_name"), QStringLiteral("Frame")}},
            QJsonObject{{QStringLiteral("product_name"), QStringLiteral("Stinger")}}};
}

} // namespace quillmar::test
