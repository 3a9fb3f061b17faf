#include "tests/windows_host/served_catalogue.h"
#include "tests/windows_host/service_process.h"
#include "tests/windows_host/shown_dock.h"

#include <QApplication>
#include <QFile>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTest>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr int DeadlineMs = 30'000;

} // namespace

/// The module as a user of OBS for Windows meets it.
class DockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { service_.reset(); }
    void init();
    void cleanup();
    void entryPointsAnswer();
    void signInView_data() { languages(); }
    void signInView();
    void signingIn_data() { languages(); }
    void signingIn();
    void keptSessionIsTakenUp();
    void wrongPassword();
    void mainWindowGoesFirst();

private:
    static void languages();
    void load(const QString &language);
    void signIn(const char *password);
    void expectReadable(const QString &picture) const;
    void unload();

    const ModuleFolder folder_{u"dock سارا"_s, {u"imageformats/qwebp.dll"_s, u"tls/qopensslbackend.dll"_s}};
    std::unique_ptr<QTemporaryDir> config_;
    std::unique_ptr<SmallObs> obs_;
    std::unique_ptr<LoadedModule> module_;
    std::unique_ptr<ServiceProcess> service_;
    std::unique_ptr<ShownDock> dock_;
    bool isLoaded_ = false;
};

/// What the service is reached with comes with the module, so that is loaded once before anything else.
void DockTest::initTestCase()
{
    init();
    QVERIFY(module_->load());
    module_->unload();
    cleanup();
    QCOMPARE(QSslSocket::activeBackend(), u"openssl"_s);
    service_ = std::make_unique<ServiceProcess>();
}

void DockTest::init()
{
    config_ = std::make_unique<QTemporaryDir>();
    QVERIFY(config_->isValid());
    obs_ = std::make_unique<SmallObs>(folder_, config_->path());
    module_ = std::make_unique<LoadedModule>(folder_.module());
}

void DockTest::cleanup()
{
    if (std::exchange(isLoaded_, false))
        module_->unload();
    dock_.reset();
    module_.reset();
    obs_.reset();
    config_.reset();
}

void DockTest::languages()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("Persian") << u"fa-IR"_s;
    QTest::newRow("English") << u"en-US"_s;
}

void DockTest::load(const QString &language)
{
    QFile settings(config_->filePath(u"settings.ini"_s));
    QVERIFY(settings.open(QIODevice::WriteOnly));
    settings.write("[General]\nlanguage=" + language.toLatin1() + '\n');
    settings.close();
    isLoaded_ = module_->load();
    QVERIFY(isLoaded_);
    dock_ = std::make_unique<ShownDock>(*obs_);
    QVERIFY(QTest::qWaitForWindowActive(obs_->window.get()));
}

void DockTest::signIn(const char *password)
{
    QTest::mouseClick(dock_->field(0), Qt::LeftButton);
    QTRY_VERIFY(dock_->field(0)->hasFocus());
    QTest::keyClicks(dock_->field(0), QLatin1StringView(AccountName));
    QTest::keyClick(dock_->field(0), Qt::Key_Tab);
    QVERIFY(dock_->field(1)->hasFocus());
    QTest::keyClicks(dock_->field(1), QLatin1StringView(password));
    QTest::mouseClick(dock_->button(module_->text("Login.Button")), Qt::LeftButton);
}

/// Waits until a change of language or of what is shown has been laid out.
void DockTest::expectReadable(const QString &picture) const
{
    QTRY_COMPARE(unreadableTexts(dock_->panel()).join(u'\n'), QString());
    QVERIFY(dock_->keepPicture(picture));
}

void DockTest::unload()
{
    module_->unload();
    isLoaded_ = false;
    QCOMPARE(obs_->log().constLast(), u"300 [quillmar-obs-plugin] plugin unloaded"_s);
    QVERIFY(obs_->obs.dock(u"quillmar-dock"_s) == nullptr);
    QCOMPARE(obs_->obs.outstanding(), LibobsFake::Outstanding{});
    QCOMPARE(obs_->obs.misuse(), QStringList());
}

void DockTest::entryPointsAnswer()
{
    QCOMPARE(module_->version(), 0x1F010001U);
    QCOMPARE(module_->text("Login.Button"), "Sign in");
    QVERIFY(module_->text("No.SuchKey").isNull());
    QVERIFY(module_->load());
    QCOMPARE(module_->text("Login.Button"), "ورود");
    unload();
    QVERIFY(module_->text("Login.Button").isNull());
}

void DockTest::signInView()
{
    QFETCH(const QString, language);
    load(language);
    const bool isPersian = language == u"fa-IR"_s;
    QCOMPARE(dock_->panel().layoutDirection(), isPersian ? Qt::RightToLeft : Qt::LeftToRight);
    const int selector = dock_->language()->mapTo(&dock_->panel(), QPoint()).x();
    QCOMPARE(selector > dock_->panel().width() / 2, isPersian);
    QVERIFY(dock_->button(module_->text("Login.Button")) != nullptr);
    expectReadable(u"sign-in-"_s + language);
    unload();
}

void DockTest::signingIn()
{
    QFETCH(const QString, language);
    load(language);
    signIn(AccountPassword);
    QTRY_COMPARE_WITH_TIMEOUT(dock_->previews().size(), 2, DeadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(!dock_->previews().at(0).isNull(), DeadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(!dock_->previews().at(1).isNull(), DeadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(dock_->label("Status.LoginSuccess") != nullptr, DeadlineMs);
    expectReadable(u"products-"_s + language);

    const int other = dock_->language()->currentIndex() == 0 ? 1 : 0;
    dock_->language()->setCurrentIndex(other);
    QCOMPARE(dock_->panel().layoutDirection(), other == 0 ? Qt::RightToLeft : Qt::LeftToRight);
    expectReadable(u"products-switched-from-"_s + language);
    unload();
}

void DockTest::keptSessionIsTakenUp()
{
    load(u"en-US"_s);
    signIn(AccountPassword);
    QTRY_COMPARE_WITH_TIMEOUT(dock_->previews().size(), 2, DeadlineMs);
    unload();
    QFile session(config_->filePath(u"session.dpapi"_s));
    QVERIFY(session.open(QIODevice::ReadOnly));
    QVERIFY(!session.readAll().contains(AccountToken));
    session.close();

    dock_.reset();
    obs_.reset();
    obs_ = std::make_unique<SmallObs>(folder_, config_->path());
    module_ = std::make_unique<LoadedModule>(folder_.module());
    load(u"en-US"_s);
    QTRY_COMPARE_WITH_TIMEOUT(dock_->previews().size(), 2, DeadlineMs);
    QVERIFY(dock_->button(module_->text("Login.Button")) == nullptr);
    unload();
}

void DockTest::wrongPassword()
{
    load(u"fa-IR"_s);
    signIn("wrong");
    QTRY_VERIFY_WITH_TIMEOUT(dock_->label("Status.LoginFailed") != nullptr, DeadlineMs);
    expectReadable(u"wrong-password-fa-IR"_s);
    QVERIFY(!QFile::exists(config_->filePath(u"session.dpapi"_s)));
    unload();
}

/// As OBS closes: the main window takes the dock along before modules are unloaded.
void DockTest::mainWindowGoesFirst()
{
    load(u"fa-IR"_s);
    signIn(AccountPassword);
    QTRY_COMPARE_WITH_TIMEOUT(dock_->previews().size(), 2, DeadlineMs);
    obs_->window.reset();
    unload();
    QCOMPARE(obs_->obs.count(u"obs_frontend_remove_dock"_s), 0);
}

} // namespace quillmar::test

int main(int argc, char *argv[])
{
    QApplication::setStyle(u"Fusion"_s);
    QApplication application(argc, argv);
    // Once the platform plug-in is loaded nothing else of Qt's own is to be found.
    QCoreApplication::setLibraryPaths({});
    quillmar::test::DockTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "dock_test.moc"
