#include "module_host.h"
#include "tests/support/tls_service/tls_service.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFrame>
#include <QJsonArray>
#include <QLabel>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSettings>

using namespace Qt::StringLiterals;
using namespace quillmar;
using test::Host;
using test::TlsService;

namespace
{

QByteArray versionReply()
{
    return TlsService::json(200, {{u"latest_version"_s, u"0.2.0"_s}, {u"release_notes"_s, u"Better."_s}});
}

QByteArray quotaReply(int remaining)
{
    return TlsService::json(200, {{u"success"_s, true},
                                  {u"enabled"_s, true},
                                  {u"unlimited"_s, false},
                                  {u"allow_redownload"_s, false},
                                  {u"used"_s, 25 - remaining},
                                  {u"period"_s, u"daily"_s},
                                  {u"limit"_s, 25},
                                  {u"remaining"_s, remaining}});
}

QByteArray noProducts()
{
    return TlsService::json(200, {{u"products"_s, QJsonArray()}});
}

/// A module in front of a service that answers every route well.
struct Served {
    explicit Served(const QString &keptToken = {}) : host(keptToken)
    {
        host.obs.setTexts("fa-IR", {{"Login.Button", "ورود"}, {"Quota.Daily", "باقی %1 از %2"}});
        host.obs.setTexts("en-US", {{"Login.Button", "Sign in"}, {"Quota.Daily", "Left: %1 of %2"}});
        answer("login", TlsService::json(200, {{u"token"_s, u"t0ken"_s}}));
        answer("products", noProducts());
        answer("download-quota", quotaReply(7));
        answer("plugin-version", versionReply());
    }

    void answer(const QByteArray &route, const QByteArray &bytes)
    {
        service.handleRoute(route, TlsService::always(bytes));
    }

    void hold(const QByteArray &route)
    {
        service.handleRoute(route, [this](const test::WireRequest &, test::WireConnection &connection) {
            held.append(connection);
        });
    }

    void keepAnUpdate(qint64 age)
    {
        QSettings settings(host.folder.filePath(u"settings.ini"_s), QSettings::IniFormat);
        const qint64 time = QDateTime::currentSecsSinceEpoch() - age;
        settings.setValue("Updates/response", QByteArray(R"({"latest_version":"0.3.0"})"));
        settings.setValue("Updates/lastSuccess", time);
        settings.setValue("Updates/lastAttempt", time);
    }

    QFrame *banner() const { return host.panel()->findChild<QFrame *>(u"quillmarUpdateBanner"_s); }

    /// The label that shows a text whose key begins with `prefix`.
    QLabel *label(const QString &prefix) const
    {
        for (QLabel *label : host.panel()->findChildren<QLabel *>()) {
            if (label->property("quillmarTextKey").toString().startsWith(prefix))
                return label;
        }
        return nullptr;
    }

    QString status() const
    {
        const QLabel *label = this->label(u"Session."_s);
        return label ? label->property("quillmarTextKey").toString() : QString();
    }

    QLabel *quota() const { return label(u"Quota."_s); }

    TlsService service;
    QList<test::WireConnection> held;
    Host host;
};

} // namespace

/// Quota display and update check as the module wires them.
class PluginServicesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bannerAppearsAfterTheFirstCheck();
    void bannerOfTheCacheAppearsWithoutARequest();
    void failedCheckIsAWarning();
    void invalidAnswerLeavesTheBannerHidden();
    void refusedDockMeansNoCheck();
    void unloadingBeforeTheFirstTurnMeansNoCheck();
    void signInShowsTheQuota();
    void restoredSessionShowsTheQuota();
    void quotaFollowsTheLanguage();
    void refusedQuotaEndsTheSession_data();
    void refusedQuotaEndsTheSession();
    void unloadingDuringRequests_data();
    void unloadingDuringRequests();
    void panelDiesDuringRequests_data() { unloadingDuringRequests_data(); }
    void panelDiesDuringRequests();
};

void PluginServicesTest::bannerAppearsAfterTheFirstCheck()
{
    Served s;
    QVERIFY(s.host.module.load());
    QVERIFY(s.banner()->isHidden());
    QTRY_VERIFY(!s.banner()->isHidden());
    QCOMPARE(s.banner()->property("version").toString(), u"0.2.0"_s);
    QCOMPARE(s.service.count("plugin-version"), 1);
    const QSettings settings(s.host.folder.filePath(u"settings.ini"_s), QSettings::IniFormat);
    QVERIFY(settings.value("Updates/lastSuccess").toLongLong() > 0);
    s.host.module.unload();
}

void PluginServicesTest::bannerOfTheCacheAppearsWithoutARequest()
{
    Served s;
    s.keepAnUpdate(60);
    QVERIFY(s.host.module.load());
    QTRY_VERIFY(!s.banner()->isHidden());
    QCOMPARE(s.banner()->property("version").toString(), u"0.3.0"_s);
    QCOMPARE(s.service.connects().size(), 0);
    s.host.module.unload();
}

void PluginServicesTest::failedCheckIsAWarning()
{
    Served s;
    s.answer("plugin-version", TlsService::response(500, {}));
    QVERIFY(s.host.module.load());
    const QString line =
        u"200 [quillmar-obs-plugin] Update check unavailable (HTTP 500, network error 401)"_s;
    QTRY_COMPARE(s.host.logLines().constLast(), line);
    QVERIFY(s.banner()->isHidden());
    s.host.module.unload();
}

void PluginServicesTest::invalidAnswerLeavesTheBannerHidden()
{
    Served s;
    s.answer("plugin-version", TlsService::json(200, {{u"latest_version"_s, u"0.2.0-beta"_s}}));
    QVERIFY(s.host.module.load());
    const QString line = u"200 [quillmar-obs-plugin] Update check unavailable (HTTP 200, network error 0)"_s;
    QTRY_COMPARE(s.host.logLines().constLast(), line);
    QVERIFY(s.banner()->isHidden());
    s.host.module.unload();
}

void PluginServicesTest::refusedDockMeansNoCheck()
{
    Served s;
    s.keepAnUpdate(100 * 86400);
    s.host.obs.refuseDock(true);
    QVERIFY(!s.host.module.load());
    QCoreApplication::processEvents();
    s.host.module.unload();
    QCOMPARE(s.service.connects().size(), 0);
    QCOMPARE(s.host.logLines().filter(u"Update"_s), QStringList());
}

void PluginServicesTest::unloadingBeforeTheFirstTurnMeansNoCheck()
{
    Served s;
    QVERIFY(s.host.module.load());
    s.host.module.unload();
    QCoreApplication::processEvents();
    QCOMPARE(s.service.connects().size(), 0);
}

void PluginServicesTest::signInShowsTheQuota()
{
    Served s;
    QVERIFY(s.host.module.load());
    QVERIFY(s.quota()->isHidden());
    s.host.signIn();
    QTRY_VERIFY(s.quota() && s.quota()->text() == u"باقی 7 از 25"_s);
    QVERIFY(!s.quota()->isHidden());
    QCOMPARE(s.service.count("download-quota"), 1);
    s.host.module.unload();
}

void PluginServicesTest::restoredSessionShowsTheQuota()
{
    Served s(u"kept"_s);
    QVERIFY(s.host.module.load());
    QTRY_VERIFY(s.quota() && s.quota()->text() == u"باقی 7 از 25"_s);
    QVERIFY(!s.quota()->isHidden());
    s.host.module.unload();
}

void PluginServicesTest::quotaFollowsTheLanguage()
{
    Served s;
    QVERIFY(s.host.module.load());
    s.host.signIn();
    QTRY_VERIFY(s.quota() && s.quota()->text() == u"باقی 7 از 25"_s);
    s.host.panel()->findChild<QComboBox *>()->setCurrentIndex(1);
    QCOMPARE(s.quota()->text(), u"Left: 7 of 25"_s);
    QCOMPARE(s.quota()->layoutDirection(), Qt::LeftToRight);
    s.host.module.unload();
}

void PluginServicesTest::refusedQuotaEndsTheSession_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("401") << 401;
    QTest::newRow("403") << 403;
}

void PluginServicesTest::refusedQuotaEndsTheSession()
{
    QFETCH(const int, status);
    Served s;
    s.answer("download-quota", TlsService::response(status, "{}"));
    s.hold("products");
    QVERIFY(s.host.module.load());
    s.host.signIn();
    QTRY_COMPARE(s.status(), u"Session.Expired"_s);
    QVERIFY(s.quota()->isHidden());
    QVERIFY(s.host.button(u"ورود"_s)->isVisibleTo(s.host.panel()));
    QTRY_COMPARE(s.held.size(), 1);
    s.held.first().send(noProducts());
    QTRY_VERIFY(
        s.host.panel()->findChild<QNetworkAccessManager *>()->findChildren<QNetworkReply *>().isEmpty());
    QCOMPARE(s.status(), u"Session.Expired"_s);
    s.host.module.unload();
}

void PluginServicesTest::unloadingDuringRequests_data()
{
    QTest::addColumn<QByteArray>("route");
    QTest::addColumn<QByteArray>("late");
    QTest::newRow("update check") << QByteArray("plugin-version") << versionReply();
    QTest::newRow("update check that fails") << QByteArray("plugin-version") << TlsService::response(500, {});
    QTest::newRow("quota") << QByteArray("download-quota") << quotaReply(7);
    QTest::newRow("quota that is refused") << QByteArray("download-quota") << TlsService::response(401, {});
}

void PluginServicesTest::unloadingDuringRequests()
{
    QFETCH(const QByteArray, route);
    QFETCH(const QByteArray, late);
    Served s;
    s.hold(route);
    QVERIFY(s.host.module.load());
    s.host.signIn();
    QTRY_COMPARE(s.held.size(), 1);
    s.host.module.unload();
    const QStringList log = s.host.logLines();
    s.held.first().send(late);
    QTRY_VERIFY(!s.held.first().isOpen());
    QCOMPARE(s.host.logLines(), log);
    QCOMPARE(log.constLast(), u"300 [quillmar-obs-plugin] plugin unloaded"_s);
}

/// As when OBS closes: its main window takes the dock along before modules are unloaded.
void PluginServicesTest::panelDiesDuringRequests()
{
    QFETCH(const QByteArray, route);
    QFETCH(const QByteArray, late);
    Served s;
    s.hold(route);
    QVERIFY(s.host.module.load());
    s.host.signIn();
    QTRY_COMPARE(s.held.size(), 1);
    delete s.host.panel();
    const QStringList log = s.host.logLines();
    s.held.first().send(late);
    QTRY_VERIFY(!s.held.first().isOpen());
    QCOMPARE(s.host.logLines(), log);
    s.host.module.unload();
    QCOMPARE(s.host.logLines().constLast(), u"300 [quillmar-obs-plugin] plugin unloaded"_s);
}

QTEST_MAIN(PluginServicesTest)
#include "plugin_services_test.moc"
