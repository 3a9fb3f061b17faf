#include "account_fixture.h"
#include "bad_replies.h"
#include "tests/support/tls_service/hasty_network.h"

#include <QTest>

using namespace quillmar::test;

namespace
{

QByteArray productsJson(const QJsonValue &products)
{
    return TlsService::json(200, {{QStringLiteral("products"), products}});
}

} // namespace

class AccountProductsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refreshSendsOneAuthenticatedGet();
    void refreshIsNothingWhenSignedOut();
    void refreshButtonIsOffWhileUnderWay();
    void stepsOfARefresh();
    void emptyCatalogue();
    void arrayGoesWholeToTheList();
    void productsOfAnotherType_data();
    void productsOfAnotherType();
    void badReply_data();
    void badReply();
    void unreachable();
    void refusedSession_data();
    void refusedSession();
    void twoQuickRefreshes();
    void failureAfterLogin();
    void manyInterimReplies();
    void bodyOverTheLimitIsCutOff();
    void silenceEndsAtTheTimeOut_data();
    void silenceEndsAtTheTimeOut();
    void packedBodyThatGrowsWithoutEnd();
};

void AccountProductsTest::refreshSendsOneAuthenticatedGet()
{
    AccountFixture f;
    f.signInWell();
    f.account->refreshProducts();
    QTRY_COMPARE(f.service.count("products"), 2);
    const WireRequest request = f.service.requests().last();
    QCOMPARE(request.method, QByteArray("GET"));
    QCOMPARE(request.target, QByteArray("/wp-json/quillmar/v1/products"));
    QCOMPARE(request.header("authorization"), QByteArray("Bearer t0ken"));
    QVERIFY(request.body.isEmpty());
    QVERIFY(!request.hasHeader("content-type"));
}

void AccountProductsTest::refreshIsNothingWhenSignedOut()
{
    AccountFixture f;
    f.account->refreshProducts();
    QVERIFY(f.isQuiet());
    QVERIFY(f.view->calls.isEmpty());
}

void AccountProductsTest::refreshButtonIsOffWhileUnderWay()
{
    AccountFixture f;
    f.signInWell();
    f.hold("products");
    f.account->refreshProducts();
    QTRY_COMPARE(f.held.size(), 1);
    QVERIFY(!f.view->refreshEnabled);
    f.held.first().send(goodProducts());
    QTRY_VERIFY(f.view->refreshEnabled);
}

void AccountProductsTest::stepsOfARefresh()
{
    AccountFixture f;
    f.signInWell();
    f.account->refreshProducts();
    QVERIFY(f.settles());
    const QStringList expected{QStringLiteral("refresh off"), QStringLiteral("refresh on"),
                               QStringLiteral("products 2"), QStringLiteral("hide message")};
    QCOMPARE(f.view->calls, expected);
    QCOMPARE(f.session.generation(), 1U);
}

void AccountProductsTest::emptyCatalogue()
{
    AccountFixture f;
    f.signInWell();
    f.answer("products", productsJson(QJsonArray()));
    f.account->refreshProducts();
    QTRY_COMPARE(f.view->productsMessage, QStringLiteral("Products.Empty"));
    QVERIFY(f.view->productsMessageVisible);
    QVERIFY(f.view->products.isEmpty());
}

void AccountProductsTest::arrayGoesWholeToTheList()
{
    AccountFixture f;
    f.signInWell();
    const QJsonArray mixed{1, QStringLiteral("text"), QJsonValue(), QJsonObject{{QStringLiteral("a"), 1}}};
    f.answer("products", productsJson(mixed));
    f.account->refreshProducts();
    QTRY_COMPARE(f.view->products, mixed);
}

void AccountProductsTest::productsOfAnotherType_data()
{
    QTest::addColumn<QJsonValue>("products");
    QTest::newRow("null") << QJsonValue();
    QTest::newRow("bool") << QJsonValue(true);
    QTest::newRow("number") << QJsonValue(1.5);
    QTest::newRow("text") << QJsonValue(QStringLiteral("[]"));
    QTest::newRow("object") << QJsonValue(QJsonObject());
}

void AccountProductsTest::productsOfAnotherType()
{
    QFETCH(const QJsonValue, products);
    AccountFixture f;
    f.signInWell();
    f.answer("products", productsJson(products));
    f.account->refreshProducts();
    QTRY_COMPARE(f.view->productsMessage, QStringLiteral("Products.Failed"));
    QVERIFY(f.view->productsMessageVisible);
    QCOMPARE(f.view->products.size(), 2);
}

void AccountProductsTest::badReply_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("thenClose");
    for (const BadReply &reply : badReplies(R"({"products": []})")) {
        QTest::newRow(reply.name) << reply.bytes << reply.thenClose;
    }
}

void AccountProductsTest::badReply()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, thenClose);
    AccountFixture f;
    f.signInWell();
    f.answer("products", bytes, thenClose);
    f.account->refreshProducts();
    QVERIFY(f.settles());
    QCOMPARE(f.view->productsMessage, QStringLiteral("Products.Failed"));
    QVERIFY(f.view->productsMessageVisible);
    QVERIFY(f.view->refreshEnabled);
    QCOMPARE(f.view->products.size(), 2);
    QCOMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
    QCOMPARE(f.session.token(), QStringLiteral("t0ken"));

    f.answerWell();
    f.account->refreshProducts();
    QVERIFY(f.settles());
    QVERIFY(!f.view->productsMessageVisible);
}

void AccountProductsTest::unreachable()
{
    AccountFixture f;
    f.signInWell();
    f.service.setUnreachable(true);
    f.network->clearConnectionCache();
    f.account->refreshProducts();
    QTRY_COMPARE(f.view->productsMessage, QStringLiteral("Products.Failed"));
    QVERIFY(f.session.isSignedIn());
}

void AccountProductsTest::refusedSession_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("401") << TlsService::response(401, "{}");
    QTest::newRow("403") << TlsService::response(403, "{}");
    QTest::newRow("403 with products") << TlsService::response(403, R"({"products": []})");
    QTest::newRow("401 that asks for a password")
        << TlsService::response(401, {}, {}, {{"WWW-Authenticate", "Basic realm=\"x\""}});
}

void AccountProductsTest::refusedSession()
{
    QFETCH(const QByteArray, answer);
    AccountFixture f;
    f.signInWell();
    f.answer("products", answer);
    f.account->refreshProducts();
    QTRY_COMPARE(f.view->status, QStringLiteral("red Session.Expired"));
    QCOMPARE(f.view->screen, RecordingView::Screen::SignIn);
    QVERIFY(!f.session.isSignedIn());
    QVERIFY(f.store.token.isEmpty());
    QVERIFY(f.view->products.isEmpty());
    QVERIFY(f.view->refreshEnabled);
    QCOMPARE(f.service.count("products"), 2);
}

void AccountProductsTest::twoQuickRefreshes()
{
    AccountFixture f;
    f.signInWell();
    f.hold("products");
    f.account->refreshProducts();
    f.account->refreshProducts();
    QTRY_COMPARE(f.held.size(), 2);
    f.held[0].send(productsJson(QJsonArray()));
    QTRY_COMPARE(f.view->productsMessage, QStringLiteral("Products.Empty"));
    f.held[1].send(goodProducts());
    QTRY_COMPARE(f.view->products.size(), 2);
    QVERIFY(!f.view->productsMessageVisible);
    QVERIFY(f.view->refreshEnabled);
}

void AccountProductsTest::failureAfterLogin()
{
    AccountFixture f;
    f.answerWell();
    f.answer("products", TlsService::response(500, {}));
    f.account->signIn();
    QTRY_COMPARE(f.view->productsMessage, QStringLiteral("Products.Failed"));
    QCOMPARE(f.view->screen, RecordingView::Screen::Home);
    QCOMPARE(f.view->status, QStringLiteral("green Status.LoginSuccess"));
    QVERIFY(f.session.isSignedIn());
}

void AccountProductsTest::manyInterimReplies()
{
    AccountFixture f;
    f.signInWell();
    f.view->products = {};
    f.answer("products", QByteArray("HTTP/1.1 100 Continue\r\n\r\n").repeated(1'000) + goodProducts());
    f.account->refreshProducts();
    QTRY_COMPARE(f.view->products.size(), 2);
}

void AccountProductsTest::bodyOverTheLimitIsCutOff()
{
    AccountFixture f;
    f.signInWell();
    const QByteArray filler(quillmar::MaximumJsonReplySize, ' ');
    f.answer("products", TlsService::response(200, "{\"products\": []" + filler + '}'));
    f.account->refreshProducts();
    QVERIFY(f.settles());
    QCOMPARE(f.view->productsMessage, QStringLiteral("Products.Failed"));
    QCOMPARE(f.view->products.size(), 2);
    QVERIFY(f.view->refreshEnabled);
    QVERIFY(f.session.isSignedIn());
}

void AccountProductsTest::silenceEndsAtTheTimeOut_data()
{
    QTest::addColumn<QByteArray>("begin");
    QTest::newRow("no answer at all") << QByteArray();
    QTest::newRow("in the header") << QByteArray("HTTP/1.1 200 OK\r\nContent-Ty");
    QTest::newRow("in the body") << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"products\"");
}

void AccountProductsTest::silenceEndsAtTheTimeOut()
{
    QFETCH(const QByteArray, begin);
    AccountFixture f(std::make_unique<HastyNetwork>());
    f.signInWell();
    f.answer("products", begin);
    f.account->refreshProducts();
    QTRY_COMPARE(f.view->productsMessage, QStringLiteral("Products.Failed"));
    QVERIFY(f.view->refreshEnabled);
    QVERIFY(f.session.isSignedIn());
    QCOMPARE(f.view->products.size(), 2);
}

/// 200 MiB of blanks around a good list, in 200 KiB on the wire.
void AccountProductsTest::packedBodyThatGrowsWithoutEnd()
{
    AccountFixture f;
    f.signInWell();
    const QByteArray packed =
        qCompress("{\"products\": [" + QByteArray(qsizetype(200) << 20, ' ') + "]}").mid(4);
    f.answer("products",
             TlsService::response(200, packed, "application/json", {{"Content-Encoding", "deflate"}}));
    f.account->refreshProducts();
    QTRY_COMPARE(f.view->productsMessage, QStringLiteral("Products.Failed"));
    QCOMPARE(f.view->products.size(), 2);
    f.answerWell();
    f.account->refreshProducts();
    QVERIFY(f.settles());
    QVERIFY(!f.view->productsMessageVisible);
}

QTEST_GUILESS_MAIN(AccountProductsTest)
#include "account_products_test.moc"
