#include "tests/unit/catalogue/catalogue_fixture.h"

#include <QImage>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

/// Texts of the service are shown as they are, whatever is in them.
class HostileProductTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void texts_data();
    void texts();
    void richTextIsPaintedAsText();
    void toolTipsAreNeverRich_data();
    void toolTipsAreNeverRich();
    void megabyteName();
    void longWordDoesNotWiden();

private:
    Localisation texts_ = LocaleFiles().localisation(EnglishCode);
};

void HostileProductTest::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("rich text") << u"<b>bold</b><img src=\"file:///etc/passwd\"><a href=\"http://x\">y</a>"_s;
    QTest::newRow("placeholders") << u"%1 %2 %n %s %99 %L1"_s;
    QTest::newRow("bidi overrides") << u"\u202Egpj.exe\u202C \u2067x\u2069"_s;
    QTest::newRow("zero character") << QString(u"a"_s + QChar(0) + u'b');
    QTest::newRow("unpaired high surrogate") << QString(u"a"_s + QChar(0xD83D) + u'b');
    QTest::newRow("unpaired low surrogate") << QString(u"a"_s + QChar(0xDE00) + u'b');
    QTest::newRow("mnemonic") << u"&File && more"_s;
    QTest::newRow("style sheet") << u"QWidget { background: red; }"_s;
    QTest::newRow("line breaks") << u"a\nb\r\nc\u2028d"_s;
}

void HostileProductTest::texts()
{
    QFETCH(QString, text);
    ProductList list({texts_, nullptr}, [] {});
    QJsonObject object = product(text, text, text);
    object.insert(u"product_version"_s, text);
    list.setProducts({object});
    const CardView view(cardsOf(list).first());
    QCOMPARE(view.name()->text(), text);
    const QString description = text.simplified();
    QCOMPARE(view.description()->text(),
             QString(description + u"\n\n\u2066Category: "_s + text + u"\nVersion: "_s + text));
    const auto *categories = list.findChild<CategoryComboBox *>();
    QCOMPARE(categories->itemText(1), text.trimmed());
    QCOMPARE(categories->itemData(1).toString(), text.trimmed());
    list.resize(300, 500);
    QVERIFY(!list.grab().isNull());
}

void HostileProductTest::richTextIsPaintedAsText()
{
    const ProductCard rich(product(u"<font size=7>W</font>"_s), {texts_, nullptr}, [] {}, nullptr);
    QLabel plain(u"<font size=7>W</font>"_s);
    plain.setTextFormat(Qt::PlainText);
    plain.setFont(CardView(&rich).name()->font());
    plain.setStyleSheet(CardView(&rich).name()->styleSheet());
    QLabel *name = CardView(&rich).name();
    name->ensurePolished();
    QCOMPARE(name->fontMetrics().horizontalAdvance(name->text()), plain.sizeHint().width());
}

void HostileProductTest::toolTipsAreNeverRich_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("rich");
    QTest::newRow("plain") << u"Just words, 1 < 2 & more"_s << false;
    QTest::newRow("placeholders") << u"%1 %n"_s << false;
    QTest::newRow("image") << u"<img src=\"file:///etc/passwd\">"_s << true;
    QTest::newRow("link") << u"see <a href=\"https://x\">this</a>"_s << true;
    QTest::newRow("html") << u"<html><body>x</body></html>"_s << true;
    QTest::newRow("pre-escaped") << u"<qt>&lt;b&gt;"_s << true;
}

void HostileProductTest::toolTipsAreNeverRich()
{
    QFETCH(QString, text);
    QFETCH(bool, rich);
    ProductList list({texts_, nullptr}, [] {});
    list.setProducts({product(u"A"_s, text, text)});
    auto *categories = list.findChild<CategoryComboBox *>();
    categories->setCurrentIndex(1);
    for (const QString &tip :
         {CardView(cardsOf(list).first()).description()->toolTip(), categories->toolTip()}) {
        if (!rich) {
            QCOMPARE(tip, text);
            continue;
        }
        QLabel shown(tip);
        shown.setTextFormat(Qt::RichText);
        QVERIFY2(!tip.contains(u"<img"_s) && !tip.contains(u"<a "_s) && !tip.contains(u"<html"_s) &&
                     !tip.contains(u"<qt>"_s),
                 qPrintable(tip));
        QVERIFY(tip.contains(u"&lt;"_s));
    }
}

void HostileProductTest::megabyteName()
{
    const QString text(1024 * 1024, u'W');
    const ProductCard card(product(text, text, text), {texts_, nullptr}, [] {}, nullptr);
    QCOMPARE(CardView(&card).name()->text().size(), text.size());
    QCOMPARE(CardView(&card).description()->property("productDescription").toString().size(), 238);
    ProductList list({texts_, nullptr}, [] {});
    list.resize(300, 500);
    list.setProducts({product(text, text, text)});
    QVERIFY(!list.grab().isNull());
}

void HostileProductTest::longWordDoesNotWiden()
{
    ProductCard card(
        product(QString(2000, u'W'), QString(2000, u'W'), QString(2000, u'W')), {texts_, nullptr}, [] {},
        nullptr);
    QVERIFY(card.minimumSizeHint().width() < 260);
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::HostileProductTest)
#include "hostile_product_test.moc"
