#include "service/routes.h"
#include "tests/support/locale_files.h"
#include "ui/update_banner.h"

#include <QDesktopServices>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// Stands in for the desktop's browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler(u"https"_s, this, "open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler(u"https"_s); }

    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }
};

UpdateInfo info(const QString &notes = {})
{
    return {u"0.2.0"_s, QUrl(u"https://"_s + routes::serviceHost() + u"/get"_s), false, notes};
}

struct Banner {
    explicit Banner(const QString &language = EnglishCode)
        : texts(LocaleFiles().localisation(language)), widget(texts)
    {
    }

    QLabel *line(int place) const { return qobject_cast<QLabel *>(widget.layout()->itemAt(place)->widget()); }
    QLabel *title() const { return line(0); }
    QLabel *versions() const { return line(1); }
    QLabel *notes() const { return line(2); }
    QPushButton *download() const { return widget.findChild<QPushButton *>(); }

    Localisation texts;
    UpdateBanner widget;
};

} // namespace

class UpdateBannerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layoutAndStyles();
    void startsHidden();
    void shownWhenAvailableOnly();
    void keepsVersionAndAddress();
    void englishTexts();
    void persianTexts();
    void languageSwitchRendersAgain();
    void releaseNotes_data();
    void releaseNotes();
    void refusedAddressHidesTheButtonButKeepsTheTexts_data();
    void refusedAddressHidesTheButtonButKeepsTheTexts();
    void clickOpensTheAddress();
    void clickOnARefusedAddressDoesNothing();
    void hostileNotesStayPlain();
    void placeholderInTheVersionIsNotFilled();
    void longWordDoesNotWiden();
};

void UpdateBannerTest::layoutAndStyles()
{
    const Banner banner;
    QCOMPARE(banner.widget.objectName(), u"quillmarUpdateBanner"_s);
    QCOMPARE(
        banner.widget.styleSheet(),
        u"QFrame#quillmarUpdateBanner { background: #151a17; border: 1px solid #3a443d; border-radius: 7px; "
        "}QFrame#quillmarUpdateBanner QLabel { background: transparent; border: none; }"_s);
    QCOMPARE(banner.widget.layout()->contentsMargins(), QMargins(10, 8, 10, 8));
    QCOMPARE(banner.widget.layout()->spacing(), 6);
    QCOMPARE(banner.widget.layout()->count(), 4);
    for (const QLabel *line : {banner.title(), banner.versions(), banner.notes()}) {
        QCOMPARE(line->textFormat(), Qt::PlainText);
        QVERIFY(line->wordWrap());
    }
    QCOMPARE(banner.title()->styleSheet(), u"color: #55ff22; font-weight: 700;"_s);
    QCOMPARE(banner.download()->styleSheet(), u"padding: 5px 8px; font-size: 13px;"_s);
    QCOMPARE(banner.download()->sizePolicy().horizontalPolicy(), QSizePolicy::Maximum);
    QCOMPARE(banner.download()->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
}

void UpdateBannerTest::startsHidden()
{
    const Banner banner;
    QVERIFY(banner.widget.isHidden());
}

void UpdateBannerTest::shownWhenAvailableOnly()
{
    Banner banner;
    banner.widget.fill(info(), true);
    QVERIFY(!banner.widget.isHidden());
    banner.widget.fill(info(), false);
    QVERIFY(banner.widget.isHidden());
}

void UpdateBannerTest::keepsVersionAndAddress()
{
    Banner banner;
    banner.widget.fill(info(), true);
    QCOMPARE(banner.widget.property("version").toString(), u"0.2.0"_s);
    QCOMPARE(banner.download()->property("downloadUrl").toUrl(), info().downloadUrl);
    QVERIFY(!banner.download()->isHidden());
}

void UpdateBannerTest::englishTexts()
{
    Banner banner;
    banner.widget.fill(info(), true);
    QCOMPARE(banner.title()->text(), u"A new version is available"_s);
    QCOMPARE(banner.title()->property("quillmarTextKey").toString(), u"Update.Available"_s);
    QCOMPARE(banner.versions()->text(), u"Installed version: 0.1.3\nNew version: 0.2.0"_s);
    QCOMPARE(banner.download()->text(), u"Download update"_s);
    QCOMPARE(banner.widget.layoutDirection(), Qt::LeftToRight);
    for (const QLabel *line : {banner.title(), banner.versions(), banner.notes()})
        QCOMPARE(line->alignment(), Qt::AlignLeft | Qt::AlignVCenter | Qt::AlignAbsolute);
}

void UpdateBannerTest::persianTexts()
{
    Banner banner(PersianCode);
    banner.widget.fill(info(), true);
    QCOMPARE(banner.versions()->text(), u"نسخهٔ نصب‌شده: 0.1.3\nنسخهٔ جدید: 0.2.0"_s);
    QCOMPARE(banner.widget.layoutDirection(), Qt::RightToLeft);
    for (const QLabel *line : {banner.title(), banner.versions(), banner.notes()})
        QCOMPARE(line->alignment(), Qt::AlignRight | Qt::AlignVCenter | Qt::AlignAbsolute);
}

void UpdateBannerTest::languageSwitchRendersAgain()
{
    Banner banner;
    banner.widget.fill(info(u"Better"_s), true);
    banner.texts.setLanguage(PersianCode);
    banner.widget.retranslate();
    QCOMPARE(banner.title()->text(), u"نسخهٔ جدید افزونه آماده است"_s);
    QVERIFY(banner.versions()->text().endsWith(u"0.2.0"_s));
    QCOMPARE(banner.notes()->text(), u"Better"_s);
}

void UpdateBannerTest::releaseNotes_data()
{
    QTest::addColumn<QString>("notes");
    QTest::addColumn<QString>("shown");
    QTest::newRow("none") << QString() << QString();
    QTest::newRow("blank") << u" \n\t "_s << QString();
    QTest::newRow("white space collapsed") << u"  one\n\n two "_s << u"one two"_s;
    QTest::newRow("160 units whole") << QString(160, u'n') << QString(160, u'n');
    QTest::newRow("161 units cut") << QString(161, u'n') << QString(QString(157, u'n') + u'…');
    QTest::newRow("2000 units cut") << QString(2000, u'n') << QString(QString(157, u'n') + u'…');
    QTest::newRow("pair at the cut") << QString(QString(156, u'n') + u"\U0001F600nnnn"_s)
                                     << QString(QString(156, u'n') + u'…');
}

void UpdateBannerTest::releaseNotes()
{
    QFETCH(QString, notes);
    QFETCH(QString, shown);
    Banner banner;
    banner.widget.fill(info(notes), true);
    QCOMPARE(banner.notes()->text(), shown);
    QCOMPARE(banner.notes()->toolTip(), notes.simplified());
    QCOMPARE(banner.notes()->isHidden(), shown.isEmpty());
}

void UpdateBannerTest::refusedAddressHidesTheButtonButKeepsTheTexts_data()
{
    QTest::addColumn<QUrl>("url");
    const QString host = routes::serviceHost();
    QTest::newRow("empty") << QUrl();
    QTest::newRow("http") << QUrl(u"http://"_s + host + u"/get"_s);
    QTest::newRow("other host") << QUrl(u"https://example.com/get"_s);
    QTest::newRow("user information") << QUrl(u"https://a@"_s + host + u"/get"_s);
    QTest::newRow("other port") << QUrl(u"https://"_s + host + u":444/get"_s);
    QTest::newRow("file") << QUrl(u"file:///etc/passwd"_s);
}

void UpdateBannerTest::refusedAddressHidesTheButtonButKeepsTheTexts()
{
    QFETCH(QUrl, url);
    Banner banner;
    UpdateInfo update = info(u"Better"_s);
    update.downloadUrl = url;
    banner.widget.fill(update, true);
    QVERIFY(banner.download()->isHidden());
    QVERIFY(!banner.widget.isHidden());
    for (const QLabel *line : {banner.title(), banner.versions(), banner.notes()})
        QVERIFY(!line->isHidden());
    QCOMPARE(banner.title()->text(), u"A new version is available"_s);
    QCOMPARE(banner.versions()->text(), u"Installed version: 0.1.3\nNew version: 0.2.0"_s);
    QCOMPARE(banner.notes()->text(), u"Better"_s);
}

void UpdateBannerTest::clickOpensTheAddress()
{
    Browser browser;
    Banner banner;
    banner.widget.fill(info(), true);
    banner.download()->click();
    QCOMPARE(browser.opened, QList<QUrl>{info().downloadUrl});
}

void UpdateBannerTest::clickOnARefusedAddressDoesNothing()
{
    Browser browser;
    Banner banner;
    banner.widget.fill(info(), true);
    banner.download()->setProperty("downloadUrl", QUrl(u"https://example.com/"_s));
    banner.download()->click();
    QCOMPARE(browser.opened.size(), 0);
}

void UpdateBannerTest::hostileNotesStayPlain()
{
    Banner banner;
    const QString notes = u"<b>x</b><img src=file:///etc/passwd>"_s;
    banner.widget.fill(info(notes), true);
    QCOMPARE(banner.notes()->text(), notes);
    QCOMPARE(banner.notes()->textFormat(), Qt::PlainText);
    QVERIFY(!banner.notes()->toolTip().contains(u"<img"_s));
    QVERIFY(banner.notes()->toolTip().contains(u"&lt;img"_s));
}

void UpdateBannerTest::placeholderInTheVersionIsNotFilled()
{
    Banner banner;
    UpdateInfo update = info();
    update.latestVersion = u"%1%2"_s;
    banner.widget.fill(update, true);
    QVERIFY(banner.versions()->text().endsWith(u"New version: %1%2"_s));
}

void UpdateBannerTest::longWordDoesNotWiden()
{
    Banner banner;
    banner.widget.fill(info(QString(160, u'W')), true);
    QVERIFY(banner.widget.minimumSizeHint().width() < 260);
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::UpdateBannerTest)
#include "update_banner_test.moc"
