#include "tests/host/support/robot_hand.h"
#include "tests/host/support/served_session.h"

#include <QFile>
#include <QTest>

#include <optional>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

const QString &product()
{
    static const QString name = u"Host single"_s;
    return name;
}

const Widget *details(const WidgetTree &tree)
{
    return tree.find([](const Widget &w) { return w.kind() == "ProductDetails"_L1 && w.visible; });
}

/// The card of the product, which holds the dialog that it has opened.
const Widget *card(const WidgetTree &tree)
{
    for (const Widget &widget : tree.all()) {
        const auto isName = [](const Widget &w) { return w.role == "label"_L1 && w.text == product(); };
        if (widget.name == "quillmarProductCard"_L1 && tree.findBelow(widget, isName))
            return &widget;
    }
    return nullptr;
}

DockRobot::Choice cardButton(const QString &text)
{
    return [text](const WidgetTree &tree) -> const Widget * {
        const Widget *owner = card(tree);
        return owner ? tree.findBelow(
                           *owner, [&](const Widget &w) { return w.role == "button"_L1 && w.text == text; })
                     : nullptr;
    };
}

DockRobot::Choice detailsButton(const QString &text)
{
    return [text](const WidgetTree &tree) -> const Widget * {
        const Widget *dialog = details(tree);
        return dialog ? tree.findBelow(
                            *dialog, [&](const Widget &w) { return w.role == "button"_L1 && w.text == text; })
                      : nullptr;
    };
}

/// The dialog shows a picture with this caption.
auto shows(const QString &caption)
{
    return [caption](const WidgetTree &tree) {
        const Widget *dialog = details(tree);
        return dialog && tree.findBelow(*dialog, [&](const Widget &w) { return w.text == caption; }) &&
               tree.findBelow(*dialog, [](const Widget &w) { return w.picture && w.visible; });
    };
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The details of a product and its direct download, by real clicks and keys.
class DetailsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void opensAndStepsThroughTheGallery();
    void enlargesAndClosesByEscape();
    void opensAgainInPersian();
    void downloadsTheFileAsItIs();
    void endsWithoutLeaks();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    DockRobot &robot() { return panel().robot(); }
    qsizetype visibleDialogs();

    std::unique_ptr<ServedSession> served_;
    std::optional<RobotHand> hand_;
};

void DetailsTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start({.account = u"demo"_s}, &problem);
    QVERIFY2(served_, qPrintable(problem));
    hand_.emplace(served_->session().desktop());
}

/// Dialogs of the module that are open.
qsizetype DetailsTest::visibleDialogs()
{
    qsizetype count = 0;
    const WidgetTree tree = robot().tree();
    for (const Widget &widget : tree.all())
        count += widget.visible && widget.kind().endsWith("Dialog"_L1) ? 1 : 0;
    return count + (details(tree) ? 1 : 0);
}

void DetailsTest::opensAndStepsThroughTheGallery()
{
    QVERIFY2(robot().click(cardButton(panel().text(u"Gallery.Details"_s)), u"the details button"_s),
             qPrintable(panel().problem()));
    QVERIFY2(robot().waitFor(shows(u"Overview · 1/3 · View 1"_s), u"the first picture"_s),
             qPrintable(panel().problem()));
    for (const QString &caption : {u"Overview · 2/3 · View 2"_s, u"Overview · 3/3 · View 3"_s}) {
        QVERIFY2(robot().click(detailsButton(panel().text(u"Gallery.Next"_s)), u"next"_s),
                 qPrintable(panel().problem()));
        QVERIFY2(robot().waitFor(shows(caption), caption), qPrintable(panel().problem()));
    }
}

void DetailsTest::enlargesAndClosesByEscape()
{
    QVERIFY2(robot().click(detailsButton(panel().text(u"Gallery.Enlarge"_s)), u"enlarge"_s),
             qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(visibleDialogs(), 2, 20000);
    for (const qsizetype left : {1, 0}) {
        QVERIFY(hand_->press(u"Escape"_s));
        QTRY_COMPARE_WITH_TIMEOUT(visibleDialogs(), left, 20000);
    }
}

void DetailsTest::opensAgainInPersian()
{
    QVERIFY2(panel().setLanguage(u"fa-IR"_s), qPrintable(panel().problem()));
    QVERIFY2(robot().click(cardButton(panel().text(u"Gallery.Details"_s)), u"the details button"_s),
             qPrintable(panel().problem()));
    QVERIFY2(robot().waitFor(shows(QString(panel().text(u"Gallery.Overview"_s) + u" · 1/3 · View 1"_s)),
                             u"the first picture"_s),
             qPrintable(panel().problem()));
    QVERIFY(details(robot().tree())->rightToLeft);
    QVERIFY(hand_->press(u"Escape"_s));
    QTRY_COMPARE_WITH_TIMEOUT(visibleDialogs(), 0, 20000);
    QVERIFY2(panel().setLanguage(u"en-US"_s), qPrintable(panel().problem()));
}

void DetailsTest::downloadsTheFileAsItIs()
{
    QVERIFY2(robot().click(cardButton(panel().text(u"Product.Download"_s)), u"the download button"_s),
             qPrintable(panel().problem()));
    const auto isSaved = [](const WidgetTree &tree) {
        return tree.find([](const Widget &w) {
            return w.properties["quillmarTextKey"_L1].toString() == "Download.Success"_L1;
        });
    };
    QVERIFY2(robot().waitFor(isSaved, u"the saved file"_s), qPrintable(panel().problem()));
    const QByteArray served =
        contentOf(served_->catalogue().path() + u"/packages/host-single/Host single.png"_s);
    QVERIFY(!served.isEmpty());
    QCOMPARE(contentOf(served_->session().home().packageRoot() + u"/Host single.png"_s), served);
    QCOMPARE(served_->session().home().packageFiles(), QStringList{u"Host single.png"_s});
    QCOMPARE(served_->service().count(u"download-ticket"_s), 1);
    QCOMPARE(served_->service().count(u"download-file"_s), 1);
}

void DetailsTest::endsWithoutLeaks()
{
    const ObsExit end = served_->session().quit();
    QCOMPARE(end.code, 0);
    QCOMPARE(end.log.leaks, 0);
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::DetailsTest)
#include "details_test.moc"
