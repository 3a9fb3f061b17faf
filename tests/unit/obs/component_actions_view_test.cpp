#include "tests/unit/obs/actions_fixture.h"

#include <QBoxLayout>
#include <QFrame>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillmar;
using namespace quillmar::test;

namespace
{

using Fixture = ActionsFixture;

QString styleOf(const QString &normal, const QString &hover, const QString &pressed, const QString &disabled)
{
    return u"QPushButton { background-color: "_s + normal +
           u"; color: #101810; border: none; border-radius: 6px; padding: 6px 8px; font-size: 13px; }"_s
           u"QPushButton:hover { background-color: "_s +
           hover + u"; }QPushButton:pressed { background-color: "_s + pressed +
           u"; }QPushButton:disabled { background-color: "_s + disabled + u"; color: #17201d; }"_s;
}

QStringList labelTexts(const QWidget *widget)
{
    QStringList texts;
    const QList<QLabel *> labels = widget->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        texts.append(label->text());
    }
    return texts;
}

} // namespace

class ComponentActionsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void productWithoutComponents();
    void oneCardPerComponentInOrder();
    void neitherInsertableNorDownloadable();
    void buttonsOfAComponent_data();
    void buttonsOfAComponent();
    void stingerWithoutAFrontEnd();
    void layoutOfTheCards();
    void styles();
    void statusLabels();
    void titlesAreText();
    void foldedUntilToggled();
    void foldedComponentsAreStyledWhenUnfolded();
    void expandedForGood();
    void captionsComeWithRetranslation();
    void captionsFromRightToLeft();
    void missingTextsShowTheirKeys();
    void alignmentFollowsTheDirection();
    void directionIsTheArgumentsNotTheLanguages();
    void fitsANarrowDock();
};

void ComponentActionsViewTest::productWithoutComponents()
{
    Fixture fixture;
    fixture.product.components.clear();
    fixture.makeActions(false);

    QCOMPARE(fixture.toggle()->text(), u"Contents (0), not %2"_s);
    QVERIFY(!fixture.toggle()->isHidden());
    const QWidget *container = fixture.actions->layout()->itemAt(1)->widget();
    QCOMPARE(container->findChildren<QWidget *>(), QList<QWidget *>());
    QVERIFY(!fixture.packageButton()->isHidden());
    QCOMPARE(fixture.packageButton()->text(), u"Whole package"_s);
}

void ComponentActionsViewTest::oneCardPerComponentInOrder()
{
    Fixture fixture;
    fixture.makeActions();
    QStringList titles;
    const QList<QFrame *> cards = fixture.actions->findChildren<QFrame *>(u"quillmarComponentCard"_s);
    for (const QFrame *card : cards) {
        titles.append(card->findChild<QLabel *>()->text());
    }

    QCOMPARE(titles, QStringList({u"Frame"_s, u"Fonts"_s, u"<b>Guide</b> %1"_s, u"Sting"_s, u"Gone"_s}));
    QCOMPARE(fixture.toggle()->text(), u"Contents (5), not %2"_s);
}

void ComponentActionsViewTest::neitherInsertableNorDownloadable()
{
    Fixture fixture;
    fixture.makeActions();

    QCOMPARE(fixture.card(Fixture::Nothing)->findChildren<QPushButton *>(), QList<QPushButton *>());
    QCOMPARE(labelTexts(fixture.card(Fixture::Nothing)), QStringList(u"<b>Guide</b> %1"_s));
}

void ComponentActionsViewTest::buttonsOfAComponent_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<QStringList>("captions");
    const QString add = u"Add to OBS"_s;
    const QString download = u"Download, not to OBS"_s;
    QTest::newRow("insertable") << u"file"_s << true << QStringList({add, download});
    QTest::newRow("insertion not enabled") << u"file"_s << false << QStringList(download);
    QTest::newRow("folder") << u"folder"_s << true << QStringList(download);
    QTest::newRow("unknown kind") << u"link"_s << true << QStringList();
}

void ComponentActionsViewTest::buttonsOfAComponent()
{
    QFETCH(const QString, kind);
    QFETCH(const bool, automatic);
    QFETCH(const QStringList, captions);
    Fixture fixture;
    fixture.product.components[Fixture::Overlay].asset_kind = kind;
    fixture.product.components[Fixture::Overlay].auto_insert_enabled = automatic;
    fixture.makeActions();

    QStringList shown;
    const QList<QPushButton *> buttons = fixture.card(Fixture::Overlay)->findChildren<QPushButton *>();
    for (const QPushButton *button : buttons) {
        shown.append(button->text());
    }
    QCOMPARE(shown, captions);
}

void ComponentActionsViewTest::stingerWithoutAFrontEnd()
{
    Fixture fixture;
    fixture.makeActions();

    QCOMPARE(fixture.card(Fixture::Stinger)->findChildren<QPushButton *>().size(), 1); // download alone
}

void ComponentActionsViewTest::layoutOfTheCards()
{
    Fixture fixture;
    fixture.makeActions();
    const QFrame *card = fixture.card(Fixture::Overlay);
    auto *layout = qobject_cast<QVBoxLayout *>(card->layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->contentsMargins(), QMargins(8, 8, 8, 8));
    QCOMPARE(layout->spacing(), 6);

    auto *row = qobject_cast<QHBoxLayout *>(layout->itemAt(1)->layout());
    QVERIFY(row != nullptr);
    QCOMPARE(row->spacing(), 6);
    QCOMPARE(row->itemAt(0)->widget(), fixture.addButton(Fixture::Overlay));
    QCOMPARE(row->itemAt(1)->widget(), fixture.downloadButton(Fixture::Overlay));
    QCOMPARE(row->stretch(0), 1);
    QCOMPARE(row->stretch(1), 1);
    QCOMPARE(layout->itemAt(2)->widget(), fixture.status(fixture.addButton(Fixture::Overlay)));
    QCOMPARE(layout->itemAt(3)->widget(), fixture.status(fixture.downloadButton(Fixture::Overlay)));

    const QLayout *container = card->parentWidget()->layout();
    QCOMPARE(container->contentsMargins(), QMargins());
    QCOMPARE(container->spacing(), 8);

    auto *outer = qobject_cast<QVBoxLayout *>(fixture.actions->layout());
    QVERIFY(outer != nullptr);
    QCOMPARE(outer->contentsMargins(), QMargins());
    QCOMPARE(outer->itemAt(0)->widget(), fixture.toggle());
    QCOMPARE(outer->itemAt(1)->widget(), card->parentWidget());
    QCOMPARE(outer->itemAt(2)->widget(), fixture.packageButton());
    QCOMPARE(outer->stretch(2), 0);
    QCOMPARE(outer->itemAt(3)->widget(), fixture.status(fixture.packageButton()));
}

void ComponentActionsViewTest::styles()
{
    Fixture fixture;
    fixture.makeActions();
    const QString blue = styleOf(u"#18C8F4"_s, u"#50D8F8"_s, u"#10A6CE"_s, u"#528B99"_s);
    const QString orange = styleOf(u"#FF9D00"_s, u"#FFB638"_s, u"#D98200"_s, u"#A88855"_s);

    QCOMPARE(fixture.addButton(Fixture::Overlay)->styleSheet(), blue);
    QCOMPARE(fixture.downloadButton(Fixture::Overlay)->styleSheet(), orange);
    QCOMPARE(fixture.packageButton()->styleSheet(), orange);
    QCOMPARE(fixture.card(Fixture::Overlay)->styleSheet(),
             u"QFrame#quillmarComponentCard { background-color: #111a15; border: 1px solid #365c2c; "
             u"border-radius: 7px; }"_s);
}

void ComponentActionsViewTest::statusLabels()
{
    Fixture fixture;
    fixture.makeActions();

    for (const QPushButton *button : {fixture.addButton(Fixture::Overlay),
                                      fixture.downloadButton(Fixture::Overlay), fixture.packageButton()}) {
        const QLabel *label = fixture.status(button);
        QVERIFY(label->isHidden());
        QVERIFY(label->wordWrap());
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QCOMPARE(label->sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
        QCOMPARE(label->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
        QCOMPARE(label->textInteractionFlags(), Qt::TextSelectableByMouse);
    }
}

void ComponentActionsViewTest::titlesAreText()
{
    Fixture fixture;
    fixture.makeActions();
    const QLabel *title = fixture.card(Fixture::Nothing)->findChild<QLabel *>();

    QCOMPARE(title->textFormat(), Qt::PlainText);
    QVERIFY(title->wordWrap());
}

void ComponentActionsViewTest::foldedUntilToggled()
{
    Fixture fixture;
    fixture.makeActions(false);
    const QWidget *container = fixture.card(Fixture::Overlay)->parentWidget();

    QVERIFY(fixture.toggle()->isCheckable());
    QVERIFY(container->isHidden());
    fixture.toggle()->click();
    QVERIFY(!container->isHidden());
    fixture.toggle()->click();
    QVERIFY(container->isHidden());
    QVERIFY(!fixture.packageButton()->isHidden());
}

void ComponentActionsViewTest::foldedComponentsAreStyledWhenUnfolded()
{
    ActionsFixture f;
    f.makeActions(false);
    f.actions->show();
    QVERIFY(QTest::qWaitForWindowExposed(f.actions.get()));
    const QPushButton *button = f.addButton(ActionsFixture::Overlay);
    QVERIFY(!button->testAttribute(Qt::WA_WState_Polished));
    f.toggle()->click();
    QCoreApplication::sendPostedEvents();
    QVERIFY(button->testAttribute(Qt::WA_WState_Polished));
    QCOMPARE(button->palette().color(QPalette::Button), QColor(u"#18C8F4"_s));
    QCOMPARE(button->font().pixelSize(), 13);
}

void ComponentActionsViewTest::expandedForGood()
{
    Fixture fixture;
    fixture.makeActions(true);

    QVERIFY(fixture.toggle()->isChecked());
    QVERIFY(fixture.toggle()->isHidden());
    QVERIFY(!fixture.card(Fixture::Overlay)->parentWidget()->isHidden());
}

void ComponentActionsViewTest::captionsComeWithRetranslation()
{
    Fixture fixture;
    ComponentActions actions{fixture.product, fixture.downloads.get(), fixture.localisation, nullptr, false};
    const QList<QPushButton *> buttons = actions.findChildren<QPushButton *>();
    for (const QPushButton *button : buttons) {
        QCOMPARE(button->text(), QString());
    }
    actions.retranslate(Qt::LeftToRight);
    for (const QPushButton *button : buttons) {
        QVERIFY(!button->text().isEmpty());
    }
}

void ComponentActionsViewTest::captionsFromRightToLeft()
{
    Fixture fixture;
    fixture.makeActions();
    QCOMPARE(fixture.addButton(Fixture::Overlay)->text(), u"Add to OBS"_s);
    fixture.useLanguage(PersianCode);

    QCOMPARE(fixture.addButton(Fixture::Overlay)->text(),
             u"\u2067\u2066OBS\u2069: افزودن به \u2066OBS\u2069\u2069"_s);
    QCOMPARE(fixture.downloadButton(Fixture::Overlay)->text(), u"دانلود، نه در OBS"_s);
    QCOMPARE(fixture.packageButton()->text(), u"کل بسته"_s);
    QCOMPARE(fixture.toggle()->text(), u"محتوا (5)"_s);
    fixture.useLanguage(EnglishCode);
    QCOMPARE(fixture.addButton(Fixture::Overlay)->text(), u"Add to OBS"_s);
}

void ComponentActionsViewTest::missingTextsShowTheirKeys()
{
    Fixture fixture;
    const Localisation empty{[](const char *, const char **) { return false; }, [](const QString &) {}};
    ComponentActions actions{fixture.product, fixture.downloads.get(), empty, nullptr, false};
    actions.retranslate(Qt::LeftToRight);
    const QList<QPushButton *> buttons = actions.findChildren<QPushButton *>(Qt::FindDirectChildrenOnly);

    QCOMPARE(buttons.value(0)->text(), u"Component.Contents"_s);
    QCOMPARE(buttons.value(1)->text(), u"Component.FullDownload"_s);
}

void ComponentActionsViewTest::alignmentFollowsTheDirection()
{
    Fixture fixture;
    fixture.makeActions();
    const QList<QLabel *> labels = fixture.actions->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        QCOMPARE(label->alignment(), Qt::AlignLeft | Qt::AlignAbsolute | Qt::AlignTop);
    }
    fixture.useLanguage(PersianCode);
    QCOMPARE(fixture.actions->layoutDirection(), Qt::RightToLeft);
    for (const QLabel *label : labels) {
        QCOMPARE(label->alignment(), Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignTop);
    }
}

void ComponentActionsViewTest::directionIsTheArgumentsNotTheLanguages()
{
    Fixture fixture;
    fixture.makeActions();
    fixture.actions->retranslate(Qt::RightToLeft);

    QCOMPARE(fixture.actions->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(fixture.addButton(Fixture::Overlay)->text(), u"\u2067Add to \u2066OBS\u2069\u2069"_s);
}

void ComponentActionsViewTest::fitsANarrowDock()
{
    Fixture fixture;
    fixture.makeActions();

    QVERIFY2(fixture.actions->minimumSizeHint().width() <= 300,
             qPrintable(QString::number(fixture.actions->minimumSizeHint().width())));
}

QTEST_MAIN(ComponentActionsViewTest)
#include "component_actions_view_test.moc"
