#include "catalogue/product_list.h"
#include "catalogue/product_previews.h"
#include "tests/support/libobs_fake/libobs_fake.h"
#include "tests/support/locale_files.h"
#include "tests/unit/catalogue/picture_samples.h"
#include "tests/unit/catalogue/preview_fixture.h"
#include "ui/dock_panel.h"

#include <QComboBox>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr int DockHeight = 1100;

QJsonObject component(const QString &name)
{
    return {{u"component_name"_s, name},      {u"asset_path"_s, u"a/b.png"_s},
            {u"auto_insert_enabled"_s, true}, {u"insert_mode"_s, u"overlay"_s},
            {u"source_type"_s, u"image"_s},   {u"asset_kind"_s, u"file"_s}};
}

QJsonObject product(const QString &name, const QString &description, const QJsonArray &components)
{
    return {{u"product_key"_s, name},
            {u"product_name"_s, name},
            {u"description"_s, description},
            {u"category"_s, u"Overlays for very long evenings on the air"_s},
            {u"product_version"_s, u"1.0.0"_s},
            {u"preview_gallery"_s, QJsonArray{QJsonObject{{u"url"_s, addressOf(u"/a"_s).toString()}}}},
            {u"components"_s, components}};
}

QJsonArray products()
{
    const QString longWord = u"Streamingoverlaycollection"_s.repeated(4);
    return {product(u"Night frames"_s, u"A frame for the camera, calm and dark."_s, {}),
            product(u"قاب‌های شب برای پخش زنده"_s,
                    u"قابی آرام و تیره برای دوربین شما."_s,
                    {component(u"قاب دوربین"_s), component(u"Webcam frame"_s)}),
            product(longWord, longWord, {component(longWord)})};
}

/// What would be needed to show the whole text at the present width.
QSize neededFor(const QWidget &widget)
{
    if (widget.hasHeightForWidth())
        return {widget.minimumSizeHint().width(), widget.heightForWidth(widget.width())};
    return widget.sizeHint();
}

QString textOf(const QWidget &widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return label->pixmap().isNull() ? label->text() : QString();
    const auto *button = qobject_cast<const QAbstractButton *>(&widget);
    return button ? button->text() : QString();
}

QStringList cutTexts(const QWidget &panel)
{
    QStringList cut;
    const auto widgets = panel.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        const QString text = textOf(*widget);
        if (text.isEmpty() || !widget->isVisible())
            continue;
        const QSize needed = neededFor(*widget);
        if (needed.width() > widget->width() || needed.height() > widget->height())
            cut.append(u"“%1” needs %2 × %3 and has %4 × %5"_s.arg(text.left(40))
                           .arg(needed.width())
                           .arg(needed.height())
                           .arg(widget->width())
                           .arg(widget->height()));
    }
    return cut;
}

QStringList wideWidgets(const QWidget &panel)
{
    QStringList wide;
    const auto widgets = panel.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (!widget->isVisible() || widget->isWindow())
            continue;
        const QRect place(widget->mapTo(&panel, QPoint()), widget->size());
        if (place.left() < 0 || place.right() >= panel.width())
            wide.append(QString::fromLatin1(widget->metaObject()->className()) + u' ' + textOf(*widget));
    }
    return wide;
}

void keepPicture(QWidget &panel, const QString &name)
{
    const QDir folder(QCoreApplication::applicationDirPath() + u"/dock_pictures"_s);
    QVERIFY(QDir().mkpath(folder.path()));
    QVERIFY(panel.grab().save(folder.filePath(name + u".png"_s)));
}

} // namespace

/// The whole dock at its narrowest, at a usual and at a large width. The pictures are kept beside the test.
class DockReadabilityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sizes_data();
    void signInView_data() { sizes_data(); }
    void signInView();
    void catalogue_data() { sizes_data(); }
    void catalogue();
};

void DockReadabilityTest::sizes_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("width");
    for (const char *language : {"en-US", "fa-IR"}) {
        for (const int width : {300, 500, 900})
            QTest::addRow("%s-%d", language, width) << QString::fromLatin1(language) << width;
    }
}

void DockReadabilityTest::signInView()
{
    QFETCH(QString, language);
    QFETCH(int, width);
    Localisation texts = LocaleFiles().localisation(language);
    DockPanel panel(texts);
    panel.setProductList(new ProductList({texts, nullptr}, [] {}));
    panel.retranslate();
    panel.showUpdate({u"0.2.0"_s, QUrl(u"https://quillmar.example/x"_s), false, u"Faster, and calmer."_s},
                     true);
    panel.showStatus(AccountView::Tone::Failure, "Status.LoginFailed"_L1);
    panel.resize(width, DockHeight);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    keepPicture(panel, u"sign-in-"_s + QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(panel.width(), width);
    QCOMPARE(cutTexts(panel), QStringList());
    QCOMPARE(wideWidgets(panel), QStringList());
}

void DockReadabilityTest::catalogue()
{
    QFETCH(QString, language);
    QFETCH(int, width);
    LibobsFake obs;
    obs.setConfigurable(u"image_source"_s, true);
    TlsService service;
    service.handle(
        "/a", TlsService::always(TlsService::response(200, encoded(quarteredPicture({1200, 675}), "png"))));
    ProductPreviews previews;
    Localisation texts = LocaleFiles().localisation(language);
    DockPanel panel(texts);
    auto *list = new ProductList({texts, nullptr, &previews, [](auto &&...) {}}, [] {});
    panel.setProductList(list);
    panel.retranslate();
    panel.showHomeView();
    panel.showStatus(AccountView::Tone::Success, "Status.LoginSuccess"_L1);
    panel.setProducts(products());
    panel.resize(width, DockHeight);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    const auto buttons = list->findChildren<QPushButton *>();
    for (QPushButton *button : buttons)
        button->setChecked(button->isCheckable());
    const auto pictures = [list] {
        qsizetype count = 0;
        const auto labels = list->findChildren<QLabel *>();
        for (const QLabel *label : labels)
            count += label->pixmap().isNull() ? 0 : 1;
        return count;
    };
    QTRY_COMPARE_WITH_TIMEOUT(pictures(), 3, LongDeadlineMs);
    const auto *area = list->findChild<QScrollArea *>();
    QTRY_COMPARE(area->widget()->width(), area->viewport()->width());
    keepPicture(panel, u"catalogue-"_s + QString::fromLatin1(QTest::currentDataTag()));
    area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
    keepPicture(panel, u"catalogue-end-"_s + QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(panel.width(), width);
    QCOMPARE(area->horizontalScrollBar()->maximum(), 0);
    QCOMPARE(cutTexts(panel), QStringList());
    QCOMPARE(wideWidgets(panel), QStringList());
}

} // namespace quillmar::test

QTEST_MAIN(quillmar::test::DockReadabilityTest)
#include "dock_readability_test.moc"
