#include "bad_replies.h"
#include "quota_fixture.h"
#include "service/routes.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

/// What the quota display asks for, which answers it takes, and which come too late.
class QuotaRepliesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestCarriesTheTokenOfItsMoment();
    void badReplyIsUnavailable_data();
    void badReplyIsUnavailable();
    void tooLargeReplyIsUnavailable();
    void unreachableServiceIsUnavailable();
    void badCertificateIsUnavailable_data();
    void badCertificateIsUnavailable();
    void redirectIsNotFollowed_data();
    void redirectIsNotFollowed();
    void refusalClearsThenCalls_data();
    void refusalClearsThenCalls();
    void refusalWithoutACallback();
    void challengeIsNotAnswered();
    void callbackMayDeleteTheLabel();
    void callbackMayRefreshAgain();
    void firstOfTwoRefreshesArrivingLastIsIgnored();
    void firstOfTwoRefreshesArrivingFirstIsIgnored();
    void replyThatIsTooLate_data();
    void replyThatIsTooLate();
    void refusalThatIsTooLate_data() { replyThatIsTooLate_data(); }
    void refusalThatIsTooLate();
    void abortAtSignOutChangesNothing();
    void labelDiesBeforeTheReply();
    void managerDiesBeforeTheReply();
    void withoutAManagerTheLabelIsCleared();
};

void QuotaRepliesTest::requestCarriesTheTokenOfItsMoment()
{
    QuotaFixture f;
    f.session.replace(u"tökén"_s);
    f.answer(quotaReply(7));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    const WireRequest request = f.service.requests().constFirst();
    QCOMPARE(request.method, "GET");
    QCOMPARE(request.target, "/wp-json/quillmar/v1/download-quota");
    QCOMPARE(request.header("authorization"), QByteArray("Bearer ") + QByteArray("tökén"));
    QVERIFY(request.body.isEmpty());
}

void QuotaRepliesTest::badReplyIsUnavailable_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("thenClose");
    for (const BadReply &bad : badReplies(QJsonDocument(quotaObject(7, 25)).toJson(QJsonDocument::Compact)))
        QTest::newRow(bad.name) << bad.bytes << bad.thenClose;
}

void QuotaRepliesTest::badReplyIsUnavailable()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, thenClose);
    QuotaFixture f;
    f.answer(bytes, thenClose);
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.label->text(), f.text("Quota.Unavailable"));
    QVERIFY(!f.label->isHidden());
    QCOMPARE(f.events, QStringList());
}

void QuotaRepliesTest::tooLargeReplyIsUnavailable()
{
    QuotaFixture f;
    f.answer(
        TlsService::response(200, QJsonDocument(quotaObject(7, 25)).toJson() + QByteArray(1024 * 1024, ' ')));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.label->text(), f.text("Quota.Unavailable"));
}

void QuotaRepliesTest::unreachableServiceIsUnavailable()
{
    QuotaFixture f;
    f.service.setUnreachable(true);
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.label->text(), f.text("Quota.Unavailable"));
    QVERIFY(!f.label->isHidden());
}

void QuotaRepliesTest::badCertificateIsUnavailable_data()
{
    QTest::addColumn<TlsService::Certificate>("certificate");
    QTest::newRow("self-signed") << TlsService::Certificate::SelfSigned;
    QTest::newRow("wrong name") << TlsService::Certificate::WrongName;
    QTest::newRow("expired") << TlsService::Certificate::Expired;
}

void QuotaRepliesTest::badCertificateIsUnavailable()
{
    QFETCH(const TlsService::Certificate, certificate);
    QuotaFixture f;
    f.service.useCertificate(certificate);
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.label->text(), f.text("Quota.Unavailable"));
    QCOMPARE(f.service.requests().size(), 0);
}

void QuotaRepliesTest::redirectIsNotFollowed_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("location");
    const QByteArray same = "https://" + routes::serviceHost().toLatin1() + "/elsewhere";
    for (const int status : {301, 302, 303, 307, 308}) {
        for (const QByteArray &location :
             {same, QByteArray("/elsewhere"), QByteArray("https://evil.example/elsewhere"),
              QByteArray("http://evil.example/"), QByteArray("file:///etc/passwd"), QByteArray("data:,{}")})
            QTest::addRow("%d %s", status, location.constData()) << status << location;
    }
}

void QuotaRepliesTest::redirectIsNotFollowed()
{
    QFETCH(const int, status);
    QFETCH(const QByteArray, location);
    QuotaFixture f;
    f.answer(TlsService::response(status, "{}", "application/json", {{"Location", location}}));
    f.service.handle("/elsewhere", TlsService::always(quotaReply(7)));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.label->text(), f.text("Quota.Unavailable"));
    QCOMPARE(f.service.requests().size(), 1);
    QCOMPARE(f.service.connects(), QList<QByteArray>{routes::serviceHost().toLatin1() + ":443"});
}

void QuotaRepliesTest::refusalClearsThenCalls_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("401") << 401;
    QTest::newRow("403") << 403;
}

void QuotaRepliesTest::refusalClearsThenCalls()
{
    QFETCH(const int, status);
    QuotaFixture f;
    f.answer(TlsService::json(status, quotaObject(7, 25)));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.events, QStringList{u"expired, hidden"_s});
    QVERIFY(f.label->isHidden());
    QCOMPARE(f.label->text(), f.text("Quota.Unavailable"));
}

void QuotaRepliesTest::refusalWithoutACallback()
{
    QuotaFixture f;
    f.label->setSessionExpired({});
    f.answer(TlsService::response(401, "{}"));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QVERIFY(f.label->isHidden());
}

void QuotaRepliesTest::challengeIsNotAnswered()
{
    QuotaFixture f;
    f.answer(
        TlsService::response(401, "{}", "application/json", {{"WWW-Authenticate", "Basic realm=\"x\""}}));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.service.requests().size(), 1);
    QCOMPARE(f.events.size(), 1);
}

void QuotaRepliesTest::callbackMayDeleteTheLabel()
{
    QuotaFixture f;
    f.label->setSessionExpired([&f, alive = QByteArray("captured")] {
        f.label.reset();
        f.events.append(QString::fromLatin1(alive));
    });
    f.answer(TlsService::response(403, "{}"));
    f.label->refresh();
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.events, QStringList{u"captured"_s});
    QVERIFY(!f.label);
}

void QuotaRepliesTest::callbackMayRefreshAgain()
{
    QuotaFixture f;
    f.label->setSessionExpired([&f] {
        f.session.replace(u"another"_s);
        f.answer(quotaReply(5));
        f.label->refresh();
    });
    f.answer(TlsService::response(401, "{}"));
    f.label->refresh();
    QTRY_COMPARE(f.label->text(), u"Downloads left today: 5 of 25"_s);
    QVERIFY(!f.label->isHidden());
}

void QuotaRepliesTest::firstOfTwoRefreshesArrivingLastIsIgnored()
{
    QuotaFixture f;
    f.hold();
    f.label->refresh();
    QTRY_COMPARE(f.held.size(), 1);
    f.label->refresh();
    QTRY_COMPARE(f.held.size(), 2);
    f.held[1].send(quotaReply(2));
    QTRY_COMPARE(f.label->text(), u"Downloads left today: 2 of 25"_s);
    f.held[0].send(quotaReply(1));
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.label->text(), u"Downloads left today: 2 of 25"_s);
}

void QuotaRepliesTest::firstOfTwoRefreshesArrivingFirstIsIgnored()
{
    QuotaFixture f;
    f.hold();
    f.label->refresh();
    QTRY_COMPARE(f.held.size(), 1);
    f.label->refresh();
    QTRY_COMPARE(f.held.size(), 2);
    f.held[0].send(quotaReply(1));
    QTRY_COMPARE(f.network->findChildren<QNetworkReply *>().size(), 1);
    QCOMPARE(f.label->text(), f.text("Quota.Loading"));
    f.held[1].send(quotaReply(2));
    QTRY_COMPARE(f.label->text(), u"Downloads left today: 2 of 25"_s);
}

/// What happens between the request and its answer.
void QuotaRepliesTest::replyThatIsTooLate_data()
{
    QTest::addColumn<QString>("event");
    for (const char *event : {"cleared", "signed out", "expired", "signed in again", "unloaded"})
        QTest::newRow(event) << QString::fromLatin1(event);
}

namespace
{

void happen(QuotaFixture &f, const QString &event)
{
    if (event == u"cleared"_s || event == u"signed out"_s || event == u"expired"_s)
        f.label->clear();
    if (event != u"cleared"_s)
        f.session.clear();
    if (event == u"signed in again"_s)
        f.session.replace(u"another"_s);
}

} // namespace

void QuotaRepliesTest::replyThatIsTooLate()
{
    QFETCH(const QString, event);
    QuotaFixture f;
    f.hold();
    f.label->refresh();
    QTRY_COMPARE(f.held.size(), 1);
    happen(f, event);
    const QString text = f.label->text();
    const bool hidden = f.label->isHidden();
    f.held.first().send(quotaReply(7));
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.label->text(), text);
    QCOMPARE(f.label->isHidden(), hidden);
}

void QuotaRepliesTest::refusalThatIsTooLate()
{
    QFETCH(const QString, event);
    QuotaFixture f;
    f.hold();
    f.label->refresh();
    QTRY_COMPARE(f.held.size(), 1);
    happen(f, event);
    const bool hidden = f.label->isHidden();
    f.held.first().send(TlsService::response(401, "{}"));
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.events, QStringList());
    QCOMPARE(f.label->isHidden(), hidden);
}

/// A sign-out ends the session first and then every request of it; the handlers run at once.
void QuotaRepliesTest::abortAtSignOutChangesNothing()
{
    QuotaFixture f;
    f.hold();
    f.label->refresh();
    QTRY_COMPARE(f.held.size(), 1);
    f.session.clear();
    f.label->clear();
    f.network->findChild<QNetworkReply *>()->abort();
    QTRY_VERIFY(f.isQuiet());
    QVERIFY(f.label->isHidden());
    QCOMPARE(f.events, QStringList());
}

void QuotaRepliesTest::labelDiesBeforeTheReply()
{
    QuotaFixture f;
    f.hold();
    f.label->refresh();
    QTRY_COMPARE(f.held.size(), 1);
    f.label.reset();
    f.held.first().send(TlsService::response(401, "{}"));
    QTRY_VERIFY(f.isQuiet());
    QCOMPARE(f.events, QStringList());
}

void QuotaRepliesTest::managerDiesBeforeTheReply()
{
    QuotaFixture f;
    f.hold();
    f.label->refresh();
    QTRY_COMPARE(f.held.size(), 1);
    f.network.reset();
    QTRY_VERIFY(!f.held.first().isOpen());
    QCOMPARE(f.label->text(), f.text("Quota.Loading"));
    QCOMPARE(f.events, QStringList());
}

void QuotaRepliesTest::withoutAManagerTheLabelIsCleared()
{
    QuotaFixture f;
    f.network.reset();
    f.label->refresh();
    QVERIFY(f.label->isHidden());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::QuotaRepliesTest)
#include "quota_replies_test.moc"
