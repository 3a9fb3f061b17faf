// The catalogue filled, narrowed by one keystroke and cleared again, beside the same widgets made naively.
//
//   catalogue_fill [PRODUCTS...]      300 and 1000 when none are named
//
// Both lists stand in a window that is shown, in the dock's style. A step ends when the event queue is empty:
// laid out, polished and painted. The two take turns; the figures are medians. Exits with 1 when the two
// lists do not hold the same widgets, texts and styles after each step.

#include "bench/naive_catalogue.h"

#include "catalogue/product_list.h"
#include "tests/support/libobs_fake/libobs_fake.h"
#include "tests/support/locale_files.h"
#include "ui/styles.h"

#include <QApplication>
#include <QFrame>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace
{

using namespace Qt::StringLiterals;
using namespace quillmar;

constexpr int Rounds = 7;
constexpr int Steps = 3;
constexpr std::array<const char *, Steps> StepNames{"fill", "one keystroke", "clear the search"};
using Times = std::array<QList<double>, Steps>;

QJsonObject component(int index)
{
    return {{u"component_key"_s, u"part-%1"_s.arg(index)},
            {u"component_name"_s, u"Part %1 of the pack"_s.arg(index)},
            {u"asset_path"_s, u"Assets/part-%1.png"_s.arg(index)},
            {u"asset_kind"_s, u"file"_s},
            {u"file_mime"_s, u"image/png"_s},
            {u"insert_mode"_s, u"overlay"_s},
            {u"source_type"_s, u"image"_s},
            {u"auto_insert_enabled"_s, true},
            {u"sort_order"_s, index}};
}

/// Every second product has three components, as in a usual catalogue.
QJsonArray catalogue(int count)
{
    QJsonArray products;
    for (int index = 0; index < count; ++index) {
        QJsonObject product{{u"product_key"_s, u"product-%1"_s.arg(index)},
                            {u"product_name"_s, u"Design number %1"_s.arg(index)},
                            {u"description"_s,
                             u"A set of frames and overlays for streams of every kind, in a "
                             "colour of its own, with room for chat and camera."_s},
                            {u"category"_s, u"Category %1"_s.arg(index % 8)},
                            {u"product_version"_s, u"1.%1.0"_s.arg(index % 10)}};
        if (index % 2 == 1)
            product.insert(u"components"_s, QJsonArray{component(1), component(2), component(3)});
        products.append(product);
    }
    return products;
}

void settle()
{
    for (int turn = 0; turn < 4; ++turn) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

/// Processor time, because everything happens on one thread and other programs want the machine, too.
double milliseconds(const std::function<void()> &step)
{
    const std::clock_t begin = std::clock();
    step();
    settle();
    return static_cast<double>(std::clock() - begin) * 1000 / CLOCKS_PER_SEC;
}

/// One of the two lists in a window of its own, as wide as a dock.
class Stage
{
public:
    Stage(QWidget *list, QLineEdit *search, QWidget *container, std::function<void(const QJsonArray &)> fill)
        : search_(search), container_(container), fill_(std::move(fill))
    {
        window_.setStyleSheet(styles::Dock);
        auto *layout = new QVBoxLayout(&window_);
        layout->addWidget(list);
        window_.resize(400, 900);
        window_.show();
        settle();
    }

    void run(int step, const QJsonArray &products, Times &times)
    {
        times[static_cast<std::size_t>(step)].append(milliseconds([&] {
            if (step == 0)
                fill_(products);
            else
                search_->setText(step == 1 ? u"7"_s : QString());
        }));
    }

    QStringList widgets() const
    {
        QStringList lines;
        const QList<QFrame *> cards =
            container_->findChildren<QFrame *>(u"quillmarProductCard"_s, Qt::FindDirectChildrenOnly);
        for (const QFrame *card : cards)
            describe(*card, 0, lines);
        return lines;
    }

private:
    void describe(const QWidget &widget, int depth, QStringList &lines) const
    {
        const auto *label = qobject_cast<const QLabel *>(&widget);
        const auto *button = qobject_cast<const QPushButton *>(&widget);
        const QString kind = label ? u"label"_s : button ? u"button"_s : u"widget"_s;
        const QString text = label ? label->text() : button ? button->text() : QString();
        const int alignment = label ? static_cast<int>(label->alignment().toInt()) : 0;
        const QString shown = widget.isVisibleTo(container_) ? u"shown"_s : u"hidden"_s;
        QString size;
        if (widget.isVisibleTo(container_))
            size = u"%1x%2"_s.arg(widget.width()).arg(widget.height());
        lines.append(u"%1 %2 #%3 %4 %5 %6 '%7' {%8}"_s.arg(depth)
                         .arg(kind, widget.objectName(), shown, size)
                         .arg(alignment)
                         .arg(text, widget.styleSheet()));
        const auto children = widget.findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
        for (const QWidget *child : children)
            describe(*child, depth + 1, lines);
    }

    QWidget window_;
    QLineEdit *search_;
    QWidget *container_;
    std::function<void(const QJsonArray &)> fill_;
};

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

bool sameWidgets(const Stage &ours, const Stage &naive)
{
    QStringList left = ours.widgets();
    QStringList right = naive.widgets();
    left.sort();
    right.sort();
    if (left == right)
        return true;
    for (qsizetype line = 0; line < qMin(left.size(), right.size()); ++line) {
        if (left.at(line) != right.at(line)) {
            std::printf("different: ours  %s\n           naive %s\n", qPrintable(left.at(line)),
                        qPrintable(right.at(line)));
            break;
        }
    }
    std::printf("ours has %lld widgets in cards, the naive list %lld\n", static_cast<long long>(left.size()),
                static_cast<long long>(right.size()));
    return false;
}

QWidget *containerOf(const QWidget &list)
{
    return list.findChild<QScrollArea *>()->widget();
}

bool compare(int count, const Localisation &localisation)
{
    const QJsonArray products = catalogue(count);
    auto *list = new ProductList(CatalogueServices{localisation, {}, {}, [](auto &&...) {}}, {});
    auto *naiveList = new bench::NaiveCatalogue(localisation);
    Stage ours(list, list->findChild<QLineEdit *>(), containerOf(*list),
               [list](const QJsonArray &array) { list->setProducts(array); });
    Stage naive(naiveList, naiveList->search(), naiveList->container(),
                [naiveList](const QJsonArray &array) { naiveList->setProducts(array); });
    Times ourTimes;
    Times naiveTimes;
    for (int round = 0; round < Rounds; ++round) {
        for (int step = 0; step < Steps; ++step) {
            naive.run(step, products, naiveTimes);
            ours.run(step, products, ourTimes);
            if (!sameWidgets(ours, naive))
                return false;
        }
        // Each round fills empty lists.
        Times ignored;
        ours.run(0, {}, ignored);
        naive.run(0, {}, ignored);
    }
    for (std::size_t step = 0; step < Steps; ++step) {
        const double our = median(ourTimes.at(step));
        const double other = median(naiveTimes.at(step));
        std::printf("%5d products  %-18s ours %8.1f ms   naive %8.1f ms   ratio %.2f\n", count,
                    StepNames.at(step), our, other, our / other);
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const test::LibobsFake libobs;
    const Localisation localisation = test::LocaleFiles().localisation(EnglishCode);
    QList<int> counts;
    for (int argument = 1; argument < argc; ++argument)
        counts.append(std::atoi(argv[argument]));
    if (counts.isEmpty())
        counts = {300, 1000};
    return std::all_of(counts.cbegin(), counts.cend(),
                       [&](int count) { return compare(count, localisation); })
               ? 0
               : 1;
}
