#include "module_host.h"
#include "tests/support/tls_service/tls_service.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>

using namespace quillmar;
using test::Host;
using test::LibobsFake;
using test::TlsService;

class PluginModuleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheExactEnglishCodeStartsInEnglish_data();
    void onlyTheExactEnglishCodeStartsInEnglish();
    void withoutAConfigurationFolderThePanelIsPersianAndNothingIsReadOrWritten();
    void loadingLogsItsSteps();
    void withoutABinaryPathNothingIsAddedOrLogged();
    void theDockIsRegisteredOnce();
    void aRefusedDockIsLoggedAndNothingIsStarted();
    void aKeptSessionIsTakenUpBeforeTheUserDoesAnything();
    void withoutAKeptSessionNothingIsAskedOfTheAccount();
    void unloadingRemovesTheDockAndLogs();
    void unloadingAfterThePanelHasDied();
    void aReplyThatArrivesAfterUnloadingIsIgnored();
    void aReplyThatArrivesAfterThePanelHasDiedIsIgnored();
    void nothingOfObsIsKeptAfterUnloading();
};

void PluginModuleTest::onlyTheExactEnglishCodeStartsInEnglish_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("signInText");
    const QString persian = QStringLiteral("ورود");
    QTest::newRow("en-US") << QByteArray("[General]\nlanguage=en-US\n") << QStringLiteral("Sign in");
    QTest::newRow("en-us, other case") << QByteArray("[General]\nlanguage=en-us\n") << persian;
    QTest::newRow("fa-IR") << QByteArray("[General]\nlanguage=fa-IR\n") << persian;
    QTest::newRow("nothing") << QByteArray() << persian;
    QTest::newRow("another language") << QByteArray("[General]\nlanguage=de-DE\n") << persian;
    QTest::newRow("noise") << QByteArray("\0\xff[[[=\n", 7) << persian;
}

void PluginModuleTest::onlyTheExactEnglishCodeStartsInEnglish()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, signInText);
    Host host;
    host.writeSettings(settings);
    QVERIFY(host.module.load());
    QVERIFY(host.button(signInText) != nullptr);
    const bool isPersian = signInText != QStringLiteral("Sign in");
    QCOMPARE(host.panel()->layoutDirection(), isPersian ? Qt::RightToLeft : Qt::LeftToRight);
    host.module.unload();
}

void PluginModuleTest::withoutAConfigurationFolderThePanelIsPersianAndNothingIsReadOrWritten()
{
    Host host;
    host.obs.setConfigFolder(QByteArray());
    host.writeSettings("[General]\nlanguage=en-US\n");
    const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
    const QStringList here = QDir::current().entryList(all);
    QVERIFY(host.module.load());
    QVERIFY(host.button(QStringLiteral("ورود")) != nullptr);

    const QList<QComboBox *> selectors = host.panel()->findChildren<QComboBox *>();
    selectors.constFirst()->setCurrentIndex(1);
    QVERIFY(host.button(QStringLiteral("Sign in")) != nullptr);
    selectors.constFirst()->setCurrentIndex(0);
    host.module.unload();
    QCOMPARE(QDir::current().entryList(all), here);
    QCOMPARE(host.settings(), QByteArray("[General]\nlanguage=en-US\n"));
    QCOMPARE(host.logLines().filter(QStringLiteral("language")), QStringList());
}

void PluginModuleTest::loadingLogsItsSteps()
{
    Host host;
    QVERIFY(host.module.load());
    const QString folder = host.folder.path() + QStringLiteral("/bin");
    const QStringList expected{
        QStringLiteral("300 [quillmar-obs-plugin] plugin loaded successfully (version 0.1.3)"),
        QStringLiteral("300 [quillmar-obs-plugin] Qt plugin path added: ") + folder,
        QStringLiteral("300 [quillmar-obs-plugin] Quillmar dock added successfully"),
    };
    QCOMPARE(host.logLines(), expected);
    host.module.unload();
}

void PluginModuleTest::withoutABinaryPathNothingIsAddedOrLogged()
{
    Host host;
    host.obs.setModuleBinary(QByteArray());
    const QStringList before = QCoreApplication::libraryPaths();
    QVERIFY(host.module.load());
    QCOMPARE(QCoreApplication::libraryPaths(), before);
    QCOMPARE(host.logLines().filter(QStringLiteral("Qt plugin path")), QStringList());
    host.module.unload();
}

void PluginModuleTest::theDockIsRegisteredOnce()
{
    Host host;
    QVERIFY(host.module.load());
    QCOMPARE(host.obs.count(QStringLiteral("obs_frontend_add_dock_by_id")), 1);
    QVERIFY(host.panel() != nullptr);
    QCOMPARE(host.panel()->minimumWidth(), 300);
    host.module.unload();
}

void PluginModuleTest::aRefusedDockIsLoggedAndNothingIsStarted()
{
    TlsService service;
    Host host(QStringLiteral("kept"));
    host.obs.refuseDock(true);
    QVERIFY(!host.module.load());
    QCOMPARE(host.logLines().constLast(),
             QStringLiteral("100 [quillmar-obs-plugin] Failed to add Quillmar dock"));
    QCoreApplication::processEvents();
    QCOMPARE(service.connects().size(), 0);
}

void PluginModuleTest::aKeptSessionIsTakenUpBeforeTheUserDoesAnything()
{
    TlsService service;
    QList<test::WireConnection> held;
    QByteArray authorization;
    service.handleRoute("products", [&](const test::WireRequest &request, test::WireConnection &connection) {
        authorization = request.header("authorization");
        held.append(connection);
    });
    Host host(QStringLiteral("kept"));
    QVERIFY(host.module.load());
    QVERIFY(!host.button(QStringLiteral("ورود"))->isEnabled());
    QTRY_COMPARE(service.count("products"), 1);
    QTRY_COMPARE(held.size(), 1);
    QCOMPARE(authorization, "Bearer kept");
    held.first().send(TlsService::json(200, {{QStringLiteral("products"), QJsonArray()}}));
    QTRY_VERIFY(host.button(QStringLiteral("ورود"))->isEnabled());
    host.module.unload();
}

void PluginModuleTest::withoutAKeptSessionNothingIsAskedOfTheAccount()
{
    TlsService service;
    Host host;
    QVERIFY(host.module.load());
    QVERIFY(host.button(QStringLiteral("ورود"))->isEnabled());
    QTRY_COMPARE(service.count("plugin-version"), 1);
    QCOMPARE(service.requests().size(), 1);
    host.module.unload();
}

void PluginModuleTest::unloadingRemovesTheDockAndLogs()
{
    Host host;
    QVERIFY(host.module.load());
    const QPointer<QWidget> panel = host.panel();
    host.module.unload();
    QVERIFY(panel.isNull());
    QCOMPARE(host.obs.calls().constLast(), QStringLiteral("obs_frontend_remove_dock quillmar-dock"));
    QCOMPARE(host.logLines().constLast(), QStringLiteral("300 [quillmar-obs-plugin] plugin unloaded"));
}

void PluginModuleTest::unloadingAfterThePanelHasDied()
{
    Host host;
    QVERIFY(host.module.load());
    delete host.panel();
    host.module.unload();
    QCOMPARE(host.obs.count(QStringLiteral("obs_frontend_remove_dock")), 0);
    QCOMPARE(host.logLines().constLast(), QStringLiteral("300 [quillmar-obs-plugin] plugin unloaded"));
}

void PluginModuleTest::aReplyThatArrivesAfterUnloadingIsIgnored()
{
    TlsService service;
    QList<test::WireConnection> held;
    service.handleRoute("login", [&held](const test::WireRequest &, test::WireConnection &connection) {
        held.append(connection);
    });
    Host host;
    QVERIFY(host.module.load());
    host.signIn();
    QTRY_COMPARE(held.size(), 1);
    host.module.unload();
    const qsizetype lines = host.obs.log().size();
    held.first().send(TlsService::json(200, {{QStringLiteral("token"), QStringLiteral("late")}}));
    QTRY_VERIFY(!held.first().isOpen());
    QCOMPARE(host.obs.log().size(), lines);
    QCOMPARE(service.count("login"), 1);
    QCOMPARE(service.count("products"), 0);
}

void PluginModuleTest::aReplyThatArrivesAfterThePanelHasDiedIsIgnored()
{
    TlsService service;
    QList<test::WireConnection> held;
    service.handleRoute("login", [&held](const test::WireRequest &, test::WireConnection &connection) {
        held.append(connection);
    });
    Host host;
    QVERIFY(host.module.load());
    host.signIn();
    QTRY_COMPARE(held.size(), 1);
    delete host.panel();
    held.first().send(TlsService::json(200, {{QStringLiteral("token"), QStringLiteral("late")}}));
    QTRY_VERIFY(!held.first().isOpen());
    host.module.unload();
    QCOMPARE(service.count("products"), 0);
    QCOMPARE(host.logLines().filter(QStringLiteral("login")), QStringList());
}

void PluginModuleTest::nothingOfObsIsKeptAfterUnloading()
{
    Host host;
    QVERIFY(host.module.load());
    host.module.unload();
    host.locale.clear();
    QCOMPARE(host.obs.outstanding(), LibobsFake::Outstanding{});
    QCOMPARE(host.obs.misuse(), QStringList());
}

QTEST_MAIN(PluginModuleTest)
#include "plugin_module_test.moc"
