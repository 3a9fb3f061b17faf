#include "tests/unit/ui/dock_fixture.h"

#include <QImage>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

void switchTo(Dock &dock, const QString &language)
{
    dock.texts.setLanguage(language);
    dock.panel.retranslate();
}

/// Whether anything is painted in the quarter of the picture that begins at column `from`.
bool hasInk(const QImage &image, int from)
{
    const QRgb background = image.pixel(image.width() / 2, 0);
    for (int x = from; x < from + image.width() / 4; ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixel(x, y) != background)
                return true;
        }
    }
    return false;
}

/// Left edge of `widget` inside the panel.
int leftEdge(const Dock &dock, const QWidget *widget)
{
    return widget->mapTo(&dock.panel, QPoint()).x();
}

} // namespace

class DockRetranslationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void persianDirections();
    void englishDirections();
    void persianAlignments();
    void englishAlignments();
    void englishTexts();
    void persianTexts();
    void titleLandsOnTheReadingSide();
    void topRowRunsWithTheLanguage();
    void statusIsTranslatedAgain();
    void statusKeepsItsSuffix();
    void rawKeysWithoutLocaleFile();
    void listAndBannerFollow();
    void selectorKeepsItsItems();
    void messagesStandAtTheReadingSide_data();
    void messagesStandAtTheReadingSide();
};

void DockRetranslationTest::persianDirections()
{
    Dock dock(EnglishCode);
    switchTo(dock, PersianCode);
    QCOMPARE(dock.panel.layoutDirection(), Qt::RightToLeft);
    QCOMPARE(qobject_cast<QBoxLayout *>(dock.row(Dock::TopRow)->layout())->direction(),
             QBoxLayout::RightToLeft);
    QCOMPARE(dock.row(Dock::TopRow)->layoutDirection(), Qt::LeftToRight);
    QCOMPARE(dock.logout()->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(dock.row(Dock::TitleRow)->layoutDirection(), Qt::LeftToRight);
    QCOMPARE(dock.button(Dock::Refresh)->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(dock.row(Dock::Username)->layoutDirection(), Qt::LeftToRight);
    QCOMPARE(dock.row(Dock::Brand)->layoutDirection(), Qt::LeftToRight);
    QCOMPARE(dock.selector()->layoutDirection(), Qt::LeftToRight);
}

void DockRetranslationTest::englishDirections()
{
    Dock dock(PersianCode);
    switchTo(dock, EnglishCode);
    QCOMPARE(dock.panel.layoutDirection(), Qt::LeftToRight);
    QCOMPARE(qobject_cast<QBoxLayout *>(dock.row(Dock::TopRow)->layout())->direction(),
             QBoxLayout::LeftToRight);
    QCOMPARE(dock.logout()->layoutDirection(), Qt::LeftToRight);
    QCOMPARE(dock.row(Dock::TitleRow)->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(dock.button(Dock::Refresh)->layoutDirection(), Qt::LeftToRight);
}

void DockRetranslationTest::persianAlignments()
{
    const Dock dock(PersianCode);
    QCOMPARE(dock.title()->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    QCOMPARE(dock.label(Dock::Status)->alignment(), Qt::AlignRight | Qt::AlignVCenter | Qt::AlignAbsolute);
    QCOMPARE(dock.label(Dock::Welcome)->alignment(), Qt::AlignRight | Qt::AlignVCenter | Qt::AlignAbsolute);
    QCOMPARE(dock.label(Dock::Message)->alignment(), Qt::AlignRight | Qt::AlignTop);
    for (const QLabel *label :
         {dock.title(), dock.label(Dock::Status), dock.label(Dock::Welcome), dock.label(Dock::Message)})
        QCOMPARE(label->layoutDirection(), Qt::RightToLeft);
}

void DockRetranslationTest::englishAlignments()
{
    const Dock dock(EnglishCode);
    QCOMPARE(dock.title()->alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(dock.label(Dock::Status)->alignment(), Qt::AlignLeft | Qt::AlignVCenter | Qt::AlignAbsolute);
    QCOMPARE(dock.label(Dock::Welcome)->alignment(), Qt::AlignLeft | Qt::AlignVCenter | Qt::AlignAbsolute);
    QCOMPARE(dock.label(Dock::Message)->alignment(), Qt::AlignLeft | Qt::AlignTop);
    for (const QLabel *label :
         {dock.title(), dock.label(Dock::Status), dock.label(Dock::Welcome), dock.label(Dock::Message)})
        QCOMPARE(label->layoutDirection(), Qt::LeftToRight);
}

void DockRetranslationTest::englishTexts()
{
    const Dock dock(EnglishCode);
    QCOMPARE(dock.title()->text(), u"Sign in to \u2066Quillmar\u2069"_s);
    QCOMPARE(dock.label(Dock::Welcome)->text(), u"Welcome to \u2066Quillmar\u2069"_s);
    QCOMPARE(dock.button(Dock::SignIn)->text(), u"Sign in"_s);
    QCOMPARE(dock.logout()->text(), u"Sign out"_s);
    QCOMPARE(dock.button(Dock::Refresh)->text(), u"Refresh"_s);
    QCOMPARE(dock.button(Dock::Retry)->text(), u"Try again"_s);
    QCOMPARE(dock.selector()->accessibleName(), u"Language"_s);
    QCOMPARE(dock.selector()->toolTip(), u"Language"_s);
}

void DockRetranslationTest::persianTexts()
{
    const Dock dock(PersianCode);
    QCOMPARE(dock.title()->text(), u"ورود به \u2066Quillmar\u2069"_s);
    QCOMPARE(dock.label(Dock::Welcome)->text(), u"به \u2066Quillmar\u2069 خوش آمدید"_s);
    QCOMPARE(dock.button(Dock::SignIn)->text(), u"ورود"_s);
    QCOMPARE(dock.logout()->text(), u"خروج"_s);
    QCOMPARE(dock.button(Dock::Refresh)->text(), u"بازخوانی"_s);
    QCOMPARE(dock.button(Dock::Retry)->text(), u"تلاش دوباره"_s);
    QCOMPARE(dock.selector()->toolTip(), u"زبان"_s);
}

void DockRetranslationTest::titleLandsOnTheReadingSide()
{
    Dock dock(PersianCode);
    dock.panel.resize(400, 600);
    dock.panel.show();
    QCOMPARE(leftEdge(dock, dock.title()) + dock.title()->width(), 400 - 20);
    switchTo(dock, EnglishCode);
    dock.panel.layout()->activate();
    dock.row(Dock::TitleRow)->layout()->activate();
    QCOMPARE(leftEdge(dock, dock.title()), 20);
}

void DockRetranslationTest::topRowRunsWithTheLanguage()
{
    Dock dock(PersianCode);
    dock.panel.resize(400, 600);
    dock.panel.showHomeView();
    dock.panel.show();
    QCOMPARE(leftEdge(dock, dock.selector()) + dock.selector()->width(), 400 - 20);
    QCOMPARE(leftEdge(dock, dock.logout()), 20);
    switchTo(dock, EnglishCode);
    dock.row(Dock::TopRow)->layout()->activate();
    QCOMPARE(leftEdge(dock, dock.selector()), 20);
    QCOMPARE(leftEdge(dock, dock.logout()) + dock.logout()->width(), 400 - 20);
}

void DockRetranslationTest::statusIsTranslatedAgain()
{
    Dock dock(EnglishCode);
    dock.panel.showStatus(AccountView::Tone::Failure, "Session.Expired"_L1);
    switchTo(dock, PersianCode);
    QCOMPARE(dock.label(Dock::Status)->text(), u"نشست شما به پایان رسیده است. دوباره وارد شوید."_s);
    QCOMPARE(dock.label(Dock::Status)->styleSheet(), u"color: #ff5555;"_s);
}

void DockRetranslationTest::statusKeepsItsSuffix()
{
    Dock dock(EnglishCode);
    dock.texts.setTranslatedText(dock.label(Dock::Status), u"Status.LoginRequired"_s, u" (7)"_s);
    switchTo(dock, PersianCode);
    QVERIFY(dock.label(Dock::Status)->text().startsWith(u"ابتدا"_s));
    QVERIFY(dock.label(Dock::Status)->text().endsWith(u" (7)"_s));
}

void DockRetranslationTest::rawKeysWithoutLocaleFile()
{
    Localisation texts = LocaleFiles(u"/nowhere"_s).localisation(EnglishCode);
    DockPanel panel(texts);
    panel.retranslate();
    panel.showStatus(AccountView::Tone::Progress, "Status.LoggingIn"_L1);
    panel.showProductsMessage("Products.Loading"_L1);
    QStringList shown;
    for (const QPushButton *button : panel.findChildren<QPushButton *>())
        shown.append(button->text());
    for (const QLabel *label : panel.findChildren<QLabel *>())
        shown.append(label->text());
    for (const auto &key : {u"Login.Button"_s, u"Logout.Button"_s, u"Gallery.Refresh"_s, u"Session.Retry"_s,
                            u"Update.Download"_s, u"Login.Title"_s, u"Home.Welcome"_s, u"Status.LoggingIn"_s,
                            u"Products.Loading"_s})
        QVERIFY2(shown.contains(key), qPrintable(key));
}

void DockRetranslationTest::listAndBannerFollow()
{
    Dock dock(EnglishCode);
    switchTo(dock, PersianCode);
    QCOMPARE(dock.list->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(dock.row(Dock::Banner)->layoutDirection(), Qt::RightToLeft);
}

void DockRetranslationTest::selectorKeepsItsItems()
{
    Dock dock(PersianCode);
    switchTo(dock, EnglishCode);
    QCOMPARE(dock.selector()->itemText(0), u"فارسی"_s);
    QCOMPARE(dock.selector()->itemText(1), u"English"_s);
}

void DockRetranslationTest::messagesStandAtTheReadingSide_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<bool>("right");
    QTest::newRow("persian at the right") << u"fa-IR"_s << true;
    QTest::newRow("english at the left") << u"en-US"_s << false;
}

void DockRetranslationTest::messagesStandAtTheReadingSide()
{
    QFETCH(QString, language);
    QFETCH(bool, right);
    Dock dock(language);
    dock.panel.resize(900, 700);
    dock.panel.showHomeView();
    dock.panel.showProductsMessage("Products.Loading"_L1);
    dock.panel.showStatus(AccountView::Tone::Progress, "Logout.Progress"_L1);
    dock.panel.show();
    for (QLabel *label : {dock.label(Dock::Status), dock.label(Dock::Message), dock.label(Dock::Welcome)}) {
        const QImage image = label->grab().toImage();
        QVERIFY(hasInk(image, right ? image.width() * 3 / 4 : 0));
        QVERIFY(!hasInk(image, right ? 0 : image.width() * 3 / 4));
    }
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::DockRetranslationTest)
#include "dock_retranslation_test.moc"
