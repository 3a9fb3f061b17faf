#include "tests/host/support/served_session.h"

#include <QTest>

namespace quillmar::test
{

using namespace Qt::StringLiterals;

/// The list of products in the real dock: cards, search by typing, filter by category, both languages.
class CatalogueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void listsEveryProductInOrder();
    void searchIgnoresCaseAndFindsDescriptions();
    void searchWithoutAMatchSaysSo();
    void categoryHidesTheOthers();
    void persianCardsRunFromRightToLeft();
    void dockShrinksWithoutCuttingButtons();

private:
    QuillmarPanel &panel() { return served_->panel(); }
    bool showsNoResults();

    std::unique_ptr<ServedSession> served_;
};

const QStringList &allProducts()
{
    static const QStringList names{u"Host pair"_s, u"Host pictures"_s, u"Host wrong digest"_s,
                                   u"Host webcam"_s, u"Host single"_s};
    return names;
}

void CatalogueTest::initTestCase()
{
    QString problem;
    served_ = ServedSession::start({.frames = {{u"Frame"_s, {}, 0, 0}}, .account = u"demo"_s}, &problem);
    QVERIFY2(served_, qPrintable(problem));
}

bool CatalogueTest::showsNoResults()
{
    const WidgetTree tree = panel().robot().tree();
    return tree.find([text = panel().text(u"Products.NoSearchResults"_s)](const Widget &w) {
        return w.visible && w.text == text;
    });
}

void CatalogueTest::listsEveryProductInOrder()
{
    QCOMPARE(panel().visibleProducts(), allProducts());
    QCOMPARE(panel().categories(),
             QStringList({panel().text(u"Products.AllCategories"_s), u"Pictures"_s, u"Frames"_s}));
    QVERIFY(!showsNoResults());
}

void CatalogueTest::searchIgnoresCaseAndFindsDescriptions()
{
    QVERIFY2(panel().search(u"TEST OF HOST-WEB"_s), qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(panel().visibleProducts(), QStringList(u"Host webcam"_s), 20000);
    QVERIFY2(panel().search(u"   "_s), qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(panel().visibleProducts(), allProducts(), 20000);
}

void CatalogueTest::searchWithoutAMatchSaysSo()
{
    QVERIFY2(panel().search(u"nothing like this"_s), qPrintable(panel().problem()));
    QTRY_VERIFY_WITH_TIMEOUT(panel().visibleProducts().isEmpty(), 20000);
    QVERIFY(showsNoResults());
    QVERIFY2(panel().search({}), qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(panel().visibleProducts(), allProducts(), 20000);
    QVERIFY(!showsNoResults());
}

void CatalogueTest::categoryHidesTheOthers()
{
    QVERIFY2(panel().chooseCategory(u"Frames"_s), qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(panel().visibleProducts(), QStringList(u"Host webcam"_s), 20000);
    QVERIFY2(panel().chooseCategory(panel().text(u"Products.AllCategories"_s)),
             qPrintable(panel().problem()));
    QTRY_COMPARE_WITH_TIMEOUT(panel().visibleProducts(), allProducts(), 20000);
}

void CatalogueTest::persianCardsRunFromRightToLeft()
{
    QVERIFY2(panel().setLanguage(u"fa-IR"_s), qPrintable(panel().problem()));
    const WidgetTree tree = panel().robot().tree();
    int cards = 0;
    for (const Widget &widget : tree.all()) {
        if (widget.name == "quillmarProductCard"_L1) {
            QVERIFY(widget.rightToLeft);
            ++cards;
        }
    }
    QCOMPARE(cards, allProducts().size());
    QVERIFY(searchField(tree)->rect.center().x() > categoryBox(tree)->rect.center().x());
}

void CatalogueTest::dockShrinksWithoutCuttingButtons()
{
    for (const QString &language : {u"fa-IR"_s, u"en-US"_s}) {
        QVERIFY2(panel().setLanguage(language), qPrintable(panel().problem()));
        QVERIFY2(panel().robot().showDock(1), qPrintable(panel().problem()));
        const WidgetTree tree = panel().robot().tree();
        QVERIFY(tree.all().first().rect.width() < 340);
        for (const Widget &widget : tree.all()) {
            const bool isButton = widget.visible && widget.role == "button"_L1;
            QVERIFY2(!isButton || widget.rect.width() >= widget.needed.width(), qPrintable(widget.text));
        }
    }
}

} // namespace quillmar::test

QTEST_GUILESS_MAIN(quillmar::test::CatalogueTest)
#include "catalogue_test.moc"
