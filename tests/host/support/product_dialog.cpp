#include "tests/host/support/product_dialog.h"

namespace quillmar::test
{

using namespace Qt::StringLiterals;

namespace
{

const Widget *details(const WidgetTree &tree)
{
    return tree.find([](const Widget &w) { return w.kind() == "ProductDetails"_L1 && w.visible; });
}

/// The card that shows `product`; it also holds the dialog that it has opened.
const Widget *cardOf(const WidgetTree &tree, const QString &product)
{
    const auto isName = [&product](const Widget &w) { return w.role == "label"_L1 && w.text == product; };
    for (const Widget &widget : tree.all()) {
        if (widget.name == "quillmarProductCard"_L1 && tree.findBelow(widget, isName))
            return &widget;
    }
    return nullptr;
}

const Widget *buttonBelow(const WidgetTree &tree, const Widget *owner, const QString &text)
{
    if (!owner)
        return nullptr;
    return tree.findBelow(*owner, [&text](const Widget &w) {
        return w.role == "button"_L1 && withoutIsolates(w.text) == text;
    });
}

/// The window of the dock, the dialog, its enlarged views: each was opened from the one before.
QList<const Widget *> openWindows(const WidgetTree &tree)
{
    QList<const Widget *> windows;
    for (const Widget &widget : tree.all()) {
        const bool isDialog = widget.kind() == "ProductDetails"_L1 || widget.kind().endsWith("Dialog"_L1);
        if (widget.visible && (isDialog || windows.isEmpty()))
            windows.append(&widget);
    }
    return windows;
}

} // namespace

bool ProductDialog::open()
{
    return panel_.robot().click(cardButton(u"Gallery.Details"_s), u"the details of "_s + product_) &&
           waitForWindows(1);
}

bool ProductDialog::press(const QString &key)
{
    return panel_.robot().click(dialogButton(key), key + u" in the dialog"_s);
}

bool ProductDialog::waitForPicture(const QString &part)
{
    return panel_.robot().waitFor(
        [&part](const WidgetTree &tree) {
            const Widget *dialog = details(tree);
            return dialog && tree.findBelow(*dialog, [&](const Widget &w) {
                return w.role == "label"_L1 && w.text.contains(part);
            }) && tree.findBelow(*dialog, [](const Widget &w) { return w.picture && w.visible; });
        },
        u"the picture "_s + part);
}

bool ProductDialog::pressUntil(const QString &key, const QString &part)
{
    return press(key) && waitForPicture(part);
}

bool ProductDialog::waitForWindows(qsizetype count)
{
    const auto areOpen = [count](const WidgetTree &tree) {
        const QList<const Widget *> windows = openWindows(tree);
        return windows.size() == count + 1 && windows.last()->active;
    };
    return panel_.robot().waitFor(areOpen, u"%1 windows, keys going to the last"_s.arg(count));
}

bool ProductDialog::isRightToLeft() const
{
    const WidgetTree tree = panel_.robot().tree();
    const Widget *dialog = details(tree);
    return dialog && dialog->rightToLeft;
}

bool ProductDialog::save()
{
    const auto saved = [this](const WidgetTree &tree) {
        const Widget *status = cardStatus()(tree);
        return status && status->properties["quillmarTextKey"_L1].toString() == "Download.Success"_L1;
    };
    return panel_.robot().click(cardButton(u"Product.Download"_s), u"the download of "_s + product_) &&
           panel_.robot().waitFor(saved, u"the saved file of "_s + product_);
}

bool ProductDialog::showStatus()
{
    return panel_.robot().scrollTo(cardStatus(), u"the status of "_s + product_);
}

DockRobot::Choice ProductDialog::cardButton(const QString &key) const
{
    return [text = panel_.text(key), product = product_](const WidgetTree &tree) {
        return buttonBelow(tree, cardOf(tree, product), text);
    };
}

DockRobot::Choice ProductDialog::cardStatus() const
{
    return [product = product_](const WidgetTree &tree) -> const Widget * {
        const Widget *card = cardOf(tree, product);
        return card ? tree.findBelow(*card,
                                     [](const Widget &w) {
                                         return w.properties["quillmarTextKey"_L1].toString().startsWith(
                                             "Download."_L1);
                                     })
                    : nullptr;
    };
}

DockRobot::Choice ProductDialog::dialogButton(const QString &key) const
{
    return
        [text = panel_.text(key)](const WidgetTree &tree) { return buttonBelow(tree, details(tree), text); };
}

} // namespace quillmar::test
