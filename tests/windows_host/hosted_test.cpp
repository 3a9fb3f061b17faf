#include "tests/windows_host/hosted_test.h"

#include <QApplication>
#include <QFile>
#include <QTest>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

HostedTest::HostedTest(const QString &folder, const QStringList &plugins) : folder_(folder, plugins) {}

void HostedTest::languages()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("Persian") << u"fa-IR"_s;
    QTest::newRow("English") << u"en-US"_s;
}

void HostedTest::init()
{
    config_ = std::make_unique<QTemporaryDir>();
    QVERIFY(config_->isValid());
    obs_ = std::make_unique<SmallObs>(folder_, config_->path());
    module_ = std::make_unique<LoadedModule>(folder_.module());
}

void HostedTest::cleanup()
{
    if (std::exchange(isLoaded_, false))
        module_->unload();
    dock_.reset();
    module_.reset();
    obs_.reset();
    config_.reset();
}

void HostedTest::restart()
{
    dock_.reset();
    obs_.reset();
    obs_ = std::make_unique<SmallObs>(folder_, config_->path());
    module_ = std::make_unique<LoadedModule>(folder_.module());
}

void HostedTest::load(const QString &language)
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

void HostedTest::signIn(const QString &name, const QString &password)
{
    QTest::mouseClick(dock_->field(0), Qt::LeftButton);
    QTRY_VERIFY(dock_->field(0)->hasFocus());
    QTest::keyClicks(dock_->field(0), name);
    QTest::keyClick(dock_->field(0), Qt::Key_Tab);
    QVERIFY(dock_->field(1)->hasFocus());
    QTest::keyClicks(dock_->field(1), password);
    QTest::mouseClick(dock_->button(module_->text("Login.Button")), Qt::LeftButton);
}

void HostedTest::expectReadable(const QString &picture) const
{
    QTRY_COMPARE(unreadableTexts(dock_->panel()).join(u'\n'), QString());
    QVERIFY(dock_->keepPicture(picture));
}

void HostedTest::unload()
{
    module_->unload();
    isLoaded_ = false;
    QCOMPARE(obs_->log().constLast(), u"300 [quillmar-obs-plugin] plugin unloaded"_s);
    QVERIFY(obs_->obs.dock(u"quillmar-dock"_s) == nullptr);
    QCOMPARE(obs_->obs.outstanding(), LibobsFake::Outstanding{});
    QCOMPARE(obs_->obs.misuse(), QStringList());
}

int runHosted(int argc, char *argv[], const std::function<std::unique_ptr<QObject>()> &makeTest)
{
    QApplication::setStyle(u"Fusion"_s);
    QApplication application(argc, argv);
    // Once the platform plug-in is loaded nothing else of Qt's own is to be found.
    QCoreApplication::setLibraryPaths({});
    const std::unique_ptr<QObject> test = makeTest();
    return QTest::qExec(test.get(), argc, argv);
}

} // namespace quillmar::test
