#include "tests/host/support/host_session.h"

#include <QFile>
#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

/// The module in a fresh OBS, before anybody signs in: what is loaded, logged, shown and remembered.
class DockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void dockIsRegisteredOnce();
    void docksMenuShowsTheDock();
    void startsInPersianFromRightToLeft();
    void signInFieldsStayLeftToRight();
    void aClickSwitchesToEnglish();
    void languageSurvivesARestart();
    void quitsInOrderAndLogsEveryStep();
    void logsNoErrorAndLosesNoMemoryThatBareObsDoesNot();

private:
    Widget widget(const Widget *(*choice)(const WidgetTree &));
    QJsonValue menuEntry(const QString &text);

    std::unique_ptr<HostSession> session_;
    ObsLog log_;
};

void DockTest::initTestCase()
{
    QString problem;
    session_ = HostSession::start({.hostLanguage = u"en-US"_s}, &problem);
    QVERIFY2(session_, qPrintable(problem));
}

Widget DockTest::widget(const Widget *(*choice)(const WidgetTree &))
{
    const WidgetTree tree = session_->panel().robot().tree();
    const Widget *found = choice(tree);
    return found ? *found : Widget();
}

QJsonValue DockTest::menuEntry(const QString &text)
{
    const QJsonArray menus = session_->driver().ask(u"menus"_s).toArray();
    for (const QJsonValue &entry : menus) {
        if (entry["text"_L1].toString().remove(u'&') == text)
            return entry;
    }
    return QJsonValue::Undefined;
}

void DockTest::dockIsRegisteredOnce()
{
    QCOMPARE(session_->driver().ask(u"dock-count"_s, {{u"id"_s, u"quillmar-dock"_s}}).toInt(), 1);
}

void DockTest::docksMenuShowsTheDock()
{
    const auto middle = [](const QJsonValue &entry) {
        const QJsonArray rect = entry["rect"_L1].toArray();
        return QRect(rect[0].toInt(), rect[1].toInt(), rect[2].toInt(), rect[3].toInt()).center();
    };
    RobotHand hand(session_->desktop());
    const auto dockIsVisible = [this] { return session_->panel().robot().tree().all().first().visible; };
    for (const bool shown : {false, true}) {
        QVERIFY(hand.click(middle(menuEntry(u"Docks"_s))));
        QTRY_VERIFY_WITH_TIMEOUT(menuEntry(u"Quillmar"_s)["open"_L1].toBool(), 20000);
        QVERIFY(hand.click(middle(menuEntry(u"Quillmar"_s))));
        QTRY_COMPARE_WITH_TIMEOUT(dockIsVisible(), shown, 20000);
    }
}

void DockTest::startsInPersianFromRightToLeft()
{
    QuillmarPanel &panel = session_->panel();
    const WidgetTree tree = panel.robot().tree();
    QVERIFY(tree.all().first().rightToLeft);
    QVERIFY(buttonWithText(panel.text(u"Login.Button"_s))(tree));
    QCOMPARE(languageSelector(tree)->text, u"فارسی"_s);
    QVERIFY(languageSelector(tree)->rect.center().x() > tree.all().first().rect.center().x());
}

void DockTest::signInFieldsStayLeftToRight()
{
    QVERIFY(!widget(userNameField).rightToLeft);
    QVERIFY(!widget(passwordField).rightToLeft);
    QVERIFY(widget(userNameField).visible);
    QVERIFY(widget(passwordField).visible);
}

void DockTest::aClickSwitchesToEnglish()
{
    QuillmarPanel &panel = session_->panel();
    QVERIFY2(panel.setLanguage(u"en-US"_s), qPrintable(panel.problem()));
    const WidgetTree tree = panel.robot().tree();
    QVERIFY(!tree.all().first().rightToLeft);
    QVERIFY(buttonWithText(panel.text(u"Login.Button"_s))(tree));
    QVERIFY(languageSelector(tree)->rect.center().x() < tree.all().first().rect.center().x());
    QFile settings(session_->home().moduleSettings());
    QVERIFY(settings.open(QIODevice::ReadOnly));
    QVERIFY(settings.readAll().contains("language=en-US"));
}

void DockTest::languageSurvivesARestart()
{
    const ObsExit exit = session_->quit();
    QCOMPARE(exit.code, 0);
    QString problem;
    QVERIFY2(session_->startObs(&problem), qPrintable(problem));
    QuillmarPanel &panel = session_->panel();
    panel.assumeLanguage(u"en-US"_s);
    QCOMPARE(widget(languageSelector).text, u"English"_s);
    QVERIFY(buttonWithText(panel.text(u"Login.Button"_s))(panel.robot().tree()));
    QVERIFY2(panel.setLanguage(u"fa-IR"_s), qPrintable(panel.problem()));
    QVERIFY(panel.robot().tree().all().first().rightToLeft);
}

void DockTest::quitsInOrderAndLogsEveryStep()
{
    const ObsExit exit = session_->quit();
    QVERIFY(exit.inTime);
    QVERIFY(!exit.crashed);
    QCOMPARE(exit.code, 0);
    log_ = exit.log;
    const QString prefix = u"[quillmar-obs-plugin] "_s;
    const QStringList &lines = exit.log.ownLines;
    QVERIFY(lines.size() >= 4);
    QCOMPARE(lines[0], prefix + u"plugin loaded successfully (version 0.1.3)"_s);
    QVERIFY(lines[1].startsWith(prefix + u"Qt plugin path added: /"_s));
    QVERIFY(lines.contains(prefix + u"Quillmar dock added successfully"_s));
    QCOMPARE(lines.last(), prefix + u"plugin unloaded"_s);
}

void DockTest::logsNoErrorAndLosesNoMemoryThatBareObsDoesNot()
{
    QString problem;
    const auto bare = HostSession::start({.installModule = false, .hostLanguage = u"en-US"_s}, &problem);
    QVERIFY2(bare, qPrintable(problem));
    const ObsExit exit = bare->quit();
    QCOMPARE(exit.code, 0);
    QVERIFY(exit.log.leaks >= 0);
    QVERIFY(log_.leaks >= 0);
    QVERIFY(log_.leaks <= exit.log.leaks);
    for (const QString &error : std::as_const(log_.errors))
        QVERIFY2(exit.log.errors.contains(error), qPrintable(error));
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::DockTest)
#include "dock_test.moc"
