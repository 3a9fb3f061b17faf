#include "tests/host/support/accessible_tree.h"
#include "tests/host/support/served_session.h"
#include "tests/support/processes/waiting.h"

#include <QTest>

#include <optional>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

/// What is read out of one thing: the kind of thing, and its name.
QString spoken(const QString &kind, const QString &name)
{
    return kind + u": "_s + name;
}

/// What a reader should say about everything that the tree shows, in its order.
QStringList expected(const WidgetTree &tree)
{
    QStringList lines;
    for (const Widget &widget : tree.all()) {
        if (!widget.visible || widget.role.isEmpty())
            continue;
        const QString name = widget.accessibleName.isEmpty() ? widget.text : widget.accessibleName;
        if (widget.role == "list"_L1)
            lines.append(spoken(u"list"_s, widget.text));
        else if (widget.role == "field"_L1)
            lines.append(spoken(u"field"_s, widget.accessibleName));
        else if (widget.picture)
            lines.append(spoken(u"picture"_s, name));
        else if (!name.isEmpty())
            lines.append(spoken(widget.role, name));
    }
    return lines;
}

QString kindOf(const AccessibleObject &object)
{
    static const QHash<QString, QString> kinds{
        {u"label"_s, u"label"_s},          {u"button"_s, u"button"_s},    {u"push button"_s, u"button"_s},
        {u"toggle button"_s, u"button"_s}, {u"check box"_s, u"button"_s}, {u"combo box"_s, u"list"_s},
        {u"text"_s, u"field"_s},           {u"entry"_s, u"field"_s},      {u"password text"_s, u"field"_s},
        {u"image"_s, u"picture"_s},        {u"icon"_s, u"picture"_s}};
    return kinds.value(object.role);
}

bool isBelow(const QList<AccessibleObject> &objects, int place, int ancestor)
{
    while (place > ancestor)
        place = objects.at(place).parent;
    return place == ancestor;
}

/// The same as it is read out, for everything below the object at `root`.
QStringList readOut(const QList<AccessibleObject> &objects, int root)
{
    QStringList lines;
    for (int place = root; place < objects.size(); ++place) {
        const AccessibleObject &object = objects.at(place);
        const QString kind = kindOf(object);
        const bool isSilent = object.role == "label"_L1 && object.name.isEmpty();
        if (object.visible && !kind.isEmpty() && !isSilent && isBelow(objects, place, root))
            lines.append(spoken(kind, object.name));
    }
    return lines;
}

/// The innermost object that holds both what `first` and what `second` choose; -1 without them.
int holderOf(const QList<AccessibleObject> &objects, const QString &description, const QString &name)
{
    int holder = -1;
    for (int place = 0; place < objects.size(); ++place) {
        if (objects.at(place).role == "combo box"_L1 && objects.at(place).description == description)
            holder = place;
    }
    const auto holdsName = [&](int root) {
        for (int place = root; place < objects.size(); ++place) {
            if (objects.at(place).name == name && isBelow(objects, place, root))
                return true;
        }
        return false;
    };
    while (holder >= 0 && !holdsName(holder))
        holder = objects.at(holder).parent;
    return holder;
}

const Widget *focused(const WidgetTree &tree)
{
    return tree.find([](const Widget &widget) { return widget.focus; });
}

bool ringIsShown(const WidgetTree &tree)
{
    return tree.find([](const Widget &w) { return w.kind() == "FocusRing"_L1 && w.visible; });
}

const Widget *details(const WidgetTree &tree)
{
    return tree.find([](const Widget &w) { return w.kind() == "ProductDetails"_L1 && w.visible; });
}

/// Shown, and where keys go: until then they still go to the window below.
bool detailsAreOpen(const WidgetTree &tree)
{
    const Widget *dialog = details(tree);
    return dialog && dialog->active;
}

} // namespace

/// The dock as a screen reader and a user without a mouse meet it.
class AccessibilityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void languages_data();
    void keysReachAndPress_data() { languages_data(); }
    void keysReachAndPress();
    void readerStarts();
    void readerMeetsWhatTheDockShows_data() { languages_data(); }
    void readerMeetsWhatTheDockShows();
    void everythingFocusableHasAName_data() { languages_data(); }
    void everythingFocusableHasAName();
    void endsWithoutLeaks();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    DockRobot &robot() { return panel().robot(); }
    QString focusedText();
    bool tabTo(const QString &text);
    int dockIn(const QList<AccessibleObject> &objects);

    std::unique_ptr<ServedSession> served_;
    std::unique_ptr<ScreenReader> reader_;
    std::optional<RobotHand> hand_;
    QStringList visited_; ///< where Tab stopped
};

void AccessibilityTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start({.account = u"demo"_s}, &problem);
    QVERIFY2(served_, qPrintable(problem));
    hand_.emplace(served_->session().desktop());
}

/// After the keys: with a reader, Qt passes every key to it first.
void AccessibilityTest::readerStarts()
{
    QString problem;
    const QProcessEnvironment desktop = served_->session().desktop();
    reader_ = ScreenReader::start(desktop.value(u"DBUS_SESSION_BUS_ADDRESS"_s), &problem);
    QVERIFY2(reader_, qPrintable(problem));
}

void AccessibilityTest::languages_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("english") << u"en-US"_s;
    QTest::newRow("persian") << u"fa-IR"_s;
}

/// The place of the dock: what holds both the language selector and the button to refresh.
int AccessibilityTest::dockIn(const QList<AccessibleObject> &objects)
{
    return holderOf(objects, panel().text(u"Language.Label"_s), panel().text(u"Gallery.Refresh"_s));
}

void AccessibilityTest::readerMeetsWhatTheDockShows()
{
    QFETCH(QString, language);
    QVERIFY2(panel().setLanguage(language), qPrintable(panel().problem()));
    QStringList wanted;
    QStringList met;
    const auto agree = [&] {
        const QList<AccessibleObject> objects = reader_->read();
        const int dock = dockIn(objects);
        wanted = expected(robot().tree());
        met = dock < 0 ? QStringList() : readOut(objects, dock);
        return met == wanted;
    };
    const bool agreed = waitUntil(agree, 60s);
    QVERIFY2(wanted.size() > 20, qPrintable(wanted.join(u'\n')));
    QVERIFY2(agreed, qPrintable(u"wanted:\n%1\n\nmet:\n%2"_s.arg(wanted.join(u'\n'), met.join(u'\n'))));
}

void AccessibilityTest::everythingFocusableHasAName()
{
    QFETCH(QString, language);
    QVERIFY2(panel().setLanguage(language), qPrintable(panel().problem()));
    QList<AccessibleObject> objects;
    int dock = -1;
    QVERIFY(waitUntil(
        [&] {
            objects = reader_->read();
            dock = dockIn(objects);
            return dock >= 0;
        },
        60s));
    for (int place = dock; place < objects.size(); ++place) {
        const AccessibleObject &object = objects.at(place);
        const bool matters = object.visible && object.focusable && object.role != "label"_L1;
        QVERIFY2(!matters || !isBelow(objects, place, dock) || !object.name.isEmpty(),
                 qPrintable(object.role));
    }
}

QString AccessibilityTest::focusedText()
{
    const WidgetTree tree = robot().tree();
    const Widget *widget = focused(tree);
    return widget ? withoutIsolates(widget->text) : QString();
}

/// Presses Tab until the focus is on the widget with `text`, each time waiting for the focus to move.
bool AccessibilityTest::tabTo(const QString &text)
{
    for (int presses = 0; presses < 40; ++presses) {
        if (focusedText() == text)
            return true;
        const WidgetTree before = robot().tree();
        const Widget *from = focused(before);
        visited_.append(from ? from->kind() + u' ' + from->text : u"nothing"_s);
        if (!from)
            return false;
        // Places in the tree change when the ring is raised.
        const auto hasMoved = [&, place = from->rect] {
            const WidgetTree now = robot().tree();
            return focused(now) && focused(now)->rect != place;
        };
        if (!hand_->press(u"Tab"_s) || !waitUntil(hasMoved))
            return false;
    }
    return false;
}

void AccessibilityTest::keysReachAndPress()
{
    QFETCH(QString, language);
    QVERIFY2(panel().setLanguage(language), qPrintable(panel().problem()));
    QVERIFY2(robot().click(searchField, u"the search field"_s), qPrintable(panel().problem()));
    const auto fieldHasFocus = [](const WidgetTree &tree) { return searchField(tree)->focus; };
    QVERIFY2(robot().waitFor(fieldHasFocus, u"the focus"_s), qPrintable(panel().problem()));
    visited_.clear();
    QVERIFY2(tabTo(panel().text(u"Gallery.Details"_s)), qPrintable(visited_.join(u" | "_s)));
    QVERIFY2(robot().waitFor(ringIsShown, u"the focus ring"_s), qPrintable(panel().problem()));
    QVERIFY(served_->session().takeScreenshot(QCoreApplication::applicationDirPath() + u"/focus-"_s +
                                              language + u".png"_s));
    for (const QString &key : {u"Return"_s, u"space"_s}) {
        QVERIFY(hand_->press(key));
        QVERIFY2(robot().waitFor(detailsAreOpen, u"the details"_s), qPrintable(panel().problem()));
        QVERIFY(hand_->press(u"Escape"_s));
        QVERIFY2(robot().waitFor([](const WidgetTree &tree) { return !details(tree); }, u"no details"_s),
                 qPrintable(panel().problem()));
        QTRY_COMPARE_WITH_TIMEOUT(focusedText(), panel().text(u"Gallery.Details"_s), 20000);
    }
}

void AccessibilityTest::endsWithoutLeaks()
{
    QVERIFY2(panel().setLanguage(u"en-US"_s), qPrintable(panel().problem()));
    const ObsExit end = served_->session().quit();
    QCOMPARE(end.code, 0);
    QCOMPARE(end.log.leaks, 0);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::AccessibilityTest)
#include "accessibility_test.moc"
