#include "tests/unit/catalogue/catalogue_fixture.h"
#include "tests/unit/catalogue/details_fixture.h"

#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

/// The details dialog as its card opens and keeps it.
class DetailsOfCardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void oneDialogPerCard();
    void reopenedAfterClosing();
    void reopenedBeforeTheEventLoopRuns();
    void followsTheLanguage();
    void opensInPersian();
    void diesWithItsCard();
    void diesWithItsCardWhileARequestIsOut();
    void loaderGoneBeforeTheDialog();

private:
    QPushButton *button(qsizetype card = 0) const { return CardView(cardsOf(*list_).at(card)).details(); }
    QList<ProductDetails *> dialogs() const { return list_->findChildren<ProductDetails *>(); }

    std::optional<DetailsFixture> f_;
    std::unique_ptr<ProductList> list_;
    QList<WireConnection> held_;
};

void DetailsOfCardTest::init()
{
    held_.clear();
    f_.emplace();
    f_->hold("p0", held_);
    CatalogueServices services{f_->texts, nullptr};
    services.previews = f_->previews.get();
    list_ = std::make_unique<ProductList>(services, [] {});
    QJsonObject first = product(u"First"_s);
    first.insert(u"preview_image"_s, u"https://quillmar.example/p0"_s);
    list_->setProducts({first, productWithComponent(u"Second"_s)});
    list_->show();
}

void DetailsOfCardTest::cleanup()
{
    list_.reset();
    f_.reset();
}

void DetailsOfCardTest::oneDialogPerCard()
{
    button(0)->click();
    button(0)->click();
    QCOMPARE(dialogs().size(), 1);
    QVERIFY(dialogs().first()->isVisible());
    QCOMPARE(dialogs().first()->windowTitle(), u"Details — First"_s);
    QCOMPARE(dialogs().first()->parentWidget(), cardsOf(*list_).first());
    button(1)->click();
    QCOMPARE(dialogs().size(), 2);
}

void DetailsOfCardTest::reopenedAfterClosing()
{
    button()->click();
    const QPointer<ProductDetails> first = dialogs().first();
    QTest::keyClick(first, Qt::Key_Escape);
    QTRY_VERIFY(!first);
    button()->click();
    QCOMPARE(dialogs().size(), 1);
    QVERIFY(dialogs().first()->isVisible());
}

/// The closed dialog is still there, about to be destroyed, when the button is clicked again.
void DetailsOfCardTest::reopenedBeforeTheEventLoopRuns()
{
    button()->click();
    const QPointer<ProductDetails> first = dialogs().first();
    first->close();
    button()->click();
    QTRY_VERIFY(!first);
    QCOMPARE(dialogs().size(), 1);
    QVERIFY(dialogs().first()->isVisible());
}

void DetailsOfCardTest::followsTheLanguage()
{
    button()->click();
    f_->texts.setLanguage(PersianCode);
    list_->retranslate();
    QCOMPARE(dialogs().first()->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(dialogs().first()->windowTitle(), u"جزئیات — First"_s);
    f_->texts.setLanguage(EnglishCode);
    list_->retranslate();
    QCOMPARE(dialogs().first()->layoutDirection(), Qt::LeftToRight);
}

void DetailsOfCardTest::opensInPersian()
{
    f_->texts.setLanguage(PersianCode);
    list_->retranslate();
    button()->click();
    QCOMPARE(dialogs().first()->layoutDirection(), Qt::RightToLeft);
    QCOMPARE(DetailsView(dialogs().first()).next()->text(), u"بعدی"_s);
}

void DetailsOfCardTest::diesWithItsCard()
{
    button(1)->click();
    const QPointer<ProductDetails> dialog = dialogs().first();
    list_->setProducts({product(u"Third"_s)});
    QVERIFY(!dialog);
    QVERIFY(dialogs().isEmpty());
}

void DetailsOfCardTest::diesWithItsCardWhileARequestIsOut()
{
    button()->click();
    QTRY_VERIFY(!held_.isEmpty());
    list_->setProducts({});
    const QByteArray picture = TlsService::response(200, pngBytes({40, 30}, Qt::red), "image/png");
    for (WireConnection &connection : held_)
        connection.send(picture);
    f_->serve("p1", {40, 30});
    QObject receiver;
    bool hasCome = false;
    f_->previews->request(DetailsFixture::entry("p1", {}), &receiver,
                          [&hasCome](const QImage &image) { hasCome = !image.isNull(); });
    QTRY_VERIFY(hasCome);
    QVERIFY(dialogs().isEmpty());
}

void DetailsOfCardTest::loaderGoneBeforeTheDialog()
{
    button()->click();
    f_->previews.reset();
    const DetailsView view(dialogs().first());
    view.retry()->click();
    QVERIFY(view.preview()->text().startsWith(u"The preview could not be loaded"_s));
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::DetailsOfCardTest)
#include "details_of_card_test.moc"
