#include "ui/wrapping_label.h"

#include "tests/unit/ui/ink.h"

#include <QTest>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class WrappingLabelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isPlainAndWrapped();
    void neverWidensItsPlace();
    void layoutGivesItTheHeightOfItsText();
    void heightFollowsTheWidth();
    void heightFollowsEverythingElse();
    void heightIsThatOfAPlainLabelAtEveryWidth();
    void megabyteIsKeptWholeAndShownInPart();
    void longTextLooksLikeAnyOther();
    void wordThatIsTooWideIsBroken_data();
    void wordThatIsTooWideIsBroken();
    void wordsThatFitLookAsEver();
};

void WrappingLabelTest::isPlainAndWrapped()
{
    WrappingLabel label;
    label.setText(u"text"_s);
    QCOMPARE(label.textFormat(), Qt::PlainText);
    QVERIFY(label.wordWrap());
    QCOMPARE(label.sizePolicy().horizontalPolicy(), QSizePolicy::Ignored);
    QCOMPARE(label.sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    QVERIFY(label.hasHeightForWidth());
}

void WrappingLabelTest::neverWidensItsPlace()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *label = new WrappingLabel;
    label->setText(QString(2000, u'W'));
    layout->addWidget(label);
    QVERIFY(window.minimumSizeHint().width() < 100);
    QCOMPARE(label->minimumSizeHint().width(), 0);
}

void WrappingLabelTest::layoutGivesItTheHeightOfItsText()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *label = new WrappingLabel;
    label->setText(u"one two three four five six seven eight nine ten eleven twelve"_s);
    layout->addWidget(label);
    layout->addStretch();
    window.resize(150, 600);
    layout->activate();
    QCOMPARE(label->height(), label->heightForWidth(label->width()));
    QVERIFY(label->height() > 2 * label->fontMetrics().height());
}

void WrappingLabelTest::heightFollowsTheWidth()
{
    WrappingLabel label;
    label.setText(u"one two three four five six seven eight nine ten"_s);
    QVERIFY(label.heightForWidth(80) > label.heightForWidth(1000));
}

void WrappingLabelTest::heightFollowsEverythingElse()
{
    WrappingLabel label;
    label.setText(u"one two three four five six"_s);
    const int first = label.heightForWidth(80);
    QCOMPARE(label.heightForWidth(80), first);

    label.setText(label.text() + label.text() + label.text());
    const int longer = label.heightForWidth(80);
    QVERIFY(longer > first);

    label.setStyleSheet(u"font-size: 40px;"_s);
    const int larger = label.heightForWidth(80);
    QVERIFY(larger > longer);

    label.setContentsMargins(0, 30, 0, 30);
    QVERIFY(label.heightForWidth(80) >= larger + 60);
}

void WrappingLabelTest::heightIsThatOfAPlainLabelAtEveryWidth()
{
    WrappingLabel label;
    label.setText(u"one two three four five six"_s);
    QLabel plain;
    plain.setWordWrap(true);
    plain.setText(label.text());
    for (int round = 0; round < 2; ++round) {
        for (int width = 40; width < 400; width += 13)
            QCOMPARE(label.heightForWidth(width), plain.heightForWidth(width));
    }
}

void WrappingLabelTest::megabyteIsKeptWholeAndShownInPart()
{
    WrappingLabel label;
    const QString text = u"word "_s.repeated(200'000);
    label.setText(text);
    QCOMPARE(label.text(), text);
    WrappingLabel part;
    part.setText(text.left(5000));
    const int line = label.fontMetrics().lineSpacing();
    QVERIFY(qAbs(label.heightForWidth(250) - part.heightForWidth(250)) <= line);
    label.resize(250, 400);
    QVERIFY(!label.grab().isNull());
}

void WrappingLabelTest::longTextLooksLikeAnyOther()
{
    WrappingLabel whole;
    WrappingLabel cut;
    const QString text = u"word "_s.repeated(1000);
    whole.setText(text);
    cut.setText(text + u"more"_s);
    for (WrappingLabel *label : {&whole, &cut}) {
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop | Qt::AlignAbsolute);
        label->setStyleSheet(u"color: red; background: black;"_s);
        label->resize(250, 100);
    }
    QCOMPARE(cut.grab().toImage(), whole.grab().toImage());
}

void WrappingLabelTest::wordThatIsTooWideIsBroken_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Qt::Alignment>("side");
    QTest::newRow("word") << QString(60, u'm') << Qt::Alignment(Qt::AlignLeft);
    QTest::newRow("word at the right")
        << QString(60, u'm') << Qt::Alignment(Qt::AlignRight | Qt::AlignAbsolute);
    QTest::newRow("between others") << QString(u"short "_s + QString(60, u'm') + u" short"_s)
                                    << Qt::Alignment(Qt::AlignLeft);
    QTest::newRow("second line") << QString(u"short\n"_s + QString(60, u'm')) << Qt::Alignment(Qt::AlignLeft);
}

/// Every letter is there: as much ink as the same letters leave in a label that is wide enough.
void WrappingLabelTest::wordThatIsTooWideIsBroken()
{
    QFETCH(QString, text);
    QFETCH(Qt::Alignment, side);
    const auto ink = [&](int width) {
        WrappingLabel label;
        label.setText(text);
        label.setAlignment(side | Qt::AlignTop);
        label.resize(width, label.heightForWidth(width));
        return inkOf(label);
    };
    const double whole = ink(1500);
    QVERIFY(whole > 0);
    const double broken = ink(120);
    QVERIFY2(std::abs(broken / whole - 1) < 0.05, qPrintable(QString::number(broken / whole)));
}

void WrappingLabelTest::wordsThatFitLookAsEver()
{
    const QString text = u"A frame for the camera, calm and dark."_s;
    WrappingLabel label;
    QLabel plain;
    plain.setTextFormat(Qt::PlainText);
    plain.setWordWrap(true);
    label.setText(text);
    plain.setText(text);
    label.resize(120, plain.heightForWidth(120));
    plain.resize(label.size());
    QCOMPARE(label.heightForWidth(120), plain.heightForWidth(120));
    QVERIFY(label.grab().toImage() == plain.grab().toImage());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::WrappingLabelTest)
#include "wrapping_label_test.moc"
