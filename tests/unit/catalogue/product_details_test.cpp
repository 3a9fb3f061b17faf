#include "obs/component_actions.h"
#include "tests/unit/catalogue/details_fixture.h"

#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

/// What the dialog says, in what order and language, and how it is used by keyboard.
class ProductDetailsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { f_.emplace(); }
    void cleanup() { f_.reset(); }

    void layoutAndTexts();
    void entriesOfComponents();
    void nothingOverlaps_data();
    void nothingOverlaps();
    void textsStandAtTheReadingSide();
    void choosingAComponent();
    void productWithoutComponentsHasNoActions();
    void languageSwitchWhileOpen();
    void keyboardOnly();
    void enterOnTheEntriesPressesNothing();
    void wheelDoesNotChooseAnotherEntry();
    void accessibleNames();
    void hostileTexts_data();
    void hostileTexts();
    void megabyteTexts();

private:
    std::optional<DetailsFixture> f_;
};

void ProductDetailsTest::layoutAndTexts()
{
    const auto details = f_->open(DetailsFixture::product(0));
    const DetailsView view(details.get());
    QCOMPARE(details->size(), QSize(720, 760));
    QCOMPARE(details->windowTitle(), u"Details — Night pack"_s);
    QVERIFY(!details->isModal());
    QVERIFY(details->findChild<QScrollArea *>()->widgetResizable());
    QCOMPARE(view.header()->text(), u"Night pack\nnight · 1.2\nEverything for the night.\nSecond line."_s);
    QCOMPARE(view.preview()->minimumHeight(), 300);
    QCOMPARE(view.preview()->maximumHeight(), 300);
    QCOMPARE(view.preview()->sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
    QCOMPARE(view.preview()->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(view.preview()->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
    for (const QLabel *label : {view.header(), view.preview(), view.caption()})
        QCOMPARE(label->textFormat(), Qt::PlainText);
    for (const QLabel *label : {view.header(), view.caption()})
        QVERIFY(label->wordWrap());
    QCOMPARE(view.previous()->text(), u"Previous"_s);
    QCOMPARE(view.next()->text(), u"Next"_s);
    QCOMPARE(view.retry()->text(), u"Try again"_s);
    QCOMPARE(view.enlarge()->text(), u"Enlarge"_s);
    const ProductDetails asBuilt(DetailsFixture::product(0), f_->texts, nullptr, nullptr, &f_->card);
    QVERIFY(asBuilt.testAttribute(Qt::WA_DeleteOnClose));
}

void ProductDetailsTest::entriesOfComponents()
{
    const auto details = f_->open(DetailsFixture::pack());
    const QComboBox *entries = DetailsView(details.get()).entries();
    QCOMPARE(entries->count(), 3);
    QCOMPARE(entries->itemText(0), u"Overview"_s);
    QCOMPARE(entries->itemText(1), u"Frame — blue"_s);
    QCOMPARE(entries->itemText(2), u"Scene"_s); // without a variant: the name only
    QCOMPARE(entries->currentIndex(), 0);
}

void ProductDetailsTest::nothingOverlaps_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("as it opens") << QSize(720, 760);
    QTest::newRow("narrow and low") << QSize(420, 400);
    QTest::newRow("large") << QSize(1100, 1000);
}

void ProductDetailsTest::nothingOverlaps()
{
    QFETCH(const QSize, size);
    f_->serve("p0", {640, 360});
    ComponentProduct product = DetailsFixture::product(2);
    product.description = QString(u"A description that goes on and on. "_s).repeated(8);
    const auto details = f_->open(product);
    details->resize(size);
    const DetailsView view(details.get());
    QTRY_VERIFY(view.showsPicture());
    const auto bottom = [](const QWidget *widget) { return widget->geometry().bottom(); };
    QTRY_VERIFY(view.header()->height() >= view.header()->heightForWidth(view.header()->width()));
    QTRY_VERIFY(bottom(view.header()) < view.entries()->y());
    QTRY_VERIFY(bottom(view.entries()) < view.preview()->y());
    QTRY_COMPARE(view.preview()->height(), 300);
    QTRY_VERIFY(bottom(view.preview()) < view.caption()->y());
    QTRY_VERIFY(bottom(view.caption()) < view.next()->y());
}

void ProductDetailsTest::textsStandAtTheReadingSide()
{
    const auto details = f_->open(DetailsFixture::product(0));
    const DetailsView view(details.get());
    for (const QLabel *label : {view.header(), view.caption()})
        QCOMPARE(label->alignment(), Qt::AlignLeft | Qt::AlignTop | Qt::AlignAbsolute);
    details->applyLanguage(true);
    for (const QLabel *label : {view.header(), view.caption()})
        QCOMPARE(label->alignment(), Qt::AlignRight | Qt::AlignTop | Qt::AlignAbsolute);
}

void ProductDetailsTest::choosingAComponent()
{
    f_->serve("frame", {40, 30}, Qt::blue);
    const auto details = f_->open(DetailsFixture::pack());
    const DetailsView view(details.get());
    const auto actions = [&details] { return details->findChildren<ComponentActions *>(); };
    const auto cards = [&details] {
        return details->findChildren<QFrame *>(u"quillmarComponentCard"_s).size();
    };
    QCOMPARE(actions().size(), 1);
    QCOMPARE(cards(), 2);
    view.entries()->setCurrentIndex(1);
    QCOMPARE(actions().size(), 1);
    QCOMPARE(cards(), 1);
    // Only what keeps everything at the top comes after it.
    QCOMPARE(view.content->layout()->indexOf(actions().first()), view.content->layout()->count() - 2);
    QVERIFY(view.content->layout()->itemAt(view.content->layout()->count() - 1)->spacerItem());
    QTRY_VERIFY(actions().first()->isVisible());
    QCOMPARE(view.caption()->text(), u"Component · 1/1 · the frame"_s);
    QTRY_VERIFY(view.showsPicture());
    QCOMPARE(view.pictureColour(), QColor(Qt::blue));
    view.entries()->setCurrentIndex(0);
    QCOMPARE(cards(), 2);
    QCOMPARE(view.caption()->text(), u"Overview · 1/2 · view 0"_s);
}

void ProductDetailsTest::productWithoutComponentsHasNoActions()
{
    const auto details = f_->open(DetailsFixture::product(0));
    QVERIFY(details->findChildren<ComponentActions *>().isEmpty());
    QCOMPARE(DetailsView(details.get()).entries()->count(), 1);
}

void ProductDetailsTest::languageSwitchWhileOpen()
{
    const auto details = f_->open(DetailsFixture::pack());
    const DetailsView view(details.get());
    QTRY_VERIFY(view.preview()->text().startsWith(u"The preview could not be loaded"_s));
    f_->texts.setLanguage(PersianCode);
    details->applyLanguage(true);
    QCOMPARE(details->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(details->windowTitle(), u"جزئیات — Night pack"_s);
    QCOMPARE(view.entries()->itemText(0), u"نمای کلی"_s);
    QCOMPARE(view.caption()->text(), u"نمای کلی · 1/2 · view 0"_s);
    QCOMPARE(view.preview()->text(),
             u"پیش‌نمایش دریافت نشد. «تلاش دوباره» را بزنید."_s);
    QCOMPARE(view.previous()->text(), u"قبلی"_s);
    QCOMPARE(view.next()->text(), u"بعدی"_s);
    QCOMPARE(view.retry()->text(), u"تلاش دوباره"_s);
    QCOMPARE(view.enlarge()->text(), u"بزرگ‌نمایی"_s);
    QCOMPARE(details->findChild<ComponentActions *>()->layoutDirection(), Qt::RightToLeft);
    QTRY_VERIFY(view.previous()->x() > view.next()->x()); // the row is mirrored
    details->applyLanguage(false);
    QCOMPARE(details->layoutDirection(), Qt::LeftToRight);
    QTRY_VERIFY(view.previous()->x() < view.next()->x());
}

void ProductDetailsTest::keyboardOnly()
{
    f_->serve("p0", {40, 30});
    f_->serve("p1", {40, 30});
    f_->serve("p2", {40, 30});
    ComponentProduct product = DetailsFixture::product(3);
    product.components = {DetailsFixture::component(u"Frame"_s)};
    const auto details = f_->open(product);
    const DetailsView view(details.get());
    details->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(details.get()));
    QTRY_VERIFY(view.showsPicture());
    QTRY_VERIFY(view.entries()->hasFocus());
    view.next()->setFocus();
    QTest::keyClick(view.next(), Qt::Key_Return);
    QCOMPARE(view.caption()->text(), u"Overview · 2/3 · view 1"_s);
    QTRY_VERIFY(view.showsPicture());
    view.entries()->setFocus();
    QList<QWidget *> reached;
    for (int i = 0; i < 6; ++i) {
        reached.append(details->focusWidget());
        QTest::keyClick(details->focusWidget(), Qt::Key_Tab);
    }
    const auto buttons = details->findChild<ComponentActions *>()->findChildren<QPushButton *>();
    QList<QWidget *> wanted{view.entries(), view.previous(), view.next(), view.enlarge()};
    for (QPushButton *button : buttons) {
        if (button->isVisible())
            wanted.append(button);
    }
    QCOMPARE(reached, wanted);
    view.enlarge()->setFocus();
    QTest::keyClick(view.enlarge(), Qt::Key_Space);
    QCOMPARE(view.enlarged().size(), 1);
    QTest::keyClick(view.previous(), Qt::Key_Space);
    QCOMPARE(view.caption()->text(), u"Overview · 1/3 · view 0"_s);
    QTest::keyClick(details.get(), Qt::Key_Escape);
    QVERIFY(!details->isVisible());
}

void ProductDetailsTest::enterOnTheEntriesPressesNothing()
{
    const auto details = f_->open(DetailsFixture::pack());
    const DetailsView view(details.get());
    std::vector<std::unique_ptr<QSignalSpy>> spies;
    for (const QPushButton *button : details->findChildren<QPushButton *>())
        spies.push_back(std::make_unique<QSignalSpy>(button, &QPushButton::clicked));
    QVERIFY(!spies.empty());
    view.entries()->setFocus();
    QTest::keyClick(view.entries(), Qt::Key_Return);
    QTest::keyClick(view.entries(), Qt::Key_Enter);
    for (const auto &spy : spies)
        QCOMPARE(spy->count(), 0);
    QVERIFY(details->isVisible());
}

void ProductDetailsTest::wheelDoesNotChooseAnotherEntry()
{
    const auto details = f_->open(DetailsFixture::pack());
    QComboBox *entries = DetailsView(details.get()).entries();
    const QPointF centre = entries->rect().center();
    QWheelEvent wheel(centre, entries->mapToGlobal(centre), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(entries, &wheel);
    QCOMPARE(entries->currentIndex(), 0);
}

void ProductDetailsTest::accessibleNames()
{
    f_->serve("p0", {40, 30});
    const auto details = f_->open(DetailsFixture::pack());
    const DetailsView view(details.get());
    QCOMPARE(view.entries()->accessibleName(), u"Preview to show"_s);
    QCOMPARE(view.preview()->accessibleName(), QString()); // its text says more
    QTRY_VERIFY(view.showsPicture());
    QCOMPARE(view.preview()->accessibleName(), u"Overview · 1/2 · view 0"_s);
    for (const QPushButton *button : details->findChildren<QPushButton *>())
        QVERIFY(!button->text().isEmpty() || !button->accessibleName().isEmpty());
    view.enlarge()->click();
    QCOMPARE(view.enlarged().first()->findChild<QLabel *>()->accessibleName(), u"Overview · 1/2 · view 0"_s);
}

void ProductDetailsTest::hostileTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("rich text") << u"<b>bold</b><img src=\"file:///etc/passwd\">"_s;
    QTest::newRow("placeholders") << u"%1 %2 %n %s %99 %L1"_s;
    QTest::newRow("bidi overrides") << u"\u202Egpj.exe\u202C \u2067x\u2069"_s;
    QTest::newRow("zero character") << QString(u"a"_s + QChar(0) + u'b');
    QTest::newRow("unpaired surrogate") << QString(u"a"_s + QChar(0xD83D) + u'b');
    QTest::newRow("mnemonic") << u"&File && more"_s;
    QTest::newRow("line breaks") << u"a\nb\r\nc\u2028d"_s;
}

void ProductDetailsTest::hostileTexts()
{
    QFETCH(const QString, text);
    ComponentProduct product = DetailsFixture::product(1);
    product.product_name = product.product_key = product.product_version = product.description = text;
    product.previews.first().label = text;
    product.components = {DetailsFixture::component(text, text)};
    const auto details = f_->open(product);
    const DetailsView view(details.get());
    QCOMPARE(view.header()->text(), QString(text + u'\n' + text + u" · "_s + text + u'\n' + text));
    QCOMPARE(view.entries()->itemText(1), QString(text + u" — "_s + text));
    QCOMPARE(view.caption()->text(), QString(u"Overview · 1/1 · "_s + text));
    QCOMPARE(view.header()->textFormat(), Qt::PlainText);
    QCOMPARE(view.caption()->textFormat(), Qt::PlainText);
    QVERIFY(!details->grab().isNull());
    QVERIFY(f_->service.connects().size() <= 1);
}

void ProductDetailsTest::megabyteTexts()
{
    const QString text(1024 * 1024, u'W');
    ComponentProduct product = DetailsFixture::product(1);
    product.product_name = product.description = product.previews.first().label = text;
    product.components = {DetailsFixture::component(text, text)};
    const auto details = f_->open(product);
    const DetailsView view(details.get());
    QVERIFY(!details->grab().isNull());
    QCOMPARE(details->size(), QSize(720, 760));
    QVERIFY(details->minimumSizeHint().width() < 500);
    QCOMPARE(view.entries()->itemText(1), QString(QString(1000, u'W') + u'…'));
    QCOMPARE(details->windowTitle().size(), 1001);
    view.entries()->showPopup();
    view.entries()->hidePopup();
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::ProductDetailsTest)
#include "product_details_test.moc"
