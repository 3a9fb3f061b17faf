// What a catalogue with pictures costs in memory while somebody scrolls through it.
//
//   catalogue_memory [PRODUCTS]      300 when none is named
//
// Two catalogues: of large pictures, which the memory of the previews cannot keep, and of small ones, which
// fit, so that every card has one after a few fills (a queue of previews holds 128, and two are on their
// way). Each is filled, scrolled from top to bottom and back, and compared with the same cards without
// pictures. Exits with 1 when the process has grown by more than the cards' pixels and the bound of that
// memory.

#include "bench/process_memory.h"
#include "catalogue/product_list.h"
#include "catalogue/product_previews.h"
#include "tests/support/libobs_fake/libobs_fake.h"
#include "tests/support/locale_files.h"
#include "tests/support/tls_service/tls_service.h"
#include "ui/styles.h"

#include <QApplication>
#include <QBuffer>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <utility>

namespace
{

using namespace Qt::StringLiterals;
using namespace quillmar;

/// What the previews keep at most, and what a card keeps of its picture.
constexpr qint64 CacheBound = qint64{32768} * 1024;
constexpr QSize KeptOnCard{520, 280};
constexpr qint64 QuietMs = 2000;
constexpr int WarmUp = 8;

struct Kind {
    const char *name;
    QSize picture;
    int fills;
};

qint64 bytesOf(QSize size)
{
    return qint64{size.width()} * size.height() * 4;
}

/// The same bytes for every product; each has an address of its own.
QByteArray encodedPicture(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

QJsonArray catalogue(int count, const QString &folder)
{
    QJsonArray products;
    for (int index = 0; index < count; ++index) {
        const QString path = u"%1-%2"_s.arg(folder).arg(index);
        QJsonObject product{{u"product_key"_s, path},
                            {u"product_name"_s, u"Design number %1"_s.arg(index)},
                            {u"description"_s, u"A set of frames for streams of every kind."_s},
                            {u"category"_s, u"Overlays"_s},
                            {u"product_version"_s, u"1.0"_s}};
        if (!folder.isEmpty())
            product.insert(
                u"preview_gallery"_s,
                QJsonArray{QJsonObject{{u"url"_s, QString(u"https://quillmar.example/"_s + path)}}});
        products.append(product);
    }
    return products;
}

class Stage
{
public:
    Stage() : localisation_(test::LocaleFiles().localisation(EnglishCode))
    {
        list_ = new ProductList({localisation_, nullptr, &previews_}, {});
        window_.setStyleSheet(styles::Dock);
        (new QVBoxLayout(&window_))->addWidget(list_);
        area_ = list_->findChild<QScrollArea *>();
        window_.resize(400, 900);
        window_.show();
    }

    void fill(const QJsonArray &products)
    {
        list_->setProducts(products);
        waitForPictures();
    }

    void scroll()
    {
        QScrollBar *bar = area_->verticalScrollBar();
        for (int step = 0; step <= 200; ++step)
            show(bar->maximum() * step / 200);
        for (int step = 200; step >= 0; --step)
            show(bar->maximum() * step / 200);
    }

    qsizetype pictures() const { return shownPictures().size(); }

    /// Pixels of what the cards show and of what they keep to show it at another width.
    qint64 cardBytes(QSize picture) const
    {
        qint64 bytes = 0;
        const QList<QSize> sizes = shownPictures();
        for (const QSize &shown : sizes)
            bytes += bytesOf(shown) + bytesOf(picture.scaled(KeptOnCard, Qt::KeepAspectRatio));
        return bytes;
    }

private:
    QList<QSize> shownPictures() const
    {
        QList<QSize> sizes;
        const auto labels = list_->findChildren<QLabel *>();
        for (const QLabel *label : labels) {
            if (!label->pixmap().isNull())
                sizes.append(label->pixmap().size());
        }
        return sizes;
    }

    void show(int position)
    {
        area_->verticalScrollBar()->setValue(position);
        QCoreApplication::processEvents();
        window_.repaint();
    }

    /// Until none has come for a while.
    void waitForPictures()
    {
        QElapsedTimer quiet;
        quiet.start();
        for (qsizetype last = -1; quiet.elapsed() < QuietMs;) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
            if (std::exchange(last, pictures()) != pictures())
                quiet.restart();
        }
    }

    const Localisation localisation_;
    ProductPreviews previews_;
    QWidget window_;
    ProductList *list_ = nullptr;
    QScrollArea *area_ = nullptr;
};

/// Without what was given back to the allocator and not yet to the system.
qint64 residentBytes()
{
    malloc_trim(0);
    return bench::processMemory("VmRSS");
}

double mebibytes(qint64 bytes)
{
    return static_cast<double>(bytes) / (1024 * 1024);
}

qint64 measured(const char *stage, qint64 before)
{
    const qint64 now = residentBytes();
    std::printf("  %-28s %8.1f MiB   %+8.1f\n", stage, mebibytes(now), mebibytes(now - before));
    return now;
}

bool run(const Kind &kind, int count, test::TlsService &service)
{
    const QByteArray answer = test::TlsService::response(200, encodedPicture(kind.picture), "image/png");
    for (int index = 0; index < count; ++index)
        service.handle("/" + QByteArray(kind.name) + '-' + QByteArray::number(index),
                       test::TlsService::always(answer));
    // What the first pictures of a process bring along, such as TLS and decoders, is no cost of the
    // catalogue.
    Stage().fill(catalogue(WarmUp, QString::fromLatin1(kind.name)));
    Stage stage;
    stage.fill(catalogue(count, {}));
    stage.scroll();
    std::printf("%d products, %s pictures (%d x %d)\n", count, kind.name, kind.picture.width(),
                kind.picture.height());
    const qint64 before = measured("without pictures, scrolled", residentBytes());
    for (int fill = 0; fill < kind.fills; ++fill)
        stage.fill(catalogue(count, QString::fromLatin1(kind.name)));
    measured("filled", before);
    stage.scroll();
    measured("scrolled down and back", before);
    stage.scroll();
    const qint64 growth = measured("scrolled again", before) - before;
    const qint64 cards = stage.cardBytes(kind.picture);
    const bool isBounded = growth <= CacheBound + cards;
    std::printf("  pictures on %lld cards: %.1f MiB; kept previews: at most %.1f MiB; growth %.1f MiB: %s\n",
                static_cast<long long>(stage.pictures()), mebibytes(cards), mebibytes(CacheBound),
                mebibytes(growth), isBounded ? "within" : "TOO MUCH");
    return isBounded && stage.pictures() > 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const test::LibobsFake libobs;
    const int count = argc > 1 ? std::atoi(argv[1]) : 300;
    test::TlsService service;
    const bool large = run({"large", {1200, 675}, 1}, count, service);
    const bool small = run({"small", {160, 90}, 4}, count, service);
    return large && small ? 0 : 1;
}
