#include "catalogue/category_combo_box.h"

#include <QAbstractItemView>
#include <QScreen>
#include <QStyle>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

class CategoryComboBoxTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hintIsAtLeast160Wide();
    void hintKeepsALargerWidthAndTheHeight();
    void minimumHintIsExactly70Wide();
    void popupIsWideEnoughForTheLongestItem();
    void popupIsAtLeastAsWideAsTheBox();
    void popupIsNeverWiderThanTheScreen();
    void emptyBoxOpens();
};

void CategoryComboBoxTest::hintIsAtLeast160Wide()
{
    CategoryComboBox box;
    box.addItem(u"A"_s);
    const QComboBox &base = box;
    QCOMPARE(box.sizeHint().width(), std::max(base.QComboBox::sizeHint().width(), 160));
    QCOMPARE(box.sizeHint().height(), base.QComboBox::sizeHint().height());
}

void CategoryComboBoxTest::hintKeepsALargerWidthAndTheHeight()
{
    CategoryComboBox box;
    box.addItem(QString(80, u'W'));
    const QComboBox &base = box;
    QVERIFY(box.sizeHint().width() > 160);
    QCOMPARE(box.sizeHint(), base.QComboBox::sizeHint());
}

void CategoryComboBoxTest::minimumHintIsExactly70Wide()
{
    CategoryComboBox box;
    QCOMPARE(box.minimumSizeHint().width(), 70);
    box.addItem(QString(80, u'W'));
    const QComboBox &base = box;
    QCOMPARE(box.minimumSizeHint().width(), 70);
    QCOMPARE(box.minimumSizeHint().height(), base.QComboBox::minimumSizeHint().height());
}

void CategoryComboBoxTest::popupIsWideEnoughForTheLongestItem()
{
    CategoryComboBox box;
    const QString longest = u"Full-screen scenes for the break"_s;
    box.addItems({u"A"_s, longest});
    box.resize(70, 30);
    box.show();
    const int content =
        std::max(box.fontMetrics().horizontalAdvance(longest), box.view()->sizeHintForColumn(0));
    const int scrollBar = box.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &box);
    box.showPopup();
    QCOMPARE(box.view()->minimumWidth(), content + scrollBar + 24);
    box.hidePopup();
}

void CategoryComboBoxTest::popupIsAtLeastAsWideAsTheBox()
{
    CategoryComboBox box;
    box.addItem(u"A"_s);
    box.resize(400, 30);
    box.show();
    box.showPopup();
    QCOMPARE(box.view()->minimumWidth(), 400);
    box.hidePopup();
}

void CategoryComboBoxTest::popupIsNeverWiderThanTheScreen()
{
    CategoryComboBox box;
    box.addItem(QString(2000, u'W'));
    box.resize(100, 30);
    box.show();
    box.showPopup();
    QCOMPARE(box.view()->minimumWidth(), box.screen()->availableGeometry().width());
    box.hidePopup();
}

void CategoryComboBoxTest::emptyBoxOpens()
{
    CategoryComboBox box;
    box.resize(120, 30);
    box.show();
    box.showPopup();
    QVERIFY(box.view()->minimumWidth() >= 120);
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::CategoryComboBoxTest)
#include "category_combo_box_test.moc"
