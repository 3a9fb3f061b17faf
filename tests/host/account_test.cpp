#include "tests/host/support/served_session.h"

#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

/// Signing in and out by pointer and keyboard against the demo service over real HTTPS.
class AccountTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void emptyFieldsAreRefusedWithoutARequest();
    void wrongPasswordIsRefused();
    void refusedCountryHasItsOwnMessage();
    void absentServiceIsReportedAndTheNextTryWorks();
    void signsInByKeyboardAlone();
    void messageFollowsTheLanguage();
    void signsOut();
    void accountWithoutProductsSaysSo();
    void sessionThatEndsReturnsToTheSignInView();
    void quitsInOrder();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    bool isSignInView() { return panel().showsSignInView(); }

    std::unique_ptr<ServedSession> served_;
};

void AccountTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start({}, &problem);
    QVERIFY2(served_, qPrintable(problem));
    QVERIFY2(panel().setLanguage(u"en-US"_s), qPrintable(panel().problem()));
}

void AccountTest::emptyFieldsAreRefusedWithoutARequest()
{
    QVERIFY2(panel().clickButton(u"Login.Button"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Status.FieldsRequired"_s), qPrintable(panel().problem()));
    QCOMPARE(served_->service().count(u"login"_s), 0);
}

void AccountTest::wrongPasswordIsRefused()
{
    QVERIFY2(panel().signIn(u"demo"_s, u"wrong"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Status.LoginFailed"_s), qPrintable(panel().problem()));
    const WidgetTree tree = panel().robot().tree();
    QCOMPARE(userNameField(tree)->text, u"demo"_s);
    QCOMPARE(passwordField(tree)->text, u"wrong"_s);
    QVERIFY(isSignInView());
}

void AccountTest::refusedCountryHasItsOwnMessage()
{
    QVERIFY2(panel().signIn(u"country"_s, u"country"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Status.CountryNotAllowed"_s), qPrintable(panel().problem()));
    QVERIFY(isSignInView());
}

void AccountTest::absentServiceIsReportedAndTheNextTryWorks()
{
    served_->stopService();
    QVERIFY2(panel().signIn(u"demo"_s, u"demo"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Status.LoginFailed"_s), qPrintable(panel().problem()));
    QString problem;
    QVERIFY2(served_->startService(&problem), qPrintable(problem));
    QVERIFY2(panel().clickButton(u"Login.Button"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Status.LoginSuccess"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().clickButton(u"Logout.Button"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Logout.Success"_s), qPrintable(panel().problem()));
}

void AccountTest::signsInByKeyboardAlone()
{
    RobotHand hand(served_->session().desktop());
    const auto focused = [this] {
        const WidgetTree tree = panel().robot().tree();
        const Widget *widget = tree.find([](const Widget &w) { return w.focus; });
        return widget ? widget->index : -1;
    };
    const WidgetTree tree = panel().robot().tree();
    QTRY_COMPARE_WITH_TIMEOUT(focused(), userNameField(tree)->index, 20000);
    QVERIFY(hand.type(u"demo"_s) && hand.press(u"Tab"_s));
    QTRY_COMPARE_WITH_TIMEOUT(focused(), passwordField(tree)->index, 20000);
    QVERIFY(hand.type(u"demo"_s) && hand.press(u"Tab"_s));
    QTRY_COMPARE_WITH_TIMEOUT(focused(), buttonWithText(panel().text(u"Login.Button"_s))(tree)->index, 20000);
    QVERIFY(hand.press(u"space"_s));
    QVERIFY2(panel().waitForStatus(u"Status.LoginSuccess"_s), qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(panel().visibleProducts().size(), HostCatalogue::Products, 20000);
}

void AccountTest::messageFollowsTheLanguage()
{
    QVERIFY2(panel().setLanguage(u"fa-IR"_s), qPrintable(panel().problem()));
    WidgetTree tree = panel().robot().tree();
    QCOMPARE(withoutIsolates(statusLabel(tree)->text), panel().text(u"Status.LoginSuccess"_s));
    QVERIFY2(panel().setLanguage(u"en-US"_s), qPrintable(panel().problem()));
    tree = panel().robot().tree();
    QCOMPARE(withoutIsolates(statusLabel(tree)->text), panel().text(u"Status.LoginSuccess"_s));
}

void AccountTest::signsOut()
{
    QVERIFY2(panel().clickButton(u"Logout.Button"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Logout.Success"_s), qPrintable(panel().problem()));
    QVERIFY(isSignInView());
    const WidgetTree tree = panel().robot().tree();
    QVERIFY(userNameField(tree)->text.isEmpty());
    QVERIFY(passwordField(tree)->text.isEmpty());
    QVERIFY(panel().visibleProducts().isEmpty());
}

void AccountTest::accountWithoutProductsSaysSo()
{
    QVERIFY2(panel().signIn(u"empty"_s, u"empty"_s), qPrintable(panel().problem()));
    const auto saysSo = [](const WidgetTree &tree) {
        return tree.find([](const Widget &w) {
            return w.visible && w.properties["quillmarTextKey"_L1] == u"Products.Empty"_s;
        });
    };
    QVERIFY2(panel().robot().waitFor(saysSo, u"Products.Empty"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().clickButton(u"Logout.Button"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Logout.Success"_s), qPrintable(panel().problem()));
}

void AccountTest::sessionThatEndsReturnsToTheSignInView()
{
    QVERIFY2(panel().signIn(u"expired"_s, u"expired"_s), qPrintable(panel().problem()));
    QTRY_VERIFY_WITH_TIMEOUT(served_->service().count(u"products"_s) > 0, 20000);
    if (panel().statusKey() != "Session.Expired"_L1)
        QVERIFY2(panel().clickButton(u"Gallery.Refresh"_s), qPrintable(panel().problem()));
    QVERIFY2(panel().waitForStatus(u"Session.Expired"_s), qPrintable(panel().problem()));
    QVERIFY(isSignInView());
    QVERIFY(panel().visibleProducts().isEmpty());
}

void AccountTest::quitsInOrder()
{
    const ObsExit exit = served_->session().quit();
    QVERIFY(exit.inTime);
    QCOMPARE(exit.code, 0);
    QCOMPARE(exit.log.leaks, 0);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::AccountTest)
#include "account_test.moc"
