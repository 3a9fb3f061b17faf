#include "tests/unit/ui/dock_fixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class DockPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsInTheSignInView();
    void homeView();
    void signInViewAfterHome();
    void restoringView();
    void restoringThenSignIn();
    void statusColours_data();
    void statusColours();
    void productsMessage();
    void clearedProductsMessageDoesNotComeBack();
    void enabling();
    void buttonsReportClicks();
    void enterSignsIn();
    void enterDoesNothingWhileSigningIn();
    void fieldsAreReadAsTyped();
    void focusUsername();
    void quotaHooks();
    void withoutQuotaAndList();
    void productsReachTheList();
    void updateReachesTheBanner();
    void dyingPanelTakesItsWidgets();
};

void DockPanelTest::startsInTheSignInView()
{
    const Dock dock(PersianCode);
    QCOMPARE(dock.shown(), (QList<int>{Dock::TopRow, Dock::Brand, Dock::TitleRow, Dock::Username,
                                       Dock::Password, Dock::SignIn, Dock::Status}));
}

void DockPanelTest::homeView()
{
    Dock dock(EnglishCode);
    dock.field(Dock::Password)->setText(u"secret"_s);
    dock.panel.showRestoringView();
    dock.panel.setLogoutEnabled(false);
    dock.panel.showHomeView();
    QCOMPARE(dock.shown(), (QList<int>{Dock::TopRow, Dock::Brand, Dock::Status, Dock::Welcome, Dock::Refresh,
                                       Dock::List, LogoutShown}));
    QCOMPARE(dock.panel.password(), QString());
    QVERIFY(dock.logout()->isEnabled());
}

void DockPanelTest::signInViewAfterHome()
{
    Dock dock(EnglishCode);
    dock.panel.showHomeView();
    dock.panel.showProductsMessage("Products.Failed"_L1);
    dock.panel.setSignInEnabled(false);
    dock.field(Dock::Password)->setText(u"secret"_s);
    dock.panel.showSignInView();
    QCOMPARE(dock.shown(), (QList<int>{Dock::TopRow, Dock::Brand, Dock::TitleRow, Dock::Username,
                                       Dock::Password, Dock::SignIn, Dock::Status}));
    QVERIFY(dock.button(Dock::SignIn)->isEnabled());
    QCOMPARE(dock.panel.password(), QString());
}

void DockPanelTest::restoringView()
{
    Dock dock(EnglishCode);
    dock.field(Dock::Password)->setText(u"secret"_s);
    dock.panel.showRestoringView();
    QCOMPARE(dock.shown(), (QList<int>{Dock::TopRow, Dock::Brand, Dock::Status, Dock::Retry}));
    QVERIFY(!dock.button(Dock::Retry)->isEnabled());
    QCOMPARE(dock.panel.password(), QString());
    dock.panel.setRetryEnabled(true);
    QVERIFY(dock.button(Dock::Retry)->isEnabled());
}

void DockPanelTest::restoringThenSignIn()
{
    Dock dock(EnglishCode);
    dock.panel.showRestoringView();
    dock.panel.showSignInView();
    QVERIFY(dock.row(Dock::Retry)->isHidden());
    QVERIFY(!dock.row(Dock::Username)->isHidden());
}

void DockPanelTest::statusColours_data()
{
    QTest::addColumn<AccountView::Tone>("tone");
    QTest::addColumn<QString>("style");
    QTest::newRow("progress") << AccountView::Tone::Progress << u"color: white;"_s;
    QTest::newRow("success") << AccountView::Tone::Success << u"color: #55ff22;"_s;
    QTest::newRow("failure") << AccountView::Tone::Failure << u"color: #ff5555;"_s;
}

void DockPanelTest::statusColours()
{
    QFETCH(AccountView::Tone, tone);
    Dock dock(EnglishCode);
    dock.panel.showStatus(tone, "Status.LoggingIn"_L1);
    QTEST(dock.label(Dock::Status)->styleSheet(), "style");
    QCOMPARE(dock.label(Dock::Status)->text(), u"Signing in…"_s);
}

void DockPanelTest::productsMessage()
{
    Dock dock(EnglishCode);
    dock.panel.showProductsMessage("Products.Loading"_L1);
    QVERIFY(!dock.row(Dock::Message)->isHidden());
    QCOMPARE(dock.label(Dock::Message)->text(), u"Loading your products…"_s);
    dock.panel.hideProductsMessage();
    QVERIFY(dock.row(Dock::Message)->isHidden());
    QCOMPARE(dock.label(Dock::Message)->text(), u"Loading your products…"_s);
}

void DockPanelTest::clearedProductsMessageDoesNotComeBack()
{
    Dock dock(EnglishCode);
    dock.panel.showProductsMessage("Products.Empty"_L1);
    dock.panel.clearProductsMessage();
    dock.panel.retranslate();
    QVERIFY(dock.row(Dock::Message)->isHidden());
    QCOMPARE(dock.label(Dock::Message)->text(), QString());
}

void DockPanelTest::enabling()
{
    Dock dock(EnglishCode);
    for (const bool enabled : {false, true}) {
        dock.panel.setSignInEnabled(enabled);
        dock.panel.setRefreshEnabled(enabled);
        dock.panel.setLogoutEnabled(enabled);
        dock.panel.setProductListEnabled(enabled);
        QCOMPARE(dock.button(Dock::SignIn)->isEnabled(), enabled);
        QCOMPARE(dock.button(Dock::Refresh)->isEnabled(), enabled);
        QCOMPARE(dock.logout()->isEnabled(), enabled);
        QCOMPARE(dock.list->isEnabled(), enabled);
    }
}

void DockPanelTest::buttonsReportClicks()
{
    Dock dock(EnglishCode);
    QSignalSpy signIn(&dock.panel, &DockPanel::signInRequested);
    QSignalSpy signOut(&dock.panel, &DockPanel::signOutRequested);
    QSignalSpy retry(&dock.panel, &DockPanel::retryRequested);
    QSignalSpy refresh(&dock.panel, &DockPanel::refreshRequested);
    dock.button(Dock::SignIn)->click();
    dock.logout()->click();
    dock.button(Dock::Retry)->click();
    dock.button(Dock::Refresh)->click();
    QCOMPARE(signIn.count(), 1);
    QCOMPARE(signOut.count(), 1);
    QCOMPARE(retry.count(), 1);
    QCOMPARE(refresh.count(), 1);
    dock.panel.setRetryEnabled(false);
    dock.button(Dock::Retry)->click();
    QCOMPARE(retry.count(), 1);
}

void DockPanelTest::enterSignsIn()
{
    Dock dock(EnglishCode);
    QSignalSpy signIn(&dock.panel, &DockPanel::signInRequested);
    QTest::keyClick(dock.field(Dock::Username), Qt::Key_Return);
    QTest::keyClick(dock.field(Dock::Password), Qt::Key_Return);
    QCOMPARE(signIn.count(), 2);
}

void DockPanelTest::enterDoesNothingWhileSigningIn()
{
    Dock dock(EnglishCode);
    QSignalSpy signIn(&dock.panel, &DockPanel::signInRequested);
    dock.panel.setSignInEnabled(false);
    QTest::keyClick(dock.field(Dock::Password), Qt::Key_Return);
    QCOMPARE(signIn.count(), 0);
}

void DockPanelTest::fieldsAreReadAsTyped()
{
    Dock dock(EnglishCode);
    dock.field(Dock::Username)->setText(u" ali "_s);
    dock.field(Dock::Password)->setText(u" p w "_s);
    QCOMPARE(dock.panel.username(), u" ali "_s);
    QCOMPARE(dock.panel.password(), u" p w "_s);
    dock.panel.clearUsername();
    QCOMPARE(dock.panel.username(), QString());
    QCOMPARE(dock.panel.password(), u" p w "_s);
}

void DockPanelTest::focusUsername()
{
    Dock dock(EnglishCode);
    dock.panel.show();
    dock.panel.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dock.panel));
    dock.button(Dock::SignIn)->setFocus();
    dock.panel.focusUsername();
    QVERIFY(dock.field(Dock::Username)->hasFocus());
}

void DockPanelTest::quotaHooks()
{
    Dock dock(EnglishCode);
    QStringList calls;
    dock.panel.setQuota(new QLabel, {[&] { calls.append(u"refresh"_s); }, [&] { calls.append(u"clear"_s); },
                                     [&] { calls.append(u"text"_s); }});
    dock.panel.refreshQuota();
    dock.panel.clearQuota();
    dock.panel.retranslate();
    QCOMPARE(calls, (QStringList{u"refresh"_s, u"clear"_s, u"text"_s}));
}

void DockPanelTest::withoutQuotaAndList()
{
    Localisation texts = LocaleFiles().localisation(EnglishCode);
    DockPanel panel(texts);
    panel.retranslate();
    panel.refreshQuota();
    panel.clearQuota();
    panel.setProducts({QJsonObject()});
    panel.setProductListEnabled(false);
    panel.showHomeView();
    QVERIFY(panel.layout()->count() > 0);
}

void DockPanelTest::productsReachTheList()
{
    Dock dock(EnglishCode);
    dock.panel.setProducts({QJsonObject{{u"product_name"_s, u"Frame"_s}}, 5});
    QCOMPARE(dock.list->findChildren<QFrame *>(u"quillmarProductCard"_s).size(), 1);
    dock.panel.setProducts({});
    QCOMPARE(dock.list->findChildren<QFrame *>(u"quillmarProductCard"_s).size(), 0);
}

void DockPanelTest::updateReachesTheBanner()
{
    Dock dock(EnglishCode);
    dock.panel.showUpdate({u"0.2.0"_s, {}, false, {}}, true);
    QVERIFY(!dock.row(Dock::Banner)->isHidden());
    QCOMPARE(dock.row(Dock::Banner)->property("version").toString(), u"0.2.0"_s);
}

void DockPanelTest::dyingPanelTakesItsWidgets()
{
    QPointer<ProductList> list;
    QPointer<QObject> lifetime;
    {
        Dock dock(EnglishCode);
        list = dock.list;
        lifetime = dock.panel.lifetime();
        QCOMPARE(lifetime.data(), &dock.panel);
    }
    QVERIFY(list.isNull());
    QVERIFY(lifetime.isNull());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::DockPanelTest)
#include "dock_panel_test.moc"
