#include "plugin/locale_table.h"
#include "plugin/plugin_module.h"
#include "tests/support/libobs_fake/libobs_fake.h"
#include "tests/support/tls_service/tls_service.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

using namespace quillmar;
using test::LibobsFake;
using test::TlsService;

namespace
{

/// Keeps one token, as a store on disk would.
class KeptToken : public SessionStore
{
public:
    explicit KeptToken(QString token) : token_(std::move(token)) {}
    bool save(const QString &token) override
    {
        token_ = token;
        return true;
    }
    QString load() override { return token_; }
    bool remove() override
    {
        token_.clear();
        return true;
    }

private:
    QString token_;
};

/// A module in an OBS of its own, not yet loaded.
struct Host {
    explicit Host(const QString &keptToken = {})
        : module(nullptr, locale, std::make_unique<KeptToken>(keptToken))
    {
        obs.setMainWindow(&window);
        obs.setConfigFolder(folder.path().toUtf8());
        obs.setModuleBinary(folder.path().toUtf8() + "/bin/quillmar-obs-plugin.so");
        obs.setTexts("fa-IR", {{"Login.Button", "ورود"}});
        obs.setTexts("en-US", {{"Login.Button", "Sign in"}});
    }

    void writeSettings(const QByteArray &content)
    {
        QFile file(folder.filePath(QStringLiteral("settings.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }

    QByteArray settings() const
    {
        QFile file(folder.filePath(QStringLiteral("settings.ini")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QWidget *panel() const { return obs.dock(QStringLiteral("quillmar-dock")); }

    QPushButton *button(const QString &text) const
    {
        for (QPushButton *button : panel()->findChildren<QPushButton *>()) {
            if (button->text() == text) {
                return button;
            }
        }
        return nullptr;
    }

    QStringList logLines() const
    {
        QStringList lines;
        for (const LibobsFake::LogLine &line : obs.log()) {
            lines.append(QStringLiteral("%1 %2").arg(line.level).arg(line.text));
        }
        return lines;
    }

    /// Types into both fields and presses the sign-in button.
    void signIn() const
    {
        const QList<QLineEdit *> fields = panel()->findChildren<QLineEdit *>();
        fields.at(0)->setText(QStringLiteral("sara"));
        fields.at(1)->setText(QStringLiteral("secret"));
        button(QStringLiteral("ورود"))->click();
    }

    QTemporaryDir folder;
    LibobsFake obs;
    QMainWindow window;
    LocaleTable locale;
    PluginModule module;
};

} // namespace

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
    void withoutAKeptSessionNothingIsRequested();
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
    service.handleRoute("products", [&held](const test::WireRequest &, test::WireConnection &connection) {
        held.append(connection);
    });
    Host host(QStringLiteral("kept"));
    QVERIFY(host.module.load());
    QVERIFY(!host.button(QStringLiteral("ورود"))->isEnabled());
    QTRY_COMPARE(service.count("products"), 1);
    QCOMPARE(service.requests().constFirst().header("authorization"), QByteArray("Bearer kept"));
    QTRY_COMPARE(held.size(), 1);
    held.first().send(TlsService::json(200, {{QStringLiteral("products"), QJsonArray()}}));
    QTRY_VERIFY(host.button(QStringLiteral("ورود"))->isEnabled());
    host.module.unload();
}

void PluginModuleTest::withoutAKeptSessionNothingIsRequested()
{
    TlsService service;
    Host host;
    QVERIFY(host.module.load());
    QVERIFY(host.button(QStringLiteral("ورود"))->isEnabled());
    QCoreApplication::processEvents();
    QCOMPARE(service.connects().size(), 0);
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
    QCOMPARE(service.requests().size(), 1);
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
    QCOMPARE(service.requests().size(), 1);
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
