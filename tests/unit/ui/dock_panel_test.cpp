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
    void columnMarginsAndOrder();
    void topRow();
    void selectorStartsWithTheCurrentLanguage();
    void selectorAndLogoutShareOneHeight();
    void signInWidgets();
    void statusLabel();
    void homeWidgets();
    void quotaPlace();
    void styleSheets();
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

void DockPanelTest::columnMarginsAndOrder()
{
    const Dock dock(EnglishCode);
    const QBoxLayout *column = dock.column();
    QCOMPARE(column->direction(), QBoxLayout::TopToBottom);
    QCOMPARE(column->contentsMargins(), QMargins(20, 20, 20, 20));
    QCOMPARE(column->spacing(), 12);
    QCOMPARE(column->count(), 15);
    QCOMPARE(dock.row(Dock::List), dock.list);
    QCOMPARE(column->stretch(Dock::List), 1);
    QVERIFY(column->itemAt(14)->spacerItem());
    QCOMPARE(dock.panel.minimumWidth(), 300);
    QCOMPARE(dock.row(Dock::Banner)->objectName(), u"quillmarUpdateBanner"_s);
    QCOMPARE(dock.label(Dock::Brand)->text(), u"Quillmar"_s);
    QCOMPARE(dock.label(Dock::Brand)->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
    QCOMPARE(dock.label(Dock::Brand)->layoutDirection(), Qt::LeftToRight);
}

void DockPanelTest::topRow()
{
    const Dock dock(EnglishCode);
    const auto *layout = qobject_cast<QHBoxLayout *>(dock.row(Dock::TopRow)->layout());
    QVERIFY(layout);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(layout->spacing(), 8);
    QCOMPARE(layout->count(), 3);
    QCOMPARE(layout->itemAt(0)->widget(), dock.selector());
    QVERIFY(layout->itemAt(1)->spacerItem());
    QCOMPARE(layout->itemAt(2)->widget(), dock.logout());
    QCOMPARE(dock.row(Dock::TopRow)->layoutDirection(), Qt::LeftToRight);
    const QSizePolicy fixed(QSizePolicy::Fixed, QSizePolicy::Fixed);
    QCOMPARE(dock.selector()->sizePolicy().horizontalPolicy(), fixed.horizontalPolicy());
    QCOMPARE(dock.selector()->sizePolicy().verticalPolicy(), fixed.verticalPolicy());
    QCOMPARE(dock.logout()->sizePolicy().horizontalPolicy(), fixed.horizontalPolicy());
    QCOMPARE(dock.logout()->sizePolicy().verticalPolicy(), fixed.verticalPolicy());
}

void DockPanelTest::selectorStartsWithTheCurrentLanguage()
{
    const Dock persian(PersianCode);
    QCOMPARE(persian.selector()->count(), 2);
    QCOMPARE(persian.selector()->itemText(0), u"فارسی"_s);
    QCOMPARE(persian.selector()->itemData(0).toString(), u"fa-IR"_s);
    QCOMPARE(persian.selector()->itemText(1), u"English"_s);
    QCOMPARE(persian.selector()->itemData(1).toString(), u"en-US"_s);
    QCOMPARE(persian.selector()->currentIndex(), 0);
    QCOMPARE(persian.selector()->layoutDirection(), Qt::LeftToRight);
    const Dock english(EnglishCode);
    QCOMPARE(english.selector()->currentIndex(), 1);
}

void DockPanelTest::selectorAndLogoutShareOneHeight()
{
    const Dock dock(PersianCode);
    QCOMPARE(dock.selector()->minimumHeight(), dock.selector()->maximumHeight());
    QCOMPARE(dock.logout()->minimumHeight(), dock.selector()->minimumHeight());
    QCOMPARE(dock.logout()->maximumHeight(), dock.selector()->minimumHeight());
    QVERIFY(dock.selector()->height() >= dock.selector()->sizeHint().height());
}

void DockPanelTest::signInWidgets()
{
    const Dock dock(EnglishCode);
    const auto *titleLayout = qobject_cast<QHBoxLayout *>(dock.row(Dock::TitleRow)->layout());
    QVERIFY(titleLayout);
    QCOMPARE(titleLayout->contentsMargins(), QMargins());
    QCOMPARE(titleLayout->spacing(), 0);
    QVERIFY(titleLayout->itemAt(0)->spacerItem());
    QCOMPARE(titleLayout->itemAt(1)->widget(), dock.title());
    QCOMPARE(dock.title()->property("quillmarTextKey").toString(), u"Login.Title"_s);
    for (const QLineEdit *field : {dock.field(Dock::Username), dock.field(Dock::Password)}) {
        QCOMPARE(field->metaObject()->className(), "quillmar::QuillmarLineEdit");
        QCOMPARE(field->layoutDirection(), Qt::LeftToRight);
        QCOMPARE(field->alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    }
    QCOMPARE(dock.field(Dock::Username)->echoMode(), QLineEdit::Normal);
    QCOMPARE(dock.field(Dock::Password)->echoMode(), QLineEdit::Password);
    QCOMPARE(dock.field(Dock::Username)->accessibleName(), u"Username"_s);
    QCOMPARE(dock.field(Dock::Password)->accessibleName(), u"Password"_s);
    QVERIFY(dock.button(Dock::SignIn)->isEnabled());
}

void DockPanelTest::statusLabel()
{
    const Dock dock(PersianCode);
    const QLabel *status = dock.label(Dock::Status);
    QCOMPARE(status->text(), QString());
    QVERIFY(status->wordWrap());
    QCOMPARE(status->textFormat(), Qt::PlainText);
    QCOMPARE(status->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(status->alignment(), Qt::AlignRight | Qt::AlignVCenter | Qt::AlignAbsolute);
}

void DockPanelTest::homeWidgets()
{
    const Dock dock(PersianCode);
    const QLabel *welcome = dock.label(Dock::Welcome);
    QCOMPARE(welcome->property("quillmarTextKey").toString(), u"Home.Welcome"_s);
    QCOMPARE(welcome->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(welcome->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(welcome->alignment(), Qt::AlignRight | Qt::AlignVCenter | Qt::AlignAbsolute);
    const QLabel *message = dock.label(Dock::Message);
    QCOMPARE(message->text(), QString());
    QVERIFY(message->wordWrap());
    QCOMPARE(message->alignment(), Qt::AlignRight | Qt::AlignTop);
    QCOMPARE(message->layoutDirection(), Qt::RightToLeft);
}

void DockPanelTest::quotaPlace()
{
    Dock dock(EnglishCode);
    auto *quota = new QLabel(u"5 of 10"_s);
    QPointer<QWidget> placeholder = dock.row(Dock::Quota);
    dock.panel.setQuota(quota, {});
    QVERIFY(placeholder.isNull());
    QCOMPARE(dock.row(Dock::Quota), quota);
    QCOMPARE(dock.column()->count(), 15);
    QCOMPARE(dock.row(Dock::List), dock.list);
    QVERIFY(quota->isHidden());
    QCOMPARE(quota->parentWidget(), &dock.panel);
}

void DockPanelTest::styleSheets()
{
    const Dock dock(EnglishCode);
    QCOMPARE(
        dock.panel.styleSheet(),
        u"QWidget { background-color: #0b100d; color: white; font-family: 'Tahoma'; font-size: 13px;}"
        "QLabel { color: white;}QLineEdit { background-color: #151a17; border: 1px solid #3a443d; "
        "border-radius: 7px; padding: 10px; padding-left: 12px; padding-right: 12px; color: white; "
        "font-family: 'Tahoma'; font-size: 13px;}QLineEdit:focus { border: 1px solid #55ff22;}"
        "QPushButton { background-color: #55ff22; color: black; border: none; border-radius: 7px; "
        "padding: 10px; font-family: 'Tahoma'; font-size: 14px; font-weight: 700;}"
        "QPushButton:hover { background-color: #70ff47;}QPushButton:pressed { background-color: #42d91c;}"
        "QPushButton:disabled { background-color: #3a443d; color: #999999;}"_s);
    QCOMPARE(dock.label(Dock::Brand)->styleSheet(),
             u"font-family: 'Segoe UI';font-size: 27px;font-weight: 700;color: #55ff22;"_s);
    QCOMPARE(dock.title()->styleSheet(),
             u"font-family: 'Tahoma';font-size: 15px;font-weight: 600;color: #ffffff;padding: 2px 0px;"_s);
    QCOMPARE(dock.label(Dock::Welcome)->styleSheet(),
             u"font-family: 'Tahoma';font-size: 19px;font-weight: 700;color: white;"_s);
    QCOMPARE(dock.selector()->styleSheet(),
             u"QComboBox { background-color: #151a17; color: white; border: 1px "
             "solid #3a443d; border-radius: 5px; padding: 4px 8px; }"_s);
    QCOMPARE(
        dock.logout()->styleSheet(),
        u"QPushButton { background-color: #c62828; color: white; border: none; border-radius: 5px; padding: "
        "4px 10px; font-family: 'Tahoma'; font-size: 13px; font-weight: 400; }QPushButton:hover { "
        "background-color: #e53935; }QPushButton:pressed { background-color: #a51f1f; }"
        "QPushButton:disabled { background-color: #733333; color: white; }"_s);
}

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
