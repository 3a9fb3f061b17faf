#include "tests/unit/ui/dock_fixture.h"

#include <QPointer>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class DockWidgetsTest : public QObject
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
};

void DockWidgetsTest::columnMarginsAndOrder()
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

void DockWidgetsTest::topRow()
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

void DockWidgetsTest::selectorStartsWithTheCurrentLanguage()
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

void DockWidgetsTest::selectorAndLogoutShareOneHeight()
{
    const Dock dock(PersianCode);
    QCOMPARE(dock.selector()->minimumHeight(), dock.selector()->maximumHeight());
    QCOMPARE(dock.logout()->minimumHeight(), dock.selector()->minimumHeight());
    QCOMPARE(dock.logout()->maximumHeight(), dock.selector()->minimumHeight());
    QVERIFY(dock.selector()->height() >= dock.selector()->sizeHint().height());
}

void DockWidgetsTest::signInWidgets()
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

void DockWidgetsTest::statusLabel()
{
    const Dock dock(PersianCode);
    const QLabel *status = dock.label(Dock::Status);
    QCOMPARE(status->text(), QString());
    QVERIFY(status->wordWrap());
    QCOMPARE(status->textFormat(), Qt::PlainText);
    QCOMPARE(status->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(status->alignment(), Qt::AlignRight | Qt::AlignVCenter | Qt::AlignAbsolute);
}

void DockWidgetsTest::homeWidgets()
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

void DockWidgetsTest::quotaPlace()
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

void DockWidgetsTest::styleSheets()
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

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::DockWidgetsTest)
#include "dock_widgets_test.moc"
