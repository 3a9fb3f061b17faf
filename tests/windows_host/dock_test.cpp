#include "tests/windows_host/hosted_test.h"
#include "tests/windows_host/served_catalogue.h"
#include "tests/windows_host/service_process.h"

#include <QFile>
#include <QSslSocket>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr int DeadlineMs = 30'000;

} // namespace

/// The module as a user of OBS for Windows meets it.
class DockTest : public HostedTest
{
    Q_OBJECT

public:
    DockTest() : HostedTest(u"dock سارا"_s, {u"imageformats/qwebp.dll"_s, u"tls/qopensslbackend.dll"_s}) {}

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { service_.reset(); }
    void entryPointsAnswer();
    void signInView_data() { languages(); }
    void signInView();
    void signingIn_data() { languages(); }
    void signingIn();
    void keptSessionIsTakenUp();
    void wrongPassword();
    void mainWindowGoesFirst();

private:
    void signIn(const char *password)
    {
        HostedTest::signIn(QLatin1StringView(AccountName), QLatin1StringView(password));
    }

    std::unique_ptr<ServiceProcess> service_;
};

/// What the service is reached with comes with the module, so that is loaded once before anything else.
void DockTest::initTestCase()
{
    QTemporaryDir config;
    const SmallObs obs(folder_, config.path());
    LoadedModule module(folder_.module());
    QVERIFY(module.load());
    module.unload();
    QCOMPARE(QSslSocket::activeBackend(), u"openssl"_s);
    service_ = std::make_unique<ServiceProcess>();
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

    restart();
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
    return quillmar::test::runHosted(argc, argv, [] { return std::make_unique<quillmar::test::DockTest>(); });
}

#include "dock_test.moc"
