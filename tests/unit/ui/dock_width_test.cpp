#include "tests/support/libobs_fake/libobs_fake.h"
#include "tests/unit/ui/dock_fixture.h"
#include "tests/unit/ui/dock_product.h"

#include <QScrollArea>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr int NarrowWidth = 300;

const DockProduct product{QString(300, u'd'), u"Overlays for very long evenings on the air"_s};

} // namespace

class DockWidthTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void languages_data();
    void dockCanBeThreeHundredPixelsWide_data() { languages_data(); }
    void dockCanBeThreeHundredPixelsWide();
    void nothingIsWiderThanANarrowDock_data() { languages_data(); }
    void nothingIsWiderThanANarrowDock();
    void everyStatusFits_data() { languages_data(); }
    void everyStatusFits();
};

void DockWidthTest::languages_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("english") << u"en-US"_s;
    QTest::newRow("persian") << u"fa-IR"_s;
}

void DockWidthTest::dockCanBeThreeHundredPixelsWide()
{
    QFETCH(QString, language);
    LibobsFake obs;
    obs.setConfigurable(u"image_source"_s, true);
    Dock dock(language);
    dock.panel.showUpdate({u"0.2.0"_s, QUrl(u"https://quillmar.example/x"_s), false, QString(400, u'W')},
                          true);
    dock.panel.setProducts({product(QString(80, u'W'), false), product(u"Night pack"_s, true)});
    for (int place = Dock::TopRow; place <= Dock::List; ++place)
        dock.row(static_cast<Dock::Row>(place))->show();
    dock.logout()->show();
    dock.panel.ensurePolished();
    QVERIFY2(dock.panel.minimumSizeHint().width() <= NarrowWidth,
             qPrintable(QString::number(dock.panel.minimumSizeHint().width())));
}

void DockWidthTest::nothingIsWiderThanANarrowDock()
{
    QFETCH(QString, language);
    LibobsFake obs;
    obs.setConfigurable(u"image_source"_s, true);
    Dock dock(language);
    dock.panel.setProducts({product(QString(80, u'W'), false), product(u"Night pack"_s, true)});
    dock.panel.showHomeView();
    dock.panel.resize(NarrowWidth, 900);
    dock.panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dock.panel));
    const auto *scrollArea = dock.list->findChild<QScrollArea *>();
    QTRY_COMPARE(scrollArea->widget()->width(), scrollArea->viewport()->width());
    for (const QWidget *card : dock.list->findChildren<QFrame *>(u"quillmarProductCard"_s)) {
        QVERIFY(card->width() <= scrollArea->viewport()->width());
        for (const QPushButton *button : card->findChildren<QPushButton *>()) {
            QVERIFY2(button->isHidden() || button->sizeHint().width() <= scrollArea->viewport()->width() - 24,
                     qPrintable(button->text()));
        }
    }
}

void DockWidthTest::everyStatusFits()
{
    QFETCH(QString, language);
    Dock dock(language);
    for (const QString &key : LocaleFiles().keys(language)) {
        dock.texts.setTranslatedText(dock.label(Dock::Status), key);
        QVERIFY2(dock.panel.minimumSizeHint().width() <= NarrowWidth, qPrintable(key));
    }
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::DockWidthTest)
#include "dock_width_test.moc"
