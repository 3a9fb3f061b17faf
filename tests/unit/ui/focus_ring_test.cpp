#include "ui/focus_ring.h"
#include "ui/styles.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWindow>

#include <memory>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

/// A panel in the dock's style with one widget of every kind, and a scrolling column of buttons.
struct Panel {
    Panel()
    {
        host.setAttribute(Qt::WA_StyledBackground);
        host.setStyleSheet(styles::Dock);
        auto *column = new QVBoxLayout(&host);
        column->setContentsMargins(20, 20, 20, 20);
        combo->addItems({u"One"_s, u"Two"_s});
        for (QWidget *widget : QWidgetList{button, combo, tool, field, area})
            column->addWidget(widget);
        auto *content = new QWidget;
        auto *rows = new QVBoxLayout(content);
        for (int row = 0; row < 40; ++row) {
            rowButtons.append(new QPushButton(QString::number(row)));
            rows->addWidget(rowButtons.last());
        }
        area->setWidgetResizable(true);
        area->setWidget(content);
        ring = new FocusRing(&host);
        host.resize(360, 600);
        host.show();
        host.activateWindow();
    }

    bool isReady()
    {
        const bool isActive = QTest::qWaitForWindowActive(&host);
        host.setFocus();
        return isActive && !ring->isVisible();
    }

    QImage picture() { return host.grab().toImage(); }

    QWidget host;
    QPushButton *button = new QPushButton(u"Push"_s, &host);
    QComboBox *combo = new QComboBox(&host);
    QToolButton *tool = new QToolButton(&host);
    QLineEdit *field = new QLineEdit(&host);
    QScrollArea *area = new QScrollArea(&host);
    QList<QPushButton *> rowButtons;
    FocusRing *ring = nullptr;
};

QRect inHost(const Panel &panel, const QWidget *widget)
{
    return {widget->mapTo(&panel.host, QPoint()), widget->size()};
}

void clickInWindow(const Panel &panel, const QWidget *widget)
{
    QTest::mouseClick(panel.host.windowHandle(), Qt::LeftButton, {}, inHost(panel, widget).center());
}

} // namespace

class FocusRingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void focusIsSeen_data();
    void focusIsSeen();
    void ringSurroundsTheWidget();
    void ringStandsOutOnTheDock();
    void fieldShowsItsFocusItself();
    void clickLeavesNoRing();
    void clickedWidgetStaysWithoutRingWhenTheWindowReturns();
    void keyAfterAClickBringsTheRing();
    void ringComesBackWithTheWindow();
    void ringEndsWhereTheFocusLeavesThePanel();
    void focusedWidgetDies();
    void parentOfTheFocusedWidgetDies();
    void focusedWidgetMovesElsewhere();
    void hostDiesWithTheFocusInIt();
    void ringFollowsMovesAndScrolling();
    void ringIsCutByTheViewport();
    void focusedWidgetIsScrolledIntoView_data();
    void focusedWidgetIsScrolledIntoView();
    void windowReturnsScrolledAsItWas();
    void ringHidesWithItsWidget();
    void ringTakesNothing();

private:
    std::unique_ptr<Panel> panel_;
};

void FocusRingTest::init()
{
    panel_ = std::make_unique<Panel>();
    QVERIFY(panel_->isReady());
}

void FocusRingTest::cleanup()
{
    panel_.reset();
}

void FocusRingTest::focusIsSeen_data()
{
    QTest::addColumn<int>("place");
    QTest::newRow("push button") << 0;
    QTest::newRow("drop-down") << 1;
    QTest::newRow("tool") << 2;
    QTest::newRow("line edit") << 3;
    QTest::newRow("scroll area") << 4;
}

void FocusRingTest::focusIsSeen()
{
    QFETCH(int, place);
    QWidget *widget = panel_->host.layout()->itemAt(place)->widget();
    const QImage before = panel_->picture();
    widget->setFocus(Qt::TabFocusReason);
    QVERIFY(widget->hasFocus());
    QVERIFY(panel_->picture() != before);
    panel_->host.setFocus();
    QVERIFY(panel_->picture() == before);
}

void FocusRingTest::ringSurroundsTheWidget()
{
    panel_->button->setFocus(Qt::TabFocusReason);
    QVERIFY(panel_->ring->isVisible());
    QCOMPARE(panel_->ring->geometry(), inHost(*panel_, panel_->button).adjusted(-3, -3, 3, 3));
}

/// Two light lines on the dock's dark ground, and the button itself as it was.
void FocusRingTest::ringStandsOutOnTheDock()
{
    const QRect button = inHost(*panel_, panel_->button);
    const QImage before = panel_->picture();
    panel_->button->setFocus(Qt::TabFocusReason);
    const QImage after = panel_->picture();
    const int middle = button.center().x();
    QCOMPARE(after.pixelColor(middle, button.top() - 3), QColor(Qt::white));
    QCOMPARE(after.pixelColor(middle, button.top() - 2), QColor(Qt::white));
    QCOMPARE(after.pixelColor(middle, button.top() - 1), QColor(u"#0b100d"_s));
    QVERIFY(after.copy(button.adjusted(4, 1, -4, -1)) == before.copy(button.adjusted(4, 1, -4, -1)));
}

void FocusRingTest::fieldShowsItsFocusItself()
{
    panel_->field->setFocus(Qt::TabFocusReason);
    QVERIFY(!panel_->ring->isVisible());
}

void FocusRingTest::clickLeavesNoRing()
{
    panel_->combo->setFocus(Qt::TabFocusReason);
    QVERIFY(panel_->ring->isVisible());
    clickInWindow(*panel_, panel_->button);
    QTRY_VERIFY(panel_->button->hasFocus());
    QVERIFY(!panel_->ring->isVisible());
}

void FocusRingTest::clickedWidgetStaysWithoutRingWhenTheWindowReturns()
{
    clickInWindow(*panel_, panel_->button);
    QTRY_VERIFY(panel_->button->hasFocus());
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    panel_->host.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&panel_->host));
    QTRY_VERIFY(panel_->button->hasFocus());
    QVERIFY(!panel_->ring->isVisible());
}

void FocusRingTest::keyAfterAClickBringsTheRing()
{
    clickInWindow(*panel_, panel_->button);
    QTRY_VERIFY(panel_->button->hasFocus());
    QTest::keyClick(panel_->button, Qt::Key_Tab);
    QVERIFY(panel_->combo->hasFocus());
    QVERIFY(panel_->ring->isVisible());
    QTest::keyClick(panel_->combo, Qt::Key_Tab, Qt::ShiftModifier);
    QVERIFY(panel_->button->hasFocus());
    QVERIFY(panel_->ring->isVisible());
}

void FocusRingTest::ringComesBackWithTheWindow()
{
    panel_->button->setFocus(Qt::TabFocusReason);
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QTRY_VERIFY(!panel_->ring->isVisible());
    panel_->host.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&panel_->host));
    QTRY_VERIFY(panel_->ring->isVisible());
}

void FocusRingTest::ringEndsWhereTheFocusLeavesThePanel()
{
    QWidget window;
    auto *row = new QHBoxLayout(&window);
    auto *panel = new QWidget;
    auto *inside = new QPushButton(u"Inside"_s, panel);
    auto *outside = new QPushButton(u"Outside"_s);
    auto *ring = new FocusRing(panel);
    panel->setMinimumSize(200, 100);
    row->addWidget(panel);
    row->addWidget(outside);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    inside->setFocus(Qt::TabFocusReason);
    QVERIFY(ring->isVisible());
    outside->setFocus(Qt::TabFocusReason);
    QVERIFY(!ring->isVisible());
}

void FocusRingTest::focusedWidgetDies()
{
    panel_->button->setFocus(Qt::TabFocusReason);
    QVERIFY(panel_->ring->isVisible());
    delete panel_->button;
    QVERIFY(!panel_->ring->isVisible() || QApplication::focusWidget() == panel_->combo);
    panel_->tool->setFocus(Qt::TabFocusReason);
    QCOMPARE(panel_->ring->geometry(), inHost(*panel_, panel_->tool).adjusted(-3, -3, 3, 3));
}

void FocusRingTest::parentOfTheFocusedWidgetDies()
{
    panel_->rowButtons.at(3)->setFocus(Qt::TabFocusReason);
    QVERIFY(panel_->ring->isVisible());
    delete panel_->area->takeWidget();
    panel_->host.setFocus();
    QVERIFY(!panel_->ring->isVisible());
    panel_->button->setFocus(Qt::TabFocusReason);
    QVERIFY(panel_->ring->isVisible());
}

void FocusRingTest::focusedWidgetMovesElsewhere()
{
    panel_->button->setFocus(Qt::TabFocusReason);
    QWidget elsewhere;
    panel_->button->setParent(&elsewhere);
    panel_->button->resize(50, 50);
    panel_->tool->setFocus(Qt::TabFocusReason);
    QVERIFY(panel_->ring->isVisible());
    QCOMPARE(panel_->ring->geometry(), inHost(*panel_, panel_->tool).adjusted(-3, -3, 3, 3));
}

void FocusRingTest::hostDiesWithTheFocusInIt()
{
    QWidget window;
    auto *panel = new QWidget(&window);
    auto *inside = new QPushButton(u"Inside"_s, panel);
    const QPointer<FocusRing> ring = new FocusRing(panel);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    inside->setFocus(Qt::TabFocusReason);
    QVERIFY(ring->isVisible());
    delete panel;
    QVERIFY(!ring);
}

void FocusRingTest::ringFollowsMovesAndScrolling()
{
    QPushButton *button = panel_->rowButtons.at(4);
    button->setFocus(Qt::TabFocusReason);
    const QRect before = panel_->ring->geometry();
    panel_->area->verticalScrollBar()->setValue(panel_->area->verticalScrollBar()->value() + 10);
    QCOMPARE(panel_->ring->geometry(), before.translated(0, -10));
    panel_->host.layout()->setContentsMargins(40, 20, 20, 20);
    panel_->host.layout()->activate();
    QCOMPARE(panel_->ring->geometry().left(), before.left() + 20);
    panel_->area->verticalScrollBar()->setValue(panel_->area->verticalScrollBar()->maximum());
    QVERIFY(!panel_->ring->isVisible());
    panel_->area->verticalScrollBar()->setValue(0);
    QVERIFY(panel_->ring->isVisible());
}

void FocusRingTest::ringIsCutByTheViewport()
{
    QPushButton *button = panel_->rowButtons.first();
    button->setFocus(Qt::TabFocusReason);
    panel_->area->verticalScrollBar()->setValue(button->y() + button->height() / 2);
    QVERIFY(panel_->ring->isVisible());
    QVERIFY(panel_->ring->geometry().top() >= inHost(*panel_, panel_->area->viewport()).top());
}

void FocusRingTest::focusedWidgetIsScrolledIntoView_data()
{
    QTest::addColumn<int>("row");
    QTest::newRow("below") << 39;
    QTest::newRow("above") << 0;
}

void FocusRingTest::focusedWidgetIsScrolledIntoView()
{
    QFETCH(int, row);
    QScrollBar *bar = panel_->area->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
    bar->setValue(row == 0 ? bar->maximum() : 0);
    panel_->button->setFocus(Qt::TabFocusReason);
    panel_->rowButtons.at(row)->setFocus(Qt::BacktabFocusReason);
    QVERIFY(!panel_->rowButtons.at(row)->visibleRegion().isEmpty());
    QCOMPARE(panel_->ring->geometry().height(), panel_->rowButtons.at(row)->height() + 6);
}

void FocusRingTest::windowReturnsScrolledAsItWas()
{
    QScrollBar *bar = panel_->area->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 0);
    panel_->rowButtons.first()->setFocus(Qt::TabFocusReason);
    bar->setValue(bar->maximum());
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    panel_->host.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&panel_->host));
    QTRY_VERIFY(panel_->rowButtons.first()->hasFocus());
    QCOMPARE(bar->value(), bar->maximum());
}

void FocusRingTest::ringHidesWithItsWidget()
{
    panel_->rowButtons.first()->setFocus(Qt::TabFocusReason);
    QVERIFY(panel_->ring->isVisible());
    for (QWidget *other : QWidgetList{panel_->button, panel_->combo, panel_->tool, panel_->field})
        other->setEnabled(false);
    panel_->area->hide();
    QVERIFY(!panel_->ring->isVisible());
}

void FocusRingTest::ringTakesNothing()
{
    panel_->button->setFocus(Qt::TabFocusReason);
    QVERIFY(panel_->ring->testAttribute(Qt::WA_TransparentForMouseEvents));
    QCOMPARE(panel_->ring->focusPolicy(), Qt::NoFocus);
    QAccessibleInterface *host = QAccessible::queryAccessibleInterface(&panel_->host);
    for (int child = 0; child < host->childCount(); ++child)
        QVERIFY(host->child(child)->object() != panel_->ring);
    // A click where the ring is over the button reaches the button.
    clickInWindow(*panel_, panel_->combo);
    QTRY_VERIFY(!panel_->ring->isVisible());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::FocusRingTest)
#include "focus_ring_test.moc"
