#include "ui/selectable_label.h"

#include "tests/unit/ui/ink.h"

#include <QTest>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr int Narrow = 120;

const QString LongPath =
    u"C:\\Users\\streamer\\Downloads\\Quillmar\\0123456789abcdef\\Components\\match.png"_s;

/// As wide as said and as high as its text is then.
void fit(QLabel &label, int width)
{
    label.resize(width, label.heightForWidth(width));
}

class PaintCounter : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }

    int count = 0;
};

} // namespace

class SelectableLabelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isPlainWrappedAndSelectable();
    void neverWidensItsPlace();
    void wordThatIsTooWideIsBroken_data();
    void wordThatIsTooWideIsBroken();
    void longTextIsShownWhole();
    void nextTextIsBrokenToo();
    void layoutGivesItTheHeightOfItsText();
    void wordsThatFitLookAsEver();
    void brokenPathIsSelectedWithTheMouse();
    void brokenPathIsSelectedWhole();
    void isPaintedOnce();
};

void SelectableLabelTest::isPlainWrappedAndSelectable()
{
    const SelectableLabel label;
    QCOMPARE(label.textFormat(), Qt::PlainText);
    QVERIFY(label.wordWrap());
    QCOMPARE(label.textInteractionFlags(), Qt::TextSelectableByMouse);
    QCOMPARE(label.sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
    QCOMPARE(label.sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
}

void SelectableLabelTest::neverWidensItsPlace()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *label = new SelectableLabel;
    label->setText(LongPath);
    layout->addWidget(label);
    QVERIFY(window.minimumSizeHint().width() < 100);
}

void SelectableLabelTest::wordThatIsTooWideIsBroken_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Qt::Alignment>("side");
    const Qt::Alignment left = Qt::AlignLeft;
    const Qt::Alignment right = Qt::AlignRight | Qt::AlignAbsolute;
    QTest::newRow("path") << LongPath << left;
    QTest::newRow("path at the right") << LongPath << right;
    QTest::newRow("name without any separator") << QString(60, u'm') << left;
    QTest::newRow("second line") << QString(u"Added to OBS.\n"_s + LongPath) << left;
    QTest::newRow("second line, Persian before") << QString(u"به OBS افزوده شد.\n"_s + LongPath) << right;
}

/// Every letter is there: as much ink as the same letters leave in a label that is wide enough.
void SelectableLabelTest::wordThatIsTooWideIsBroken()
{
    QFETCH(const QString, text);
    QFETCH(const Qt::Alignment, side);
    const auto ink = [&](int width) {
        SelectableLabel label;
        label.setText(text);
        label.setAlignment(side | Qt::AlignTop);
        fit(label, width);
        return inkOf(label);
    };
    const double whole = ink(1500);
    QVERIFY(whole > 0);
    const double broken = ink(Narrow);
    QVERIFY2(std::abs(broken / whole - 1) < 0.05, qPrintable(QString::number(broken / whole)));
}

void SelectableLabelTest::longTextIsShownWhole()
{
    SelectableLabel label;
    label.setText(QString(5000, u'm'));
    const int height = label.heightForWidth(Narrow);
    label.setText(QString(6000, u'm'));
    QVERIFY(label.heightForWidth(Narrow) > 1.1 * height);
}

void SelectableLabelTest::nextTextIsBrokenToo()
{
    SelectableLabel first;
    first.setText(LongPath);
    SelectableLabel second;
    second.setText(u"Downloading…"_s);
    fit(second, Narrow);
    QVERIFY(!second.grab().isNull());
    second.setText(LongPath);
    for (QLabel *label : {&first, &second})
        fit(*label, Narrow);
    QCOMPARE(second.size(), first.size());
    QCOMPARE(second.grab().toImage(), first.grab().toImage());
}

void SelectableLabelTest::layoutGivesItTheHeightOfItsText()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *label = new SelectableLabel;
    label->setText(LongPath);
    layout->addWidget(label);
    layout->addStretch();
    window.resize(Narrow, 600);
    layout->activate();
    QCOMPARE(label->height(), label->heightForWidth(label->width()));
    QVERIFY(label->height() >= 4 * label->fontMetrics().height());
}

void SelectableLabelTest::wordsThatFitLookAsEver()
{
    SelectableLabel label;
    QLabel plain;
    plain.setTextFormat(Qt::PlainText);
    plain.setWordWrap(true);
    plain.setTextInteractionFlags(Qt::TextSelectableByMouse);
    for (QLabel *each : std::initializer_list<QLabel *>{&label, &plain}) {
        each->setText(u"The package was saved in the folder of your downloads."_s);
        fit(*each, Narrow);
    }
    QCOMPARE(label.size(), plain.size());
    QCOMPARE(label.grab().toImage(), plain.grab().toImage());
}

void SelectableLabelTest::brokenPathIsSelectedWithTheMouse()
{
    SelectableLabel label;
    label.setText(LongPath);
    label.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    fit(label, Narrow);
    label.show();
    QVERIFY(QTest::qWaitForWindowExposed(&label));
    fit(label, Narrow);
    const int line = label.fontMetrics().lineSpacing();
    const QPoint start(1, line + line / 2);
    const QPoint end(label.width() - 1, line + line / 2);
    QTest::mousePress(&label, Qt::LeftButton, {}, start);
    QTest::mouseMove(&label, end);
    QTest::mouseRelease(&label, Qt::LeftButton, {}, end);
    const QString selected = label.selectedText();
    QVERIFY2(selected.size() > 5, qPrintable(selected));
    QVERIFY2(LongPath.indexOf(selected) > 0, qPrintable(selected));
}

void SelectableLabelTest::brokenPathIsSelectedWhole()
{
    SelectableLabel label;
    label.setText(LongPath);
    fit(label, Narrow);
    label.setSelection(0, static_cast<int>(LongPath.size()));
    QCOMPARE(label.selectedText(), LongPath);
}

/// Breaking the text while it is painted must not ask for the next painting.
void SelectableLabelTest::isPaintedOnce()
{
    SelectableLabel label;
    label.setContentsMargins(3, 4, 5, 6);
    label.setIndent(7);
    label.setMargin(2);
    label.setText(LongPath);
    fit(label, Narrow);
    label.show();
    QVERIFY(QTest::qWaitForWindowExposed(&label));
    PaintCounter counter;
    label.installEventFilter(&counter);
    label.update();
    QTRY_VERIFY(counter.count > 0);
    for (int round = 0; round < 100; ++round)
        QCoreApplication::processEvents();
    QVERIFY2(counter.count <= 3, qPrintable(QString::number(counter.count)));
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::SelectableLabelTest)
#include "selectable_label_test.moc"
