#include "obs/component_actions.h"
#include "tests/support/libobs_fake/libobs_fake.h"
#include "tests/unit/ui/dock_fixture.h"
#include "tests/unit/ui/dock_product.h"

#include <QApplication>
#include <QMainWindow>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr int MostStops = 200;

const DockProduct product{QString(230, u'd')};

/// The dock between two other widgets of one main window, as in OBS. What comes after it is made before the
/// products arrive.
struct Window {
    explicit Window(const QString &language) : dock(language)
    {
        obs.setConfigurable(u"image_source"_s, true);
        auto *row = new QHBoxLayout(&window);
        row->addWidget(before);
        row->addWidget(&dock.panel);
        row->addWidget(after);
        dock.panel.setMinimumWidth(400);
        window.resize(700, 900);
    }

    ~Window() { dock.panel.setParent(nullptr); }
    Q_DISABLE_COPY_MOVE(Window)

    bool open()
    {
        window.show();
        window.activateWindow();
        const bool isActive = QTest::qWaitForWindowActive(&window);
        before->setFocus();
        return isActive && before->hasFocus();
    }

    void listProducts()
    {
        dock.panel.showHomeView();
        dock.panel.setProducts(
            {product(u"Plain"_s, false), product(u"Pack"_s, true), product(u"Last"_s, false)});
        const auto toggles = dock.list->findChildren<QPushButton *>();
        for (QPushButton *button : toggles) {
            if (button->isCheckable())
                button->setChecked(true);
        }
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }

    /// Where Tab stops from one end of the panel to the other.
    QWidgetList stops(bool backwards) const
    {
        QWidget *start = backwards ? after : before;
        const QWidget *end = backwards ? before : after;
        start->setFocus();
        QWidgetList reached;
        while (reached.size() < MostStops) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab,
                            backwards ? Qt::ShiftModifier : Qt::NoModifier);
            if (QApplication::focusWidget() == end || !QApplication::focusWidget())
                break;
            reached.append(QApplication::focusWidget());
        }
        return reached;
    }

    /// Everything that is shown and works by key.
    QWidgetList operable() const
    {
        QWidgetList list;
        const auto widgets = dock.panel.findChildren<QWidget *>();
        for (QWidget *widget : widgets) {
            const bool isOperable = qobject_cast<QAbstractButton *>(widget) ||
                                    qobject_cast<QComboBox *>(widget) || qobject_cast<QLineEdit *>(widget) ||
                                    qobject_cast<QScrollArea *>(widget);
            if (isOperable && widget->isVisible() && widget->isEnabled())
                list.append(widget);
        }
        return list;
    }

    LibobsFake obs;
    Dock dock;
    QWidget window;
    QPushButton *before = new QPushButton(u"before"_s);
    QPushButton *after = new QPushButton(u"after"_s);
};

QRect inPanel(const Dock &dock, const QWidget *widget)
{
    return {widget->mapTo(&dock.panel, QPoint()), widget->size()};
}

QString described(const QWidgetList &widgets)
{
    QStringList names;
    for (const QWidget *widget : widgets) {
        const auto *button = qobject_cast<const QAbstractButton *>(widget);
        names.append(button ? button->text() : QString::fromLatin1(widget->metaObject()->className()));
    }
    return names.join(u" | "_s);
}

/// Whether `second` comes after `first` for a reader: below it, or beside it on the far side.
bool isReadAfter(const QRect &first, const QRect &second, bool rightToLeft)
{
    if (second.top() > first.bottom())
        return true;
    const bool sameRow = second.bottom() >= first.top();
    return sameRow && (rightToLeft ? second.right() < first.left() : second.left() > first.right());
}

} // namespace

class KeyboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void languages_data();
    void signInInReadingOrder_data() { languages_data(); }
    void signInInReadingOrder();
    void catalogueInReadingOrder_data() { languages_data(); }
    void catalogueInReadingOrder();
    void orderFollowsALanguageSwitch();
    void updateIsReached();
    void everyButtonIsPressed_data();
    void everyButtonIsPressed();
    void disabledButtonIsNotPressed();
    void enterOnADropDownPressesNothing();
    void foldedComponentsAreNoStops();
    void hiddenCardsAreNoStops();
    void focusedButtonsAreSeen_data();
    void focusedButtonsAreSeen();
    void pageKeysScrollFromAButton();
    void focusSurvivesNewProducts();
};

void KeyboardTest::languages_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("english") << u"en-US"_s;
    QTest::newRow("persian") << u"fa-IR"_s;
}

void KeyboardTest::signInInReadingOrder()
{
    QFETCH(QString, language);
    Window window(language);
    const Dock &dock = window.dock;
    QVERIFY(window.open());
    const QWidgetList wanted{dock.selector(), dock.field(Dock::Username), dock.field(Dock::Password),
                             dock.button(Dock::SignIn)};
    QWidgetList reached = window.stops(false);
    QVERIFY2(reached == wanted, qPrintable(described(reached)));
    reached = window.stops(true);
    std::reverse(reached.begin(), reached.end());
    QVERIFY2(reached == wanted, qPrintable(described(reached)));
}

void KeyboardTest::catalogueInReadingOrder()
{
    QFETCH(QString, language);
    Window window(language);
    QVERIFY(window.open());
    window.listProducts();
    QWidgetList reached = window.stops(false);
    const QWidgetList operable = window.operable();
    for (QWidget *widget : operable)
        QVERIFY2(reached.contains(widget), qPrintable(described({widget})));
    QVERIFY2(reached.size() == operable.size(), qPrintable(described(reached)));
    for (qsizetype stop = 1; stop < reached.size(); ++stop) {
        QVERIFY2(reached.at(stop - 1)->isAncestorOf(reached.at(stop)) ||
                     isReadAfter(inPanel(window.dock, reached.at(stop - 1)),
                                 inPanel(window.dock, reached.at(stop)), language == "fa-IR"_L1),
                 qPrintable(described(reached.sliced(stop - 1, 2))));
    }
    QWidgetList back = window.stops(true);
    std::reverse(back.begin(), back.end());
    QVERIFY2(back == reached, qPrintable(described(back)));
}

void KeyboardTest::orderFollowsALanguageSwitch()
{
    Window window(u"en-US"_s);
    QVERIFY(window.open());
    window.listProducts();
    const QWidgetList english = window.stops(false);
    window.dock.texts.setLanguage(u"fa-IR"_s);
    window.dock.panel.retranslate();
    QCoreApplication::processEvents();
    QVERIFY(window.stops(false) == english);
    QVERIFY(inPanel(window.dock, window.dock.selector()).left() >
            inPanel(window.dock, window.dock.logout()).right());
}

void KeyboardTest::updateIsReached()
{
    Window window(u"en-US"_s);
    QVERIFY(window.open());
    window.dock.panel.showUpdate({u"9.0.0"_s, QUrl(u"https://quillmar.example/x"_s), false, u"Notes"_s},
                                 true);
    const QWidgetList reached = window.stops(false);
    QCOMPARE(reached.indexOf(window.dock.row(Dock::Banner)->findChild<QPushButton *>()), 1);
}

void KeyboardTest::everyButtonIsPressed_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("space") << Qt::Key_Space;
    QTest::newRow("return") << Qt::Key_Return;
    QTest::newRow("enter on the number block") << Qt::Key_Enter;
}

void KeyboardTest::everyButtonIsPressed()
{
    QFETCH(Qt::Key, key);
    Window window(u"en-US"_s);
    QVERIFY(window.open());
    window.dock.panel.showUpdate({u"9.0.0"_s, QUrl(u"https://quillmar.example/x"_s), false, u"Notes"_s},
                                 true);
    window.listProducts();
    for (const Dock::Row row : {Dock::SignIn, Dock::Retry})
        window.dock.row(row)->show();
    // Nobody is there to open the address, and the details would take the focus.
    const auto buttons = window.dock.panel.findChildren<QPushButton *>();
    int pressed = 0;
    for (QPushButton *button : buttons) {
        if (!button->isVisible() || !button->isEnabled())
            continue;
        button->disconnect(SIGNAL(clicked(bool)));
        QSignalSpy spy(button, &QPushButton::clicked);
        button->setFocus(Qt::TabFocusReason);
        QTest::keyClick(button, key);
        QVERIFY2(spy.count() == 1, qPrintable(button->text()));
        ++pressed;
    }
    QVERIFY2(pressed >= 10, qPrintable(QString::number(pressed)));
}

void KeyboardTest::disabledButtonIsNotPressed()
{
    Window window(u"en-US"_s);
    QVERIFY(window.open());
    QSignalSpy spy(&window.dock.panel, &DockPanel::signInRequested);
    window.dock.panel.setSignInEnabled(false);
    QTest::keyClick(window.dock.button(Dock::SignIn), Qt::Key_Return);
    QCOMPARE(spy.count(), 0);
}

void KeyboardTest::enterOnADropDownPressesNothing()
{
    Window window(u"en-US"_s);
    QVERIFY(window.open());
    window.listProducts();
    std::vector<std::unique_ptr<QSignalSpy>> spies;
    const auto buttons = window.dock.panel.findChildren<QPushButton *>();
    for (const QPushButton *button : buttons)
        spies.push_back(std::make_unique<QSignalSpy>(button, &QPushButton::clicked));
    const auto others = window.operable();
    for (QWidget *other : others) {
        if (qobject_cast<QPushButton *>(other))
            continue;
        other->setFocus(Qt::TabFocusReason);
        QTest::keyClick(other, Qt::Key_Return);
    }
    for (const auto &spy : spies)
        QCOMPARE(spy->count(), 0);
}

void KeyboardTest::foldedComponentsAreNoStops()
{
    Window window(u"en-US"_s);
    QVERIFY(window.open());
    window.listProducts();
    const qsizetype open = window.stops(false).size();
    const auto buttons = window.dock.list->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        if (button->isCheckable()) {
            button->setFocus();
            QTest::keyClick(button, Qt::Key_Return);
        }
    }
    QCOMPARE(window.stops(false).size(), open - 2);
}

void KeyboardTest::hiddenCardsAreNoStops()
{
    Window window(u"en-US"_s);
    QVERIFY(window.open());
    window.listProducts();
    window.dock.list->findChild<QLineEdit *>()->setText(u"Last"_s);
    // Selector, log out, refresh, search, category, the list itself, and the details of one card.
    QCOMPARE(window.stops(false).size(), 7);
}

void KeyboardTest::focusedButtonsAreSeen_data()
{
    QTest::addColumn<int>("height");
    QTest::addColumn<bool>("backwards");
    for (const int height : {900, 640}) {
        QTest::addRow("%d pixels high, forwards", height) << height << false;
        QTest::addRow("%d pixels high, backwards", height) << height << true;
    }
}

/// In the smaller window a card is higher than what is left for the list.
void KeyboardTest::focusedButtonsAreSeen()
{
    QFETCH(int, height);
    QFETCH(bool, backwards);
    Window window(u"en-US"_s);
    window.window.resize(700, height);
    QVERIFY(window.open());
    window.listProducts();
    const auto *area = window.dock.list->findChild<QScrollArea *>();
    if (height < 900)
        QVERIFY(area->viewport()->height() <
                window.dock.list->findChild<QFrame *>(u"quillmarProductCard"_s)->height());
    (backwards ? window.after : window.before)->setFocus();
    for (qsizetype left = window.stops(backwards).size(); left > 0; --left) {
        if (left == window.stops(backwards).size())
            (backwards ? window.after : window.before)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab,
                        backwards ? Qt::ShiftModifier : Qt::NoModifier);
        const QWidget *focused = QApplication::focusWidget();
        if (area->viewport()->isAncestorOf(focused))
            QVERIFY2(focused->visibleRegion().boundingRect() == focused->rect(),
                     qPrintable(described({QApplication::focusWidget()})));
    }
}

void KeyboardTest::pageKeysScrollFromAButton()
{
    Window window(u"en-US"_s);
    QVERIFY(window.open());
    window.listProducts();
    const auto *area = window.dock.list->findChild<QScrollArea *>();
    QTRY_VERIFY(area->verticalScrollBar()->maximum() > 0);
    auto *button = area->findChild<QPushButton *>();
    button->setFocus();
    QTest::keyClick(button, Qt::Key_PageDown);
    QVERIFY(area->verticalScrollBar()->value() > 0);
    QTest::keyClick(button, Qt::Key_PageUp);
    QCOMPARE(area->verticalScrollBar()->value(), 0);
}

void KeyboardTest::focusSurvivesNewProducts()
{
    Window window(u"en-US"_s);
    QVERIFY(window.open());
    window.listProducts();
    window.stops(true).first()->setFocus(Qt::TabFocusReason);
    window.listProducts();
    const QWidgetList again = window.stops(false);
    QCOMPARE(again.size(), window.operable().size());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::KeyboardTest)
#include "keyboard_test.moc"
