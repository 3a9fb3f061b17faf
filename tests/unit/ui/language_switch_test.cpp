#include "tests/unit/ui/dock_fixture.h"
#include "ui/language_preference.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class LanguageSwitchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void choiceSwitchesAndIsSaved();
    void choiceCanBeTakenBack();
    void failedSaveWarnsAndStillSwitches();
    void withoutSettingsPathNothingIsSavedOrLogged();
    void withoutLogAFailedSaveIsSilent();
    void nothingSwitchesBeforeItIsEnabled();
    void choosingTheSameLanguageSavesNothing();

private:
    LogFunction recordLog()
    {
        return [this](LogLevel level, const QString &line) { logged_.append({level, line}); };
    }

    std::unique_ptr<QTemporaryDir> folder_;
    QList<std::pair<LogLevel, QString>> logged_;
};

void LanguageSwitchTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    QVERIFY(folder_->isValid());
    logged_.clear();
}

void LanguageSwitchTest::choiceSwitchesAndIsSaved()
{
    const QString path = folder_->filePath(u"settings.ini"_s);
    Dock dock(PersianCode);
    dock.panel.enableLanguageSwitch(path, recordLog());
    dock.selector()->setCurrentIndex(1);
    QCOMPARE(dock.texts.language(), u"en-US"_s);
    QCOMPARE(dock.button(Dock::SignIn)->text(), u"Sign in"_s);
    QCOMPARE(dock.panel.layoutDirection(), Qt::LeftToRight);
    QCOMPARE(loadLanguage(path), u"en-US"_s);
    QCOMPARE(logged_.size(), 0);
}

void LanguageSwitchTest::choiceCanBeTakenBack()
{
    const QString path = folder_->filePath(u"settings.ini"_s);
    Dock dock(PersianCode);
    dock.panel.enableLanguageSwitch(path, recordLog());
    dock.selector()->setCurrentIndex(1);
    dock.selector()->setCurrentIndex(0);
    QCOMPARE(dock.button(Dock::SignIn)->text(), u"ورود"_s);
    QCOMPARE(dock.panel.layoutDirection(), Qt::RightToLeft);
    QCOMPARE(loadLanguage(path), u"fa-IR"_s);
}

void LanguageSwitchTest::failedSaveWarnsAndStillSwitches()
{
    const QString path = folder_->filePath(u"settings.ini"_s);
    QVERIFY(QDir().mkdir(path));
    Dock dock(PersianCode);
    dock.panel.enableLanguageSwitch(path, recordLog());
    dock.selector()->setCurrentIndex(1);
    QCOMPARE(dock.button(Dock::SignIn)->text(), u"Sign in"_s);
    QCOMPARE(logged_.size(), 1);
    QCOMPARE(logged_.first().first, LogLevel::Warning);
    QCOMPARE(logged_.first().second, u"Could not save Quillmar language preference"_s);
}

void LanguageSwitchTest::withoutSettingsPathNothingIsSavedOrLogged()
{
    Dock dock(PersianCode);
    dock.panel.enableLanguageSwitch({}, recordLog());
    dock.selector()->setCurrentIndex(1);
    QCOMPARE(dock.texts.language(), u"en-US"_s);
    QCOMPARE(logged_.size(), 0);
}

void LanguageSwitchTest::withoutLogAFailedSaveIsSilent()
{
    Dock dock(PersianCode);
    dock.panel.enableLanguageSwitch(folder_->path(), {});
    dock.selector()->setCurrentIndex(1);
    QCOMPARE(dock.texts.language(), u"en-US"_s);
}

void LanguageSwitchTest::nothingSwitchesBeforeItIsEnabled()
{
    Dock dock(PersianCode);
    dock.selector()->setCurrentIndex(1);
    QCOMPARE(dock.texts.language(), u"fa-IR"_s);
}

void LanguageSwitchTest::choosingTheSameLanguageSavesNothing()
{
    const QString path = folder_->filePath(u"settings.ini"_s);
    Dock dock(PersianCode);
    dock.panel.enableLanguageSwitch(path, recordLog());
    dock.selector()->setCurrentIndex(0);
    QVERIFY(!QFile::exists(path));
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::LanguageSwitchTest)
#include "language_switch_test.moc"
