#include "tests/windows_host/hosted_test.h"

#include <QFileInfo>
#include <QImage>
#include <QScrollArea>
#include <QSslSocket>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillmar::test
{

namespace
{

constexpr int DeadlineMs = 20'000;
constexpr int DemoProducts = 17;

} // namespace

/// The module with the files that a release has beside it, against the demo's service by Windows' own TLS.
class DemoServiceTest : public HostedTest
{
    Q_OBJECT

public:
    DemoServiceTest()
        : HostedTest(u"demo سارا"_s, {u"imageformats/qwebp.dll"_s, u"tls/qschannelbackend.dll"_s})
    {
        // Wine lets an event loop sleep on when something comes by a socket.
        wake_.start(20);
    }

private Q_SLOTS:
    void signingIn_data() { languages(); }
    void signingIn();
    void wrongPassword();
    void puttingAComponentIntoTheScene();

private:
    void signInToDemo();
    const QFrame *card(const QString &product) const;
    void bringIntoView(QWidget &widget) const;
    void click(QPushButton &button) const;

    QTimer wake_;
};

void DemoServiceTest::signInToDemo()
{
    signIn(u"demo"_s, u"demo"_s);
    QTRY_COMPARE_WITH_TIMEOUT(dock_->previews().size(), DemoProducts, DeadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(dock_->label("Status.LoginSuccess") != nullptr, DeadlineMs);
    QCOMPARE(QSslSocket::activeBackend(), u"schannel"_s);
}

/// The card on which a text begins with `product`.
const QFrame *DemoServiceTest::card(const QString &product) const
{
    const auto cards = dock_->panel().findChildren<QFrame *>(u"quillmarProductCard"_s);
    const auto found = std::ranges::find_if(cards, [&](const QFrame *frame) {
        const auto labels = frame->findChildren<QLabel *>();
        return std::ranges::any_of(labels,
                                   [&](const QLabel *label) { return label->text().startsWith(product); });
    });
    return found == cards.cend() ? nullptr : *found;
}

/// Scrolls as a user does who wants to see all of `widget`, which is part of a card.
void DemoServiceTest::bringIntoView(QWidget &widget) const
{
    auto *list = dock_->panel().findChild<QScrollArea *>();
    QVERIFY(list != nullptr);
    const auto isInView = [&] {
        list->ensureWidgetVisible(&widget);
        return widget.visibleRegion().contains(widget.rect().center());
    };
    QTRY_VERIFY(isInView());
}

void DemoServiceTest::click(QPushButton &button) const
{
    bringIntoView(button);
    QTest::mouseClick(&button, Qt::LeftButton);
}

void DemoServiceTest::signingIn()
{
    QFETCH(const QString, language);
    load(language);
    signInToDemo();
    const auto shown = [this] {
        const QList<QPixmap> previews = dock_->previews();
        return std::ranges::count_if(previews, [](const QPixmap &preview) { return !preview.isNull(); });
    };
    QTRY_VERIFY_WITH_TIMEOUT(shown() >= 3, DeadlineMs);
    expectReadable(u"demo-products-"_s + language);
    unload();
}

void DemoServiceTest::wrongPassword()
{
    load(u"en-US"_s);
    signIn(u"demo"_s, u"wrong"_s);
    QTRY_VERIFY_WITH_TIMEOUT(dock_->label("Status.LoginFailed") != nullptr, DeadlineMs);
    unload();
}

void DemoServiceTest::puttingAComponentIntoTheScene()
{
    obs_source_t *scene = obs_->obs.addSource(u"scene"_s, u"Scene"_s);
    obs_->obs.setCurrentScene(scene);
    load(u"en-US"_s);
    signInToDemo();
    const QFrame *pack = card(u"Neon Garden"_s);
    QVERIFY(pack != nullptr);
    const auto buttons = pack->findChildren<QPushButton *>();
    const auto contents = std::ranges::find_if(buttons, &QPushButton::isCheckable);
    QVERIFY(contents != buttons.cend());
    click(**contents);
    QPushButton *add = nullptr;
    QTRY_VERIFY((add = dock_->button(module_->text("Component.Add"))) != nullptr);
    click(*add);
    const auto statusStartsWith = [&](const QByteArray &key) {
        const QString text = QString::fromUtf8(module_->text(key));
        const auto labels = pack->findChildren<QLabel *>();
        const auto found =
            std::ranges::find_if(labels, [&](const QLabel *label) { return label->text().startsWith(text); });
        return found == labels.cend() ? nullptr : *found;
    };
    QTRY_VERIFY_WITH_TIMEOUT(statusStartsWith("Component.Added") != nullptr, DeadlineMs);
    QLabel *status = statusStartsWith("Component.Added");
    bringIntoView(*status);
    expectReadable(u"demo-added-en-US"_s);
    dock_->language()->setCurrentIndex(1 - dock_->language()->currentIndex());
    bringIntoView(*status);
    expectReadable(u"demo-added-fa-IR"_s);
    QCOMPARE(scene->scene->items.size(), 1);
    const obs_source_t *source = scene->scene->items.constFirst()->source;
    QCOMPARE(source->id, u"image_source"_s);
    const QString file = source->settings.value(u"file"_s).toString();
    QVERIFY2(
        file.startsWith(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation) + u"/Quillmar/"_s),
        qPrintable(file));
    QVERIFY2(!QImage(file).isNull(), qPrintable(file));
    unload();
}

} // namespace quillmar::test

int main(int argc, char *argv[])
{
    return quillmar::test::runHosted(argc, argv,
                                     [] { return std::make_unique<quillmar::test::DemoServiceTest>(); });
}

#include "demo_service_test.moc"
